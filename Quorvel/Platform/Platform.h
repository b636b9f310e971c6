#pragma once

namespace quorvel {

class Accessibility;
class Application;
class ApplicationMatching;
class Bundles;
class ControlChannel;
class Dispatch;
class Displays;
class DockControl;
class FileEvents;
class Files;
class Hotkeys;
class LaunchServices;
class LoginItem;
class Peeking;
class ScreenCapture;
class SettingsWindow;
class Surfaces;
class Text;
class Trace;
class Updater;
class WindowServer;
class Workspace;

/// The seam between the program and the system it runs on.
///
/// Each member is one service of the platform, at the level of the platform's own calls: a host
/// translates and never decides, so every rule about order, retries, timeouts and fall-backs lives
/// on this side and can be tested. Three hosts implement the seam: `Hosts/X11`, `Hosts/MacOS` and
/// the in-memory desktop of the tests. One contract test holds for all three: for what they promise
/// of windows, spaces, displays, accessibility and dispatch.
///
/// Code takes the individual interfaces it needs through its constructor, as references that
/// outlive it; only the place that wires the program together sees this whole struct. Signals and
/// completions arrive on the main thread unless stated otherwise; `Accessibility`, `WindowServer`,
/// `Displays` and `Bundles` may be called from any thread. A service that a system lacks is
/// reported in the answer (an absent value, an empty list or function, a null pointer) and never
/// simulated.
///
/// Lengths are points. Window frames, accessibility positions and the pointer have their origin at
/// the top left of the first screen; screen and panel frames at its bottom left.
/// `Displays::toNative` converts to the numbers that other programs use.
struct Platform {
    Dispatch& dispatch;
    Accessibility& accessibility;
    WindowServer& windowServer;
    Displays& displays;
    Workspace& workspace;
    Bundles& bundles;
    FileEvents& fileEvents;
    ScreenCapture& screenCapture;
    Application& application;
    Surfaces& surfaces;
    Text& text;
    ControlChannel& control;
    Files& files;
    LoginItem& loginItem;
    LaunchServices& launchServices;
    Trace& trace;
    DockControl* dockControl = nullptr; ///< null where the system has no Dock of its own
    Updater* updater = nullptr; ///< null where the program is updated by other means
    Hotkeys* hotkeys = nullptr; ///< null where the system has no shortcuts for all programs
    SettingsWindow* settingsWindow = nullptr; ///< null where there is none
    ApplicationMatching* applicationMatching = nullptr; ///< null where windows need no matching
    Peeking* peeking = nullptr; ///< null where a window cannot be shown without being activated
};

}
