#pragma once

#include <functional>

#include "Quorvel/Platform/Surfaces.h"

namespace quorvel {

class AppLauncher;
class PinStore;
class ThumbnailService;
class UserSettings;
class WindowFinder;

/// Why the launcher wants to close.
enum class LauncherDismissal {
    primaryPress, ///< elsewhere, before the view there receives it
    other,
};

/// What the launcher shows, and how it asks to be closed. Everything that this refers to outlives
/// the panel.
struct LauncherContents {
    AppLauncher& appLauncher;
    PinStore& pinStore;
    const UserSettings& settings;
    /// Called at most once.
    std::function<void(LauncherDismissal)> onDismiss;
};

/// The same for the list of open windows.
struct WindowFinderContents {
    WindowFinder& windowFinder;
    ThumbnailService& thumbnailService;
    const UserSettings& settings;
    std::function<void(LauncherDismissal)> onDismiss;
    SpaceID space{}; ///< on which it is open
    /// After it has asked to be closed; so is the next one.
    std::function<void(WindowID)> onWindowChosen;
    /// A window of another space is to come to this one and get the focus.
    std::function<void(WindowID, SpaceID from)> onWindowBrought;
};

/// A list with a search field, of all applications or of all windows, for the code that
/// places it; the views draw it. It asks to be closed when the user presses a button elsewhere,
/// when it loses the keyboard, and once something has been chosen. Main thread.
class LauncherPanel {
public:
    virtual ~LauncherPanel() = default;

    virtual PanelSurface& surface() = 0;
    /// Puts it on the screen (points, bottom-left origin) with the keyboard.
    virtual void open(const Rect& frame) = 0;
    /// Takes it off the screen and gives the keyboard back. It asks for nothing any more.
    virtual void close() = 0;
};

}
