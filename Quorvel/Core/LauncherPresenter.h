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

/// What a launcher lists.
enum class LauncherKind { applications, windows };

/// Opens the launcher above a bar, or the list of windows in its place, and closes it when it asks
/// for that. At most one is open. Main thread.
class LauncherPresenter {
public:
    /// What its lists show and act through; all of it outlives the presenter.
    struct Sources {
        AppLauncher& appLauncher;
        PinStore& pinStore;
        const UserSettings& settings;
        WindowFinder& windowFinder;
        ThumbnailService& thumbnailService;
    };

    /// In points, the room that it takes where there is enough.
    static constexpr Size sizeOf(LauncherKind kind)
    {
        return kind == LauncherKind::applications ? Size{300, 400} : Size{440, 480};
    }
    /// A window manager may hold a press back for a moment after it was reported, before the bar
    /// receives it.
    static constexpr Duration kHeldBack = seconds(0.25);
    static constexpr double kFromEdge = 5; ///< of the bar, at its leading end
    static constexpr double kAboveBar = 8;
    /// On a screen too low for this it lies over the bar.
    static constexpr double kLeastHeight = 200;
    static constexpr HotkeyID kHeldShortcutID{0x5152564C, 2}; ///< "QRVL"

    /// The factory outlives it.
    LauncherPresenter(const Platform&, BarFactory&, const Sources&);
    ~LauncherPresenter();

    std::function<void(bool isOpen)> onOpenChanged;
    /// In the list of windows.
    std::function<void(WindowID)> onWindowChosen;
    std::function<void(WindowID, SpaceID from, SpaceID to)> onWindowBrought;

    /// Null unless this kind is open.
    LauncherPanel* panel(LauncherKind kind) const
    {
        return m_kind == kind ? m_panel.get() : nullptr;
    }
    /// One that was opened from this bar is open.
    bool isOpenFrom(const Bar& bar) const { return m_panel && anchorOf(bar) == m_anchor; }
    /// Of its menu button.
    bool areApplicationsOpenFrom(const Bar& bar) const
    {
        return m_kind == LauncherKind::applications && isOpenFrom(bar);
    }
    void show(const Bar& anchor, LauncherKind);
    /// The same for another program's shortcut, which it cannot receive while the launcher has the
    /// keyboard: pressed again, it closes the launcher.
    void showForHeldShortcut(const Bar& anchor, LauncherKind);
    void close();
    /// The button of this bar that opens the launcher goes down. True: the press closes the
    /// launcher that opened from there, or has just closed it, and must not open it anew.
    bool buttonPressed(const Bar&);
    /// The button was clicked, or used with the keyboard.
    void buttonTapped(const Bar&);
    /// After bars have come, gone or moved: the launcher stays with its bar.
    void follow(const std::vector<Bar*>&);

    /// Where it belongs; all in points, bottom-left origin.
    static Rect frameFor(const Rect& bar, const Screen&, Size wanted, bool isRightToLeft);

private:
    /// Which bar it opened from, which may have gone since.
    struct Anchor {
        SpaceID space{};
        DisplayNumber display{};

        friend bool operator==(const Anchor&, const Anchor&) = default;
    };

    static Anchor anchorOf(const Bar&);
    HotkeyStatus handleHotkey(const HotkeyID&);
    std::unique_ptr<LauncherPanel> makePanel(const Bar& anchor, LauncherKind);
    void dismissed(LauncherDismissal);
    std::optional<Rect> frameFor(const Bar&, LauncherKind) const;

    const Platform m_platform;
    BarFactory& m_factory;
    const Sources m_sources;
    LauncherKind m_kind = LauncherKind::applications; ///< of the one that is open, or was last
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
