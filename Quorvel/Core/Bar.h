#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "Quorvel/Core/BarSize.h"
#include "Quorvel/Core/LauncherPanel.h"
#include "Quorvel/Platform/Menu.h"
#include "Quorvel/Platform/Surfaces.h"

namespace quorvel {

class BarViewModel;
class LaunchMarks;
class PinStates;
class PinStore;
class ThumbnailService;
class UserSettings;
class WindowStates;

/// What a number key does with an item of the bar.
enum class ItemUse { click, openNewWindow };

/// What a bar shows, and where it reports what its user wants. All it refers to outlives the bar.
struct BarContents {
    BarViewModel& viewModel;
    PinStore& pinStore;
    const LaunchMarks& launchMarks;
    const PinStates& pinStates;
    UserSettings& settings;
    ThumbnailService& thumbnailService;
    WindowStates& windowStates;
    /// Absent while one bar stands for every screen.
    std::optional<std::size_t> screenIndex;
    BarMetrics metrics;
    /// The menu button goes down. True: the press only closes what the button had opened.
    std::function<bool()> onMenuPressed;
    std::function<void()> onMenuTapped;
    /// Empty where the system has no window for the settings.
    std::function<void()> onSettingsRequested;
    std::function<void(SpaceID)> onSpaceSwitchRequested;
    /// A group's windows go together.
    std::function<void(const std::vector<WindowID>&, SpaceID to)> onMoveWindowToSpaceRequested;
    /// Brings windows of another space to the bar's.
    std::function<void(const std::vector<WindowID>&, SpaceID from)> onWindowsFetched;
    /// Goes to a window, wherever it is.
    std::function<void(WindowID)> onWindowRequested;
    /// What a menu tells of a window, for whoever asks why it is here; empty if it has gone.
    std::function<Menu(WindowID)> aboutWindow;
    /// Just before a popup is shown.
    std::function<void()> onThumbnailWillShow;
};

/// One bar on the screen, for the code that places it; the views draw it. Main thread.
class Bar {
public:
    /// The second is the place of its screen in the list of screens.
    Bar(const PanelOptions& options, std::size_t screenIndex)
        : m_options(options)
        , m_screenIndex(screenIndex)
    {
    }
    virtual ~Bar() = default;
    Bar(const Bar&) = delete;
    Bar& operator=(const Bar&) = delete;

    SpaceID spaceID() const { return m_options.space; }
    DisplayNumber display() const { return m_options.display; }
    /// In the list of screens.
    std::size_t screenIndex() const { return m_screenIndex; }
    /// Screens before its own came or went. False if it is the one it has.
    bool setScreenIndex(std::size_t index) { return std::exchange(m_screenIndex, index) != index; }

    std::function<void(const ScrollEvent&)> onScroll;
    /// The answer of `isInUse` may have changed.
    std::function<void()> onUseChanged;

    virtual PanelSurface& surface() = 0;
    virtual const PanelSurface& surface() const = 0;
    /// Whatever is suppressed: the system switches to the space of the key panel.
    virtual void setAllowBecomeKey(bool) = 0;
    /// Unless suppressed, the panel may take the keyboard while the pointer is over it.
    virtual void setHoverKeyingSuppressed(bool) = 0;
    /// Replaces what is on the bar.
    virtual void fill(const BarContents&) = 0;
    /// False until the bar is first shown, and once it has been cleared.
    virtual bool isFilled() const = 0;
    /// Takes off what is on the bar, which is filled anew when it is next shown.
    virtual void clear() = 0;
    /// A filled bar that is not shown rests, and catches up when it is shown again.
    virtual void setShown(bool) = 0;
    virtual void dismissPopups() = 0;
    /// The pointer is over it, or has something of it in its hand; it has the keyboard; a menu or a
    /// popup of it is open; or it says what has gone wrong.
    virtual bool isInUse() const = 0;
    /// Slides it out of sight behind its screen's edge, or back.
    virtual void setOut(bool) = 0;
    /// What its menu button opens is on the screen, or not.
    virtual void setLauncherOpen(bool) = 0;
    /// An item by its place in the row, pins before chips, from 0; nothing if there is none there.
    virtual void useItem(std::size_t place, ItemUse) = 0;

private:
    const PanelOptions m_options;
    std::size_t m_screenIndex;
};

/// Makes bars, the launcher and the list of windows, which are views, for the services below the
/// views. Outlives what it makes.
class BarFactory {
public:
    virtual ~BarFactory() = default;

    virtual std::unique_ptr<Bar> makeBar(const PanelOptions&, std::size_t screenIndex) = 0;
    virtual std::unique_ptr<LauncherPanel> makeLauncher(
        const PanelOptions&, const LauncherContents&)
        = 0;
    virtual std::unique_ptr<LauncherPanel> makeWindowFinder(
        const PanelOptions&, const WindowFinderContents&)
        = 0;
};

}
