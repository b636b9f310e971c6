#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "Quorvel/Core/Bar.h"
#include "Quorvel/Platform/Displays.h"
#include "Quorvel/Platform/Surfaces.h"
#include "Quorvel/Skylight/SpaceWindows.h"

namespace quorvel {

class DockRoom;
class UserSettings;
struct Platform;

/// Identifies the bar of a space on a screen that has no spaces of its own.
struct MirrorKey {
    SpaceID spaceID{};
    std::size_t screenIndex = 0; ///< index in the list of screens

    friend auto operator<=>(const MirrorKey&, const MirrorKey&) = default;
};

/// The panels on the screens, each in its place: one bar for every ordinary space on the display of
/// the space, mirrors of them on the further screens if the user wants bars there, and a proxy for
/// each full-screen space, through which the space can be reached. A panel belongs to its display
/// for life: if its space moves to another one, it is made again. A bar that has not been seen yet
/// has no content: users have many spaces and look at few. Main thread.
class BarPanels {
public:
    using BySpace = std::map<SpaceID, std::unique_ptr<Bar>>;
    using Mirrors = std::map<MirrorKey, std::unique_ptr<Bar>>;

    BarPanels(const Platform&, const UserSettings&, const DockRoom&, BarFactory&);

    /// Fills a bar that is to be shown for the first time, or whose content has to be made anew.
    std::function<void(Bar&)> onContentNeeded;

    const BySpace& panels() const { return m_panels; }
    const Mirrors& mirrorPanels() const { return m_mirrorPanels; }
    /// A bar of the space, on its own display first; null if there is none.
    Bar* panel(SpaceID) const;
    /// The proxy of a full-screen space; null if there is none.
    Bar* fullscreenPanel(SpaceID) const;
    std::vector<Bar*> bars() const;
    /// Each screen's bar shows the windows of this screen only; else one bar stands for all.
    bool isPerScreen() const { return m_isPerScreen; }
    /// The screens that show a bar, in the order of the list of screens.
    std::vector<std::size_t> coveredScreens() const;
    std::vector<std::size_t> mirrorScreens() const;

    /// Makes, moves and closes panels until each is in its place. False if nothing was changed,
    /// because the system does not say which spaces there are.
    bool place(const SpaceWindows::Answer&);
    bool syncMirrorPanels();
    /// Those that are not shown get theirs when they are.
    void rebuildContentViews();
    /// These spaces are now shown.
    void orderFront(const std::vector<SpaceID>&);
    void closeAll();

private:
    struct Spot {
        SpaceID space{};
        std::size_t screenIndex = 0;
        Screen screen;
        PanelKind kind = PanelKind::bar;
    };
    using Spots = std::map<SpaceID, Spot>;

    /// The screens on which the spaces' panels belong; empty while there is no screen.
    Spots spots(
        const std::vector<SpaceWindows::Info>&, const std::vector<Screen>&, PanelKind) const;
    Spot spot(const SpaceWindows::Info&, const std::vector<Screen>&, PanelKind) const;
    std::map<MirrorKey, Spot> mirrorSpots(const Spots&, const std::vector<Screen>&) const;
    bool needsMirror(std::size_t index, const Spots&, const std::vector<Screen>&) const;
    void syncFullscreenProxyPanels(
        const std::vector<SpaceWindows::Info>& spaces, const std::vector<Screen>&);
    void placeMirrors(const Spots&, const std::vector<Screen>&);
    template <typename Panels, typename WantedSpots> void placeAll(Panels&, const WantedSpots&);
    static bool isOf(const Bar&, const Spot&);
    void move(Bar&, const Spot&);
    std::unique_ptr<Bar> createPanel(const Spot&);
    /// Their bars have content that is up to date; the others rest.
    void setShown(const std::vector<SpaceID>&);
    bool isShown(const Bar&) const;
    Rect frame(const Spot&) const;
    Rect barFrame(const Screen&) const;

    BarFactory& m_factory;
    WindowServer& m_windowServer;
    Displays& m_displays;
    const UserSettings& m_settings;
    const DockRoom& m_dockRoom;
    SpaceWindows m_spaceWindows;
    bool m_isPerScreen = false;
    std::vector<SpaceID> m_shown;
    BySpace m_panels;
    BySpace m_fullscreenPanels;
    Mirrors m_mirrorPanels;
};

}
