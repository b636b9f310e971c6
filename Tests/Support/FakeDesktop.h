#pragma once

#include <optional>
#include <set>
#include <string>

#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Platform/Trace.h"
#include "Tests/Support/DesktopModel.h"
#include "Tests/Support/FakeAccessibility.h"
#include "Tests/Support/FakeApplicationMatching.h"
#include "Tests/Support/FakeBundles.h"
#include "Tests/Support/FakeDisplays.h"
#include "Tests/Support/FakeDock.h"
#include "Tests/Support/FakeFileEvents.h"
#include "Tests/Support/FakeFiles.h"
#include "Tests/Support/FakeHotkeys.h"
#include "Tests/Support/FakeLaunchServices.h"
#include "Tests/Support/FakeLoginItem.h"
#include "Tests/Support/FakePeeking.h"
#include "Tests/Support/FakeProgram.h"
#include "Tests/Support/FakeScreenCapture.h"
#include "Tests/Support/FakeSettingsWindow.h"
#include "Tests/Support/FakeSurfaces.h"
#include "Tests/Support/FakeUpdater.h"
#include "Tests/Support/FakeWindowServer.h"
#include "Tests/Support/FakeWorkspace.h"
#include "Tests/Support/VirtualDispatch.h"

namespace quorvel::test {

struct LaunchOptions {
    std::string name = "App";
    std::optional<std::string> bundleIdentifier = "com.example.app";
    ActivationPolicy policy = ActivationPolicy::regular;
    Duration startsAnsweringAfter{}; ///< until then its accessibility messages fail
};

/// A whole desktop in memory, for tests: displays with spaces, applications with windows, and every
/// service of the platform answering from that one truth. Real objects of the program run on
/// `platform()`; nothing of the program is mocked.
///
/// A test does what a user or an application does (`launch`, `open`, `minimise`, `activateSpace`)
/// and lets time pass with `advance`. The desktop changes at once; what a real system announces
/// (workspace signals, accessibility notifications) is posted to the queue or thread it comes on
/// and arrives with the next `advance` or `drain`. What the program asks of the desktop (raising a
/// window, moving it to a space) happens to the same truth and is announced the same way.
///
/// The services can lie, each in the ways of the real one, through `application(pid).faults`,
/// `window(id).faults`, `window(id).distortEntry`, the delays of `LaunchOptions` and `OpenOptions`,
/// and the knobs of each service. What the program did is kept by the service that was asked:
/// `accessibility().messages()`, `windowServer().moves()`, `surfaces().panels()`, and so on.
/// Calls on the wrong thread and unbalanced painting fail the test.
///
///     FakeDesktop desktop;                        // first, so that it dies last
///     auto mail = desktop.launch({.name = "Mail"});
///     auto inbox = desktop.open(mail, {.title = "Inbox"});
///     WindowStore store{desktop.platform() ...};
///     desktop.application(mail).faults.isHung = true;
///     desktop.advance(seconds(3));
///
/// It starts with one display of 1440 x 900 points and the spaces 1, 2 and 3, of which 1 is shown.
class FakeDesktop {
public:
    FakeDesktop();
    FakeDesktop(const FakeDesktop&) = delete;
    FakeDesktop& operator=(const FakeDesktop&) = delete;

    Platform platform();
    VirtualDispatch& dispatch() { return m_dispatch; }
    void advance(Duration duration) { m_dispatch.advance(duration); }
    void drain() { m_dispatch.drain(); }

    FakeAccessibility& accessibility() { return m_accessibility; }
    FakeWindowServer& windowServer() { return m_windowServer; }
    FakeDisplays& displays() { return m_displays; }
    FakeWorkspace& workspace() { return m_workspace; }
    FakeBundles& bundles() { return m_bundles; }
    FakeFileEvents& fileEvents() { return m_fileEvents; }
    FakeScreenCapture& screenCapture() { return m_screenCapture; }
    FakeProgram& program() { return m_program; }
    FakeSurfaces& surfaces() { return m_surfaces; }
    FakeText& text() { return m_text; }
    FakeControlChannel& control() { return m_control; }
    FakeFiles& files() { return m_files; }
    FakeLoginItem& loginItem() { return m_loginItem; }
    FakeHotkeys& hotkeys() { return m_hotkeys; }
    FakeLaunchServices& launchServices() { return m_launchServices; }
    FakeDock& dock() { return m_dock; }
    FakeApplicationMatching& applicationMatching() { return m_applicationMatching; }
    FakePeeking& peeking() { return m_peeking; }
    FakeUpdater& updater() { return m_updater; }
    FakeSettingsWindow& settingsWindow() { return m_settingsWindow; }
    /// As on a system that has neither a Dock nor a framework for updates.
    void removeDockAndUpdater() { m_hasDockAndUpdater = false; }
    void removeSettingsWindow() { m_hasSettingsWindow = false; }
    Trace& trace() { return m_trace; }

