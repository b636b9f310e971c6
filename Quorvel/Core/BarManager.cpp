#include "Quorvel/Core/BarManager.h"

#include <algorithm>

#include "Quorvel/Platform/Application.h"
#include "Quorvel/Platform/Displays.h"
#include "Quorvel/Platform/Surfaces.h"
#include "Quorvel/Platform/Workspace.h"
#include "Quorvel/Skylight/WindowStore.h"
#include "Quorvel/Version.h"
#include "Quorvel/Views/BarPanel.h"

namespace quorvel {

BarManager::BarManager(
    const Platform& platform, WindowStore& windowStore, const BarMetrics& metrics)
    : m_platform(platform)
    , m_windowStore(windowStore)
    , m_spaceWindows(platform.windowServer, platform.displays)
    , m_metrics(metrics)
    , m_viewModel(windowStore, platform.dispatch, platform.accessibility, platform.windowServer,
          platform.displays, platform.workspace, platform.trace)
{
    m_windowStore.onChange = [this] { m_viewModel.refresh(); };
    setupSpaceChangeObserver();
}

BarManager::~BarManager()
{
    m_windowStore.onChange = nullptr;
    closeAllPanels();
}

void BarManager::setupSpaceChangeObserver()
{
    m_activeSpaceChange = m_platform.workspace.activeSpaceDidChange.subscribe([this] {
        m_viewModel.refresh();
        updateActiveSpacePanelVisibility();
    });
}

// MARK: Panels

void BarManager::syncPanels()
{
    auto spaces = m_spaceWindows.getSpaces(m_platform.windowServer.mainConnection());
    std::set<SpaceID> wanted;
    for (auto& info : spaces) {
        if (info.spaceType == kFullscreenSpaceType)
            continue;
        wanted.insert(info.spaceID);
        if (!m_panels.contains(info.spaceID))
            createPanel(info);
    }
    std::erase_if(m_panels, [&](auto& entry) { return !wanted.contains(entry.first); });
    applyDockRectRegistrations();
}

std::optional<std::size_t> BarManager::screenIndexFor(
    const SpaceWindows::Info& info, const std::vector<Screen>& screens) const
{
    auto screen = m_spaceWindows.screen(info.displayIdentifier, screens);
    if (!screen)
        screen = m_spaceWindows.screen("MAIN", screens);
    auto found = screen ? std::find(screens.begin(), screens.end(), *screen) : screens.begin();
    if (found == screens.end())
        return {};
    return static_cast<std::size_t>(found - screens.begin());
}

std::optional<std::size_t> BarManager::screenIndex(SpaceID space) const
{
    auto spaces = m_spaceWindows.getSpaces(m_platform.windowServer.mainConnection());
    auto info = std::find_if(
        spaces.begin(), spaces.end(), [&](auto& candidate) { return candidate.spaceID == space; });
    if (info == spaces.end())
        return {};
    return screenIndexFor(*info, m_platform.displays.screens());
}

Rect BarManager::panelFrame(const Screen& screen) const
{
    auto& frame = screen.frame;
    return {frame.x, frame.y, frame.width, barHeight(m_metrics.barSize)};
}

void BarManager::createPanel(const SpaceWindows::Info& info)
{
    auto screens = m_platform.displays.screens();
    auto index = screenIndexFor(info, screens);
    if (!index)
        return;
    auto& screen = screens[*index];
    auto panel = std::make_unique<BarPanel>(m_platform.surfaces,
        PanelOptions{info.spaceID, screen.number.value_or(DisplayNumber{}), "Quorvel"});
    panel->setContent(makeBarContentView(*panel));
    panel->surface().setFrame(panelFrame(screen));
    panel->surface().orderFront();
    m_panels.emplace(info.spaceID, std::move(panel));
}

std::unique_ptr<BarContentView> BarManager::makeBarContentView(BarPanel& panel)
{
    // Without separate spaces one bar stands for every screen, so it leaves no window out.
    bool isPerScreen = m_platform.windowServer.displaysHaveSeparateSpaces();
    auto view = std::make_unique<BarContentView>(BarContentView::Inputs{
        .viewModel = m_viewModel,
        .dispatch = m_platform.dispatch,
        .appearance = m_platform.application.appearance(),
        .spaceID = panel.spaceID(),
        .screenIndex = isPerScreen ? screenIndex(panel.spaceID()) : std::nullopt,
        .metrics = m_metrics,
        .isOpaque = panel.isOpaque(),
    });
    view->onMenuTapped = [this, &panel] { showMenu(panel); };
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

void BarManager::repositionPanels()
{
    auto screens = m_platform.displays.screens();
    for (auto& [space, panel] : m_panels) {
        if (auto index = screenIndex(space))
            panel->surface().setFrame(panelFrame(screens[*index]));
    }
    applyDockRectRegistrations();
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
    m_panels.clear();
}

// MARK: Window-server registrations

std::map<DisplayNumber, BarManager::DockRectRegistration> BarManager::coveredScreensForBar() const
{
    std::map<DisplayNumber, DockRectRegistration> covered;
    auto screens = m_platform.displays.screens();
    for (auto& [space, panel] : m_panels) {
        auto index = screenIndex(space);
        if (!index || !screens[*index].number)
            continue;
        covered.insert_or_assign(*screens[*index].number,
            DockRectRegistration{screens[*index].frame, barHeight(m_metrics.barSize)});
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
    auto screens = m_platform.displays.screens();
    for (auto& [display, registration] : wanted) {
        auto applied = m_appliedDockRectRegistrations.find(display);
        if (applied != m_appliedDockRectRegistrations.end() && applied->second == registration)
            continue;
        auto& frame = registration.screenFrame;
        Rect bar{frame.x, frame.y, frame.width, registration.barHeight};
        server.setDockRectangle(connection, {display, bar.flipped(screens.front().frame.height)});
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
