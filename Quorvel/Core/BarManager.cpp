#include "Quorvel/Core/BarManager.h"

#include <algorithm>

#include "Quorvel/Core/MouseDisplayTracker.h"
#include "Quorvel/Core/UserSettings.h"
#include "Quorvel/Platform/Application.h"
#include "Quorvel/Platform/Displays.h"
#include "Quorvel/Platform/Surfaces.h"
#include "Quorvel/Platform/Workspace.h"
#include "Quorvel/Skylight/WindowStore.h"
#include "Quorvel/Version.h"
#include "Quorvel/Views/BarPanel.h"

namespace quorvel {

BarManager::BarManager(const Platform& platform, WindowStore& windowStore, UserSettings& settings,
    BadgeService& badgeService)
    : m_platform(platform)
    , m_windowStore(windowStore)
    , m_spaceWindows(platform.windowServer, platform.displays)
    , m_settings(settings)
    , m_pinStore(settings)
    , m_metrics(BarMetrics::of(settings.barSize()))
    , m_viewModel(windowStore, settings, badgeService, platform)
{
    m_windowStore.onChange = [this] { windowsDidChange(); };
    setupSpaceChangeObserver();
    m_settingsChange = settings.data().subscribe([this](auto&) { barSizeMayHaveChanged(); });
}

BarManager::~BarManager()
{
    m_windowStore.onChange = nullptr;
    closeAllPanels();
}

void BarManager::windowsDidChange()
{
    // Twenty windows that close at once are one pass over the chips.
    if (!m_refresh.isPending())
        m_refresh = m_platform.dispatch.main().after(Duration::zero(), [this] { refreshNow(); });
}

void BarManager::refreshNow()
{
    m_refresh = {};
    m_viewModel.refresh();
}

void BarManager::setupSpaceChangeObserver()
{
    m_activeSpaceChange = m_platform.workspace.activeSpaceDidChange.subscribe([this] {
        refreshNow();
        updateActiveSpacePanelVisibility();
    });
}

void BarManager::barSizeMayHaveChanged()
{
    auto metrics = BarMetrics::of(m_settings.barSize());
    if (metrics == m_metrics)
        return;
    m_metrics = metrics;
    for (auto& [space, panel] : m_panels)
        panel->setContent(makeBarContentView(*panel));
    repositionPanels();
}

// MARK: Panels

void BarManager::syncPanels()
{
    repositionPanels();
    refreshNow();
}

void BarManager::repositionPanels()
{
    placePanels();
    applyDockRectRegistrations();
    trackPointerDisplay();
}

void BarManager::trackPointerDisplay()
{
    bool isNeeded = m_platform.displays.screens().size() > 1;
    if (!isNeeded) {
        m_mouseDisplayTracker.reset();
    } else if (!m_mouseDisplayTracker) {
        m_mouseDisplayTracker
            = std::make_unique<MouseDisplayTracker>(m_platform.dispatch, m_platform.displays);
        m_mouseDisplayTracker->start();
    }
}

std::optional<DisplayNumber> BarManager::pointerDisplay() const
{
    return m_mouseDisplayTracker ? m_mouseDisplayTracker->preferredDisplayID()
                                 : m_platform.displays.mainDisplay();
}

std::map<SpaceID, BarManager::Place> BarManager::wantedPlaces() const
{
    std::map<SpaceID, Place> places;
    auto screens = m_platform.displays.screens();
    if (screens.empty())
        return places;
    for (auto& info : m_spaceWindows.getSpaces(m_platform.windowServer.mainConnection())) {
        if (info.spaceType == kFullscreenSpaceType)
            continue;
        auto screen = m_spaceWindows.screen(info.displayIdentifier, screens);
        if (!screen)
            screen = m_spaceWindows.screen("MAIN", screens);
        auto found = screen ? std::find(screens.begin(), screens.end(), *screen) : screens.begin();
        auto index = static_cast<std::size_t>(found - screens.begin());
        places.emplace(info.spaceID, Place{index, *found});
    }
    return places;
}

void BarManager::placePanels()
{
    auto places = wantedPlaces();
    std::erase_if(m_panels, [&](auto& entry) {
        auto place = places.find(entry.first);
        // A panel belongs to its display for life.
        return place == places.end()
            || entry.second->display() != place->second.screen.number.value_or(DisplayNumber{})
            || entry.second->screenIndex() != place->second.screenIndex;
    });
    for (auto& [space, place] : places) {
        auto panel = m_panels.find(space);
        if (panel == m_panels.end())
            createPanel(space, place);
        else
            panel->second->surface().setFrame(panelFrame(place.screen));
    }
}

Rect BarManager::panelFrame(const Screen& screen) const
{
    auto& frame = screen.frame;
    return {frame.x, frame.y, frame.width, barHeight(m_metrics.barSize)};
}

void BarManager::createPanel(SpaceID space, const Place& place)
{
    auto panel = std::make_unique<BarPanel>(m_platform.surfaces,
        PanelOptions{space, place.screen.number.value_or(DisplayNumber{}), "Quorvel"},
        place.screenIndex);
    panel->setContent(makeBarContentView(*panel));
    panel->surface().setFrame(panelFrame(place.screen));
    panel->surface().orderFront();
    m_panels.emplace(space, std::move(panel));
}

std::unique_ptr<BarContentView> BarManager::makeBarContentView(BarPanel& panel)
{
    // Without separate spaces one bar stands for every screen, so it leaves no window out.
    bool isPerScreen = m_platform.windowServer.displaysHaveSeparateSpaces();
    auto view = std::make_unique<BarContentView>(BarContentView::Inputs{
        .viewModel = m_viewModel,
        .dispatch = m_platform.dispatch,
        .text = m_platform.text,
        .appearance = m_platform.application.appearance(),
        .spaceID = panel.spaceID(),
        .screenIndex = isPerScreen ? std::optional{panel.screenIndex()} : std::nullopt,
        .metrics = m_metrics,
        .isOpaque = panel.isOpaque(),
    });
    view->onMenuTapped = [this, &panel] { showMenu(panel); };
    view->onChipMenuRequested = [this, &panel](Menu menu, const Rect& anchor) {
        m_platform.surfaces.popUpMenu(panel.surface(), std::move(menu), anchor);
    };
    return view;
}

void BarManager::showMenu(BarPanel& panel)
{
    Menu menu;
    menu.push_back({std::string{"Quorvel "} + kVersion, false, {}});
    menu.push_back({});
    menu.push_back({"Quit Quorvel", true,
        [&application = m_platform.application] { application.terminate(); }});
    m_platform.surfaces.popUpMenu(
        panel.surface(), std::move(menu), panel.content()->menuButtonFrame());
}

void BarManager::updateActiveSpacePanelVisibility()
{
    auto connection = m_platform.windowServer.mainConnection();
    for (auto space : m_spaceWindows.getActiveSpaceIDs(connection)) {
        if (auto panel = m_panels.find(space); panel != m_panels.end())
            panel->second->surface().orderFront();
    }
}

void BarManager::closeAllPanels()
{
    clearDockRectRegistrations();
    m_mouseDisplayTracker.reset();
    m_panels.clear();
}

// MARK: Window-server registrations

std::map<DisplayNumber, BarManager::DockRectRegistration> BarManager::coveredScreensForBar() const
{
    std::map<DisplayNumber, DockRectRegistration> covered;
    auto screens = m_platform.displays.screens();
    for (auto& screen : screens) {
        bool hasBar = screen.number
            && std::any_of(m_panels.begin(), m_panels.end(),
                [&](auto& entry) { return entry.second->display() == *screen.number; });
        if (hasBar) {
            covered.emplace(*screen.number,
                DockRectRegistration{screen.frame.flipped(screens.front().frame.height),
                    barHeight(m_metrics.barSize)});
        }
    }
    return covered;
}

void BarManager::applyDockRectRegistrations()
{
    auto& server = m_platform.windowServer;
    auto connection = server.mainConnection();
    auto wanted = coveredScreensForBar();
    for (auto& [display, registration] : m_appliedDockRectRegistrations) {
        if (!wanted.contains(display))
            server.clearDockRectangle(connection, display);
    }
    for (auto& [display, registration] : wanted) {
        auto applied = m_appliedDockRectRegistrations.find(display);
        if (applied != m_appliedDockRectRegistrations.end() && applied->second == registration)
            continue;
        auto& screen = registration.screenFrame;
        double height = registration.barHeight;
        server.setDockRectangle(
            connection, {display, {screen.x, screen.maxY() - height, screen.width, height}});
    }
    m_appliedDockRectRegistrations = std::move(wanted);
}

void BarManager::clearDockRectRegistrations()
{
    auto connection = m_platform.windowServer.mainConnection();
    for (auto& [display, registration] : m_appliedDockRectRegistrations)
        m_platform.windowServer.clearDockRectangle(connection, display);
    m_appliedDockRectRegistrations.clear();
}

}