    // What is there. The references live as long as what they name.
    DesktopModel& model() { return m_model; }
    FakeApplication& application(ProcessID);
    FakeWindow& window(WindowID);

    // Applications come and go.
    ProcessID launch(const LaunchOptions& = {});
    /// Its windows close in good order first.
    void terminate(ProcessID);
    /// It is gone, and nobody told the observers.
    void crash(ProcessID);
    /// It comes to the front, as by a click.
    void activate(ProcessID);
    /// With all its windows, whose places and states stay what they are.
    void setHidden(ProcessID, bool isHidden);

    // Applications are stored and removed.
    void install(const std::string& path, BundleDescription = {});
    void uninstall(const std::string& path);

    // Windows.
    WindowID open(ProcessID, const OpenOptions& = {});
    void close(WindowID);
    void retitle(WindowID, const std::string&);
    void place(WindowID, const Rect&);
    void move(WindowID, Point);
    void resize(WindowID, Size);
    void minimise(WindowID);
    void restore(WindowID);
    /// Raises it and makes it its application's focused window.
    void focus(WindowID);
    void moveToSpace(WindowID, SpaceID);
    /// Of the first display; otherwise on the one that it shows.
    void setOnEverySpace(WindowID, bool isOnEvery);

    // Spaces, displays, sleep.
    void activateSpace(SpaceID);
    void setDisplays(std::vector<FakeDisplay>);
    /// The displays that are there, and one more beside them, above or below.
    void addDisplay(FakeDisplay display)
    {
        auto displays = m_model.displays;
        displays.push_back(std::move(display));
        setDisplays(std::move(displays));
    }
    /// Which of them is the main one; it need not be the first, nor at the origin.
    void setMainDisplay(DisplayNumber number) { m_model.mainDisplay = number; }
    void setSeparateSpaces(bool value) { m_model.displaysHaveSeparateSpaces = value; }
    void wake();
    /// The hand at the pointer: a window that is held by its title bar goes along, across displays
    /// and to the space that is shown meanwhile.
    void handPointer(PointerPost, Point globalTopLeft);
    /// Whether the window server hints at changes of spaces, as X11 does and the Mac does not.
    void setGivesSpaceHints(bool value) { m_givesSpaceHints = value; }
    bool givesSpaceHints() const { return m_givesSpaceHints; }

    /// Runs on the main queue with the next `drain`.
    void post(Work work) { m_dispatch.main().async(std::move(work)); }

private:
    void end(ProcessID);
    void forget(WindowID);
    void announce(WindowID, std::string_view notification);
    void announceFocus(ProcessID);
    void appear(WindowID);
    void focusNext(ProcessID);
    void setSpaces(WindowID, std::set<SpaceID>);

    VirtualDispatch m_dispatch;
    DesktopModel m_model;
    FakeAccessibility m_accessibility{*this};
    FakeWindowServer m_windowServer{*this};
    FakeDisplays m_displays{*this};
    FakeWorkspace m_workspace{*this};
    FakeBundles m_bundles;
    FakeFileEvents m_fileEvents{m_dispatch};
    FakeScreenCapture m_screenCapture{*this};
    FakeProgram m_program{m_dispatch};
    FakeSurfaces m_surfaces{*this};
    FakeText m_text{"en"};
    FakeControlChannel m_control;
    FakeFiles m_files;
    FakeLoginItem m_loginItem;
    FakeHotkeys m_hotkeys;
    FakeLaunchServices m_launchServices{m_dispatch};
    FakeDock m_dock;
    FakeUpdater m_updater;
    FakePeeking m_peeking;
    FakeApplicationMatching m_applicationMatching;
    Trace m_trace;
    std::int32_t m_nextPID = 501;
    std::uint32_t m_nextWindow = 1001;
    bool m_givesSpaceHints = false;
    bool m_hasDockAndUpdater = true;
    FakeSettingsWindow m_settingsWindow;
    bool m_hasSettingsWindow = true;
    struct Held {
        WindowID window{};
        Point from; ///< the pointer's last place
    };
    std::optional<Held> m_held;
    std::vector<WorkItem> m_arrivals; // last: they name the desktop
};

}
