#pragma once

#include <functional>

#include "Quorvel/Platform/Surfaces.h"

namespace quorvel {

class AppLauncher;
class PinStore;
class UserSettings;

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

/// The list of all applications, for the code that places it; the views draw it. It asks to be
/// closed when the user presses a button elsewhere, when it loses the keyboard, and once it has
/// opened an application. Main thread.
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
