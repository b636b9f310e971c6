#include "Quorvel/Core/BarPanels.h"

#include <algorithm>
#include <set>

#include "Quorvel/Core/DockRoom.h"
#include "Quorvel/Core/UserSettings.h"
#include "Quorvel/Platform/Platform.h"

namespace quorvel {

BarPanels::BarPanels(const Platform& platform, const UserSettings& settings,
    const DockRoom& dockRoom, BarFactory& factory)
    : m_factory(factory)
    , m_windowServer(platform.windowServer)
    , m_displays(platform.displays)
    , m_settings(settings)
    , m_dockRoom(dockRoom)
    , m_spaceWindows(platform.windowServer, platform.displays)
    , m_isPerScreen(platform.windowServer.displaysHaveSeparateSpaces())
{
}

// MARK: Which there are

Bar* BarPanels::panel(SpaceID space) const
{
    auto found = m_panels.find(space);
    return found == m_panels.end() ? nullptr : found->second.get();
}

Bar* BarPanels::fullscreenPanel(SpaceID space) const
{
    auto found = m_fullscreenPanels.find(space);
    return found == m_fullscreenPanels.end() ? nullptr : found->second.get();
}

std::vector<Bar*> BarPanels::bars() const
{
    std::vector<Bar*> bars;
    for (auto& [space, panel] : m_panels)
        bars.push_back(panel.get());
    for (auto& [key, panel] : m_mirrorPanels)
        bars.push_back(panel.get());
    return bars;
}

std::vector<std::size_t> BarPanels::coveredScreens() const
{
    std::set<std::size_t> indices;
    for (auto* bar : bars())
        indices.insert(bar->screenIndex());
    return {indices.begin(), indices.end()};
}

std::vector<std::size_t> BarPanels::mirrorScreens() const
{
    std::set<std::size_t> indices;
    for (auto& [key, panel] : m_mirrorPanels)
        indices.insert(key.screenIndex);
    return {indices.begin(), indices.end()};
}

// MARK: Where they belong

BarPanels::Spot BarPanels::spot(
    const SpaceWindows::Info& space, const std::vector<Screen>& screens, PanelKind kind) const
{
    auto screen = m_spaceWindows.screen(space.displayIdentifier, screens);
    if (!screen)
        screen = m_spaceWindows.screen("MAIN", screens);
    auto found = screen ? std::ranges::find(screens, *screen) : screens.begin();
    return {space.spaceID, static_cast<std::size_t>(found - screens.begin()), *found, kind};
}

BarPanels::Spots BarPanels::spots(const std::vector<SpaceWindows::Info>& spaces,
    const std::vector<Screen>& screens, PanelKind kind) const
{
    Spots spots;
    if (screens.empty())
        return spots;
    for (auto& space : spaces) {
        bool isFullscreen = space.spaceType == kFullscreenSpaceType;
        if (isFullscreen == (kind == PanelKind::fullscreenProxy))
            spots.emplace(space.spaceID, spot(space, screens, kind));
    }
    return spots;
}

Rect BarPanels::barFrame(const Screen& screen) const
{
    auto& frame = screen.frame;
    return {frame.x, frame.y + m_dockRoom.on(screen), frame.width,
        std::min(barHeight(m_settings.barSize()), frame.height)};
}

Rect BarPanels::frame(const Spot& spot) const
{
    if (spot.kind == PanelKind::bar)
        return barFrame(spot.screen);
    return {spot.screen.frame.x, spot.screen.frame.y, 1, 1};
}

/// A screen that shows the same part of the desktop as another one has that one's bar already.
bool BarPanels::needsMirror(
    std::size_t index, const Spots& ordinary, const std::vector<Screen>& screens) const
{
    auto bar = barFrame(screens[index]);
    auto isTaken = [&](std::size_t other) { return barFrame(screens[other]).intersects(bar); };
    for (auto& [space, spot] : ordinary) {
        if (spot.screenIndex == index || isTaken(spot.screenIndex))
            return false;
    }
    for (std::size_t earlier = 0; earlier < index; ++earlier) {
        if (isTaken(earlier))
            return false;
    }
    return true;
}

std::map<MirrorKey, BarPanels::Spot> BarPanels::mirrorSpots(
    const Spots& ordinary, const std::vector<Screen>& screens) const
{
    std::map<MirrorKey, Spot> mirrors;
    auto main = m_spaceWindows.screen("MAIN", screens);
    if (!m_settings.showOnAllDisplays() || !main)
        return mirrors;
    for (std::size_t index = 0; index < screens.size(); ++index) {
        if (!needsMirror(index, ordinary, screens))
            continue;
        for (auto& [space, spot] : ordinary) {
            if (spot.screen == *main)
                mirrors.emplace(
                    MirrorKey{space, index}, Spot{space, index, screens[index], PanelKind::bar});
        }
    }
    return mirrors;
}

// MARK: Placing

bool BarPanels::place(const SpaceWindows::Answer& answer)
{
    auto screens = m_displays.screens();
    auto& spaces = answer.spaces;
    if (spaces.empty() && !screens.empty())
        return false;
    auto ordinary = spots(spaces, screens, PanelKind::bar);
    placeAll(m_panels, ordinary);
    syncFullscreenProxyPanels(spaces, screens);
    placeMirrors(ordinary, screens);
    setShown(answer.shown);
    return true;
}

bool BarPanels::syncMirrorPanels()
{
    auto screens = m_displays.screens();
    auto answer = m_spaceWindows.ask();
    if (answer.spaces.empty() && !screens.empty())
        return false;
    placeMirrors(spots(answer.spaces, screens, PanelKind::bar), screens);
    setShown(answer.shown);
    return true;
}

void BarPanels::syncFullscreenProxyPanels(
    const std::vector<SpaceWindows::Info>& spaces, const std::vector<Screen>& screens)
{
    placeAll(m_fullscreenPanels, spots(spaces, screens, PanelKind::fullscreenProxy));
}

void BarPanels::placeMirrors(const Spots& ordinary, const std::vector<Screen>& screens)
{
    auto wanted = mirrorSpots(ordinary, screens);
    bool isPerScreen = m_windowServer.displaysHaveSeparateSpaces() || !wanted.empty();
    bool changes = std::exchange(m_isPerScreen, isPerScreen) != isPerScreen;
    placeAll(m_mirrorPanels, wanted);
    if (changes)
        rebuildContentViews();
}

bool BarPanels::isOf(const Bar& panel, const Spot& spot)
{
    return panel.spaceID() == spot.space
        && panel.display() == spot.screen.number.value_or(DisplayNumber{});
}

/// What has its place elsewhere in the list of screens, but on the same display, is the same panel:
/// somebody may be walking it with the keyboard.
template <typename Panels, typename WantedSpots>
void BarPanels::placeAll(Panels& panels, const WantedSpots& spots)
{
    Panels kept;
    for (auto& [key, spot] : spots) {
        auto same = [&](auto& entry) { return entry.second && isOf(*entry.second, spot); };
        auto found = panels.find(key);
        if (found == panels.end() || !same(*found))
            found = std::ranges::find_if(panels, same);
        if (found != panels.end())
            kept[key] = std::move(found->second);
    }
    panels = std::move(kept);
    for (auto& [key, spot] : spots) {
        auto& panel = panels[key];
        if (panel)
            move(*panel, spot);
        else
            panel = createPanel(spot);
    }
}

void BarPanels::move(Bar& panel, const Spot& spot)
{
    panel.surface().setFrame(frame(spot));
    if (panel.setScreenIndex(spot.screenIndex) && panel.isFilled())
        onContentNeeded(panel);
}

std::unique_ptr<Bar> BarPanels::createPanel(const Spot& spot)
{
    auto panel = m_factory.makeBar(
        {spot.space, spot.screen.number.value_or(DisplayNumber{}), "Quorvel", spot.kind},
        spot.screenIndex);
    panel->surface().setFrame(frame(spot));
    panel->surface().orderFront();
    return panel;
}

void BarPanels::rebuildContentViews()
{
    for (auto* bar : bars()) {
        if (bar->isFilled() && isShown(*bar))
            onContentNeeded(*bar);
        else if (bar->isFilled())
            bar->clear();
    }
}

bool BarPanels::isShown(const Bar& bar) const
{
    return std::ranges::find(m_shown, bar.spaceID()) != m_shown.end();
}

void BarPanels::setShown(const std::vector<SpaceID>& spaces)
{
    // No answer says nothing of who is seen.
    if (!spaces.empty())
        m_shown = spaces;
    for (auto* bar : bars()) {
        if (bar->isFilled())
            bar->setShown(isShown(*bar));
        else if (isShown(*bar))
            onContentNeeded(*bar);
    }
}

void BarPanels::orderFront(const std::vector<SpaceID>& spaces)
{
    setShown(spaces);
    for (auto* bar : bars()) {
        if (isShown(*bar))
            bar->surface().orderFront();
    }
}

void BarPanels::closeAll()
{
    m_mirrorPanels.clear();
    m_fullscreenPanels.clear();
    m_panels.clear();
}

}
