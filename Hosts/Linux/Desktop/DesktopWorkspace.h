#pragma once

#include "Hosts/Linux/Applications/ApplicationLauncher.h"
#include "Hosts/Linux/Applications/LaunchRequest.h"
#include "Hosts/Linux/Bus/SleepWatch.h"
#include "Hosts/Linux/Desktop/DesktopModel.h"
#include "Hosts/Linux/Desktop/WindowIcons.h"
#include "Quorvel/Platform/Workspace.h"

namespace quorvel::xdg {

class DesktopEntries;
class Icons;
class DesktopTracker;
class DesktopRequests;
class LaunchTokens;

/// Applications from the model, with what the desktop files say about them. Main thread.
class DesktopWorkspace final : public Workspace {
public:
    DesktopWorkspace(const SharedModel&, DesktopTracker&, DesktopRequests&, LaunchTokens&,
        WindowIcons&, DesktopEntries&, Icons&);

    void enumerateRunningApplications(
        const std::function<void(const RunningApplication&)>& visitor) const override;
    std::optional<RunningApplication> runningApplication(ProcessID) const override;
    std::optional<ProcessID> frontmostApplication() const override;

    std::optional<ApplicationURL> applicationURL(std::string_view bundleIdentifier) const override;
    Image icon(const ApplicationURL&) const override;
    std::optional<IconPicture> renderIcon(const ApplicationURL&, int pixels) const override;
    Image runningApplicationIcon(ProcessID) const override;
    Image genericApplicationIcon() const override;

    /// Brings an application with a window to the front, on whatever space the window is.
    void openApplication(const ApplicationURL&) override;
    void openNewInstance(const ApplicationURL&) override;
    bool canOpenNewInstance(const ApplicationURL& url) const override
    {
        return ApplicationLauncher::opensManyWindows(url.path);
    }
    void openFiles(const std::vector<std::string>& paths, const ApplicationURL&) override;
    void openFile(const std::string& path) override;
    bool openURL(const std::string& url) override;
    std::vector<ApplicationAction> actions(const ApplicationURL&) const override;
    void perform(const ApplicationAction&, const ApplicationURL&) override;
    /// Asks each of its windows to close: there is no other way to end an application.
    void requestTermination(ProcessID) override;

    bool isSelfActive() const override;
    /// Only windows can be active here: one of ours takes the focus when the user gives it.
    void activateSelf() override { }
    bool activateCooperatively(ProcessID) override;
    bool activateDirectly(ProcessID) override;

private:
    void entriesDidChange();
    void launch(LaunchRequest);
    ApplicationLaunch launchOf(const std::string& desktopFile) const;
    Image windowIcon(ProcessID) const;
    std::vector<IconPixels> pixelsOf(const std::vector<WindowID>&) const;
    std::vector<WindowID> windowsOf(ProcessID) const;
    std::vector<WindowID> windowsOf(const std::string& bundleIdentifier) const;
    std::optional<WindowID> lastActiveWindow(const ApplicationURL&) const;

    const SharedModel& m_model;
    DesktopTracker& m_tracker;
    DesktopRequests& m_requests;
    LaunchTokens& m_tokens;
    WindowIcons& m_windowIcons;
    DesktopEntries& m_entries;
    Icons& m_icons;
    ApplicationLauncher m_launcher;
    SleepWatch m_sleep;
    std::vector<Subscription> m_subscriptions;
};

}
