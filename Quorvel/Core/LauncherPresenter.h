#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "Quorvel/Core/LauncherPanel.h"
#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Displays.h"
#include "Quorvel/Platform/Hotkeys.h"
#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Platform/WeakOwner.h"

namespace quorvel {

class Bar;
class BarFactory;

/// Opens the launcher above a bar, at most one, and closes it when it asks for that. Main thread.
class LauncherPresenter {
public:
    static constexpr Size kSize{300, 400}; ///< points
    /// A window manager may hold a press back for a moment after it was reported, before the bar
    /// receives it.
    static constexpr Duration kHeldBack = seconds(0.25);
    static constexpr double kFromEdge = 5; ///< of the bar, at its leading end
    static constexpr double kAboveBar = 8;
    /// On a screen too low for this it lies over the bar.
    static constexpr double kLeastHeight = 200;
    static constexpr HotkeyID kHeldShortcutID{0x5152564C, 2}; ///< "QRVL"

    /// All it is given outlives it.
    LauncherPresenter(const Platform&, BarFactory&, AppLauncher&, PinStore&, const UserSettings&);
    ~LauncherPresenter();

    std::function<void(bool isOpen)> onOpenChanged;

    /// Null while it is closed.
    LauncherPanel* panel() const { return m_panel.get(); }
    void show(const Bar& anchor);
    /// The same for another program's shortcut, which it cannot receive while the launcher has the
    /// keyboard: pressed again, it closes the launcher.
    void showForHeldShortcut(const Bar& anchor);
    void close();
    /// The button of this bar that opens the launcher goes down. True: the press closes the
    /// launcher that opened from there, or has just closed it, and must not open it anew.
    bool buttonPressed(const Bar&);
    /// The button was clicked, or used with the keyboard.
    void buttonTapped(const Bar&);
    /// After bars have come, gone or moved: the launcher stays with its bar.
    void follow(const std::vector<Bar*>&);

    /// Where it belongs; all in points, bottom-left origin.
    static Rect frameFor(const Rect& bar, const Screen&, bool isRightToLeft);

private:
    /// Which bar it opened from, which may have gone since.
    struct Anchor {
        SpaceID space{};
        DisplayNumber display{};

        friend bool operator==(const Anchor&, const Anchor&) = default;
    };

    static Anchor anchorOf(const Bar&);
    HotkeyStatus handleHotkey(const HotkeyID&);
    void dismissed(LauncherDismissal);
    std::optional<Rect> frameFor(const Bar&) const;

    const Platform m_platform;
    BarFactory& m_factory;
    AppLauncher& m_appLauncher;
    PinStore& m_pinStore;
    const UserSettings& m_settings;
    Anchor m_anchor;
    bool m_isClosedByPrimaryPress = false; ///< and the bar may yet receive that press
    WorkItem m_closingPressEnds;
    /// Of another program, while the launcher is open that it has opened; null else.
    std::unique_ptr<HotkeyRegistration> m_heldShortcut;
    Subscription m_eventHandler;
    std::unique_ptr<LauncherPanel> m_panel;
    std::vector<std::unique_ptr<LauncherPanel>> m_closed; ///< destroyed in the next turn
    WeakOwner<LauncherPresenter> m_weak{*this};
};

}
