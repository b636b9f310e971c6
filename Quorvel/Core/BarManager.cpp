#include "Quorvel/Core/BarManager.h"

#include <algorithm>
#include <cstdlib>

#include "Quorvel/Core/CursorOwnershipLog.h"
#include "Quorvel/Core/MouseDisplayTracker.h"
#include "Quorvel/Core/ThumbnailService.h"
#include "Quorvel/Core/UserSettings.h"
#include "Quorvel/Platform/Application.h"
#include "Quorvel/Platform/Displays.h"
#include "Quorvel/Platform/Surfaces.h"
#include "Quorvel/Platform/Workspace.h"
#include "Quorvel/Skylight/WindowStore.h"

namespace quorvel {

namespace {

/// A switch for who looks into the program, not for its user.
bool isSwitchedOn(const char* variable)
{
    const char* value = std::getenv(variable);
    return value && std::string_view{value} == "1";
}

BarReservations::EdgeReservation edgeReservation()
{
    return isSwitchedOn("QUORVEL_EDGE_RESERVATION") ? BarReservations::EdgeReservation::on
                                                    : BarReservations::EdgeReservation::off;
}

}

BarManager::BarManager(const Platform& platform, WindowStore& windowStore, UserSettings& settings,
    BadgeService& badgeService, ThumbnailService& thumbnailService, BarFactory& factory)
    : m_platform(platform)
    , m_windowStore(windowStore)
    , m_spaceWindows(platform.windowServer, platform.displays)
    , m_settings(settings)
    , m_thumbnailService(thumbnailService)
    , m_appLauncher(platform)
    , m_pinStore(settings)
    , m_metrics(BarMetrics::of(settings.barSize()))
    , m_lastAppliedBarSize(settings.barSize())
    , m_viewModel(windowStore, settings, badgeService, platform)
    , m_launchMarks(m_viewModel, platform.workspace, platform.dispatch.main())
    , m_reservations(platform, edgeReservation())
    , m_dockRoom(platform.dockControl, m_reservations)
    , m_panels(platform, settings, m_dockRoom, factory)
    , m_windowFinder(m_viewModel, platform)
    , m_pinStates(m_windowFinder, badgeService)
    , m_launcher(platform, factory,
          {m_appLauncher, m_pinStore, settings, m_windowFinder, thumbnailService})
    , m_hiding(platform, windowStore, settings, m_viewModel, m_panels, m_launcher)
    , m_navigation(platform, windowStore, m_viewModel, settings, m_panels)
    , m_moves(platform, windowStore, m_viewModel, m_navigation)
    , m_windowStates(windowStore, platform.accessibility)
    , m_avoidanceManager(windowStore, platform.dispatch, platform.accessibility,
          platform.windowServer, platform.displays, barsToAvoid())
{
    if (isSwitchedOn("QUORVEL_CURSOR_OWNERSHIP_LOG")) {
        m_cursorOwnershipLog = std::make_unique<CursorOwnershipLog>(
            platform.surfaces, platform.displays, m_panels, platform.trace);
    }
    m_panels.onContentNeeded = [this](Bar& panel) { fill(panel); };
    m_launcher.onOpenChanged = [this](bool isOpen) { launcherDidOpen(isOpen); };
    m_launcher.onWindowChosen = [this](WindowID window) { m_navigation.goToWindow(window); };
    m_launcher.onWindowBrought = [this](WindowID window, SpaceID from, SpaceID to) {
        m_moves.bringWindow(window, from, to);
    };
    m_avoidanceManager.setBarHeight(barHeight(m_metrics.barSize));
    m_windowStore.onChange = [this] { windowsDidChange(); };
    m_navigation.onWillSwitch = [this] { prefetchCurrentSpaces(); };
    m_navigation.onScrollUnlocked = [this] { m_wheel.switchDidEnd(); };
    setupSpaceChangeObserver();
    m_minimizing = m_viewModel.willMinimizeWindows.subscribe(
        [this](const std::vector<WindowID>& windows) { m_thumbnailService.prefetch(windows); });
    m_settingsChange = settings.data().subscribe([this](auto&) { handleSettingsChanged(); });
    // What is announced right at the start puts nearer adjustments off, but not this one.
    m_avoidanceAfterStart = platform.dispatch.main().after(
        kAvoidanceAfterStart, [this] { m_avoidanceManager.scheduleAdjustment(Duration::zero()); });
}

BarManager::~BarManager()
{
    m_windowStore.onChange = [] { };
    closeAllPanels();
}

WheelNotches::Steps BarManager::wheelSteps()
{
    return {
        .isUnderWay = [this] { return m_navigation.isScrollSwitchLocked(); },
        .make = [this](auto& event, SpaceID bar) { handleScrollEvent(event, bar); },
        .currentSpace = [this](SpaceID bar) { return m_navigation.currentSpaceBeside(bar); },
    };
}

WindowAvoidanceManager::Bars BarManager::barsToAvoid()
{
    return {
        .getPanels =
            [this] {
                std::set<SpaceID> spaces;
                for (auto& [space, panel] : m_panels.panels())
                    spaces.insert(space);
                return m_hiding.isOn() ? std::set<SpaceID>{} : spaces;
            },
        .getMirrorScreenIndices =
            [this] {
                return m_hiding.isOn() ? std::vector<std::size_t>{} : m_panels.mirrorScreens();
            },
        .getSpaces = [this] { return m_spaceWindows.ask(); },
        .getDockRoom = [this](const Screen& screen) { return m_dockRoom.on(screen); },
    };
}

// MARK: What happens

void BarManager::windowsDidChange()
{
    // Twenty windows that close at once are one pass over the chips.
    if (!m_refresh.isPending())
        m_refresh = m_platform.dispatch.main().after(Duration::zero(), [this] { refreshNow(); });
    m_avoidanceManager.windowsDidChange();
}

void BarManager::refreshNow(const SpaceWindows::Answer& answer)
{
    m_refresh = {};
    m_viewModel.refresh(answer);
    m_hiding.update();
    m_thumbnailService.keepIf([this](WindowID id) { return m_windowStore.window(id) != nullptr; });
}

void BarManager::setupSpaceChangeObserver()
{
    m_activeSpaceChange = m_platform.workspace.activeSpaceDidChange.subscribe([this] {
        auto answer = m_spaceWindows.ask();
        refreshNow(answer);
        updateActiveSpacePanelVisibility(answer);
        dismissPopups();
        m_launcher.close();
        m_moves.spaceDidChange(answer.shown);
        m_navigation.spaceDidChange(answer.shown);
        if (onSpaceChange)
            onSpaceChange(answer);
        if (m_refresh.isPending()) // for windows that were found; it would ask again
            refreshNow(answer);
    });
}

void BarManager::handleSettingsChanged()
{
    auto size = m_settings.barSize();
    if (size != m_lastAppliedBarSize) {
        applyMetrics(BarMetrics::of(size));
        m_lastAppliedBarSize = size;
    }
    syncMirrorPanels();
    applyDockRectRegistrations();
    applyEdgeReservationsIfNeeded();
    m_avoidanceManager.scheduleAdjustment(Duration::zero());
}

void BarManager::applyMetrics(const BarMetrics& metrics)
{
    if (metrics.barSize == m_metrics.barSize)
        return;
    m_metrics = metrics;
    m_avoidanceManager.setBarHeight(barHeight(metrics.barSize));
    m_panels.rebuildContentViews();
    repositionPanels();
    applyEdgeReservationsIfNeeded();
    m_avoidanceManager.scheduleAdjustment(Duration::zero());
}

// MARK: Panels

void BarManager::syncPanels(const std::optional<SpaceWindows::Answer>& answer)
{
    if (!answer)
        return syncPanels(m_spaceWindows.ask());
    placePanels(*answer);
    applyEdgeReservationsIfNeeded();
    refreshNow(*answer);
    m_avoidanceManager.scheduleAdjustment(*answer);
}

void BarManager::screensDidChange()
{
    syncPanels();
    syncAgain();
}

void BarManager::syncAgain()
{
    m_syncAgain = m_platform.dispatch.main().after(kSyncAgain, [this] { syncPanels(); });
}

void BarManager::repositionPanels()
{
    placePanels(m_spaceWindows.ask());
    m_avoidanceManager.scheduleAdjustment(WindowAvoidanceManager::kPause);
}

void BarManager::placePanels(const SpaceWindows::Answer& answer)
{
    if (m_panels.place(answer))
        m_unansweredSyncs = 0;
    else if (m_unansweredSyncs++ < kMostSyncsAgain)
        syncAgain();
    m_launcher.follow(m_panels.bars());
    m_hiding.update();
    applyDockRectRegistrations();
}

void BarManager::syncMirrorPanels()
{
    if (!m_panels.syncMirrorPanels())
        syncAgain();
    m_launcher.follow(m_panels.bars());
    m_hiding.update();
}

void BarManager::updateActiveSpacePanelVisibility(const SpaceWindows::Answer& answer)
{
    m_panels.orderFront(answer.shown);
    m_hiding.update();
}

void BarManager::closeAllPanels()
{
    m_reservations.clearDockRectRegistrations();
    m_reservations.clearSystemReservations();
    m_mouseDisplayTracker.reset();
    m_syncAgain = {};
    m_launcher.close();
    m_panels.closeAll();
    m_hiding.update();
}

void BarManager::end()
{
    m_moves.end();
    m_navigation.end();
    closeAllPanels();
}

void BarManager::setHoverKeyingSuppressed(bool isSuppressed)
{
    m_isHoverKeyingSuppressed = isSuppressed;
    for (auto* bar : m_panels.bars())
        bar->setHoverKeyingSuppressed(isSuppressed);
}

Bar* BarManager::resolveLauncherAnchorPanel()
{
    auto screen = preferredMouseScreenIndex();
    Bar* chosen = nullptr;
    for (auto* bar : m_panels.bars()) {
        bool isBetter
            = !chosen || (bar->screenIndex() == screen && chosen->screenIndex() != screen);
        if (isBetter && bar->surface().isVisible())
            chosen = bar;
    }
    return chosen;
}

bool BarManager::toggleAppLauncher(LauncherCaller caller, LauncherKind kind)
{
    if (launcherPanel(kind)) {
        m_launcher.close();
        return true;
    }
    auto* anchor = resolveLauncherAnchorPanel();
    if (!anchor)
        return false;
    if (caller == LauncherCaller::anotherProgram)
        m_launcher.showForHeldShortcut(*anchor, kind);
    else
        m_launcher.show(*anchor, kind);
    return true;
}

void BarManager::launcherDidOpen(bool isOpen)
{
    setHoverKeyingSuppressed(isOpen);
    for (auto* bar : m_panels.bars())
        bar->setLauncherOpen(m_launcher.areApplicationsOpenFrom(*bar));
    if (isOpen)
        releaseKeyboards();
    m_hiding.update();
}

bool BarManager::toggleBar()
{
    auto* bar = resolveLauncherAnchorPanel();
    return bar && m_hiding.toggle(*bar);
}

bool BarManager::takeKeyboard()
{
    auto* chosen = resolveLauncherAnchorPanel();
    for (auto* bar : m_panels.bars()) {
        if (bar != chosen)
            bar->surface().releaseKeyboard();
    }
    if (!chosen)
        return false;
    m_hiding.callIn(*chosen);
    return chosen->surface().takeKeyboard();
}

void BarManager::useItem(std::size_t place, ItemUse use)
{
    // What comes forward is to have the keys that follow.
    m_launcher.close();
    releaseKeyboards();
    if (auto* bar = resolveLauncherAnchorPanel())
        bar->useItem(place, use);
}

void BarManager::releaseKeyboards()
{
    dismissPopups();
    for (auto* bar : m_panels.bars())
        bar->surface().releaseKeyboard();
}

void BarManager::fill(Bar& bar)
{
    bar.setHoverKeyingSuppressed(m_isHoverKeyingSuppressed);
    bar.onScroll
        = [this, space = bar.spaceID()](const ScrollEvent& event) { m_wheel.scroll(event, space); };
    bar.fill(contents(bar));
    bar.setLauncherOpen(m_launcher.areApplicationsOpenFrom(bar));
}

BarContents BarManager::contents(const Bar& bar)
{
    return {
        .viewModel = m_viewModel,
        .pinStore = m_pinStore,
        .launchMarks = m_launchMarks,
        .pinStates = m_pinStates,
        .settings = m_settings,
        .thumbnailService = m_thumbnailService,
        .windowStates = m_windowStates,
        // Where one bar stands for every screen it leaves no window out.
        .screenIndex = m_panels.isPerScreen() ? std::optional{bar.screenIndex()} : std::nullopt,
        .metrics = m_metrics,
        .onMenuPressed = [this, &bar] { return m_launcher.buttonPressed(bar); },
        .onMenuTapped = [this, &bar] { m_launcher.buttonTapped(bar); },
        .onSettingsRequested = onSettingsRequested,
        .onSpaceSwitchRequested = [this](SpaceID space) { switchToSpace(space); },
        .onMoveWindowToSpaceRequested
        = [this, from = bar.spaceID()](const std::vector<WindowID>& windows,
              SpaceID to) { m_moves.moveWindowsToSpace(windows, from, to); },
        .onWindowsFetched = [this, to = bar.spaceID()](const std::vector<WindowID>& windows,
                                SpaceID from) { m_moves.fetchWindows(windows, from, to); },
        .onWindowRequested = [this](WindowID window) { m_navigation.goToWindow(window); },
        .aboutWindow = aboutWindow,
        .onThumbnailWillShow = [this, &bar] { dismissPopups(&bar); },
    };
}

void BarManager::dismissPopups(const Bar* exception)
{
    for (auto* bar : m_panels.bars()) {
        if (bar != exception)
            bar->dismissPopups();
    }
}

// MARK: The pointer's display

std::optional<std::size_t> BarManager::preferredMouseScreenIndex()
{
    auto screens = m_platform.displays.screens();
    if (screens.size() <= 1)
        return screens.empty() ? std::nullopt : std::optional<std::size_t>{0};
    if (!m_mouseDisplayTracker) {
        m_mouseDisplayTracker
            = std::make_unique<MouseDisplayTracker>(m_platform.dispatch, m_platform.displays);
    }
    m_mouseDisplayTracker->look();
    auto display = m_mouseDisplayTracker->preferredDisplayID();
    auto found = std::ranges::find(screens, display, &Screen::number);
    if (found == screens.end())
        return {};
    return static_cast<std::size_t>(found - screens.begin());
}

// MARK: Window-server registrations

std::vector<Screen> BarManager::coveredScreensForBar() const
{
    auto screens = m_platform.displays.screens();
    std::vector<Screen> covered;
    if (m_hiding.isOn())
        return covered;
    for (auto index : m_panels.coveredScreens()) {
        // Where the Dock stands, the window server keeps its rectangle and no other.
        if (index < screens.size() && m_dockRoom.on(screens[index]) == 0)
            covered.push_back(screens[index]);
    }
    return covered;
}

void BarManager::applyDockRectRegistrations()
{
    m_reservations.applyDockRectRegistrations(coveredScreensForBar(), barHeight(m_metrics.barSize));
}

void BarManager::applyEdgeReservationsIfNeeded()
{
    m_reservations.applyEdgeReservationsIfNeeded(
        barsToAvoid().getPanels(), barHeight(m_metrics.barSize));
}

// MARK: Spaces

void BarManager::handleScrollEvent(const ScrollEvent& event, SpaceID from)
{
    if (auto direction = m_navigation.scrollDirection(event))
        switchToAdjacentSpace(*direction, from);
}

void BarManager::switchToAdjacentSpace(Direction direction, SpaceID from)
{
    m_navigation.switchToAdjacentSpace(direction, from);
}

void BarManager::switchToSpace(SpaceID space, std::optional<ProcessID> yieldingBack)
{
    m_navigation.switchToSpace(space, yieldingBack);
}

/// Windows that are left behind cannot be captured from elsewhere on every system.
void BarManager::prefetchCurrentSpaces()
{
    for (auto space : m_spaceWindows.getActiveSpaceIDs()) {
        std::vector<WindowID> windows;
        auto& chips = m_viewModel.chipsBySpace.value();
        if (auto found = chips.find(space); found != chips.end()) {
            for (auto& chip : found->second) {
                if (windows.size() < kPicturesBeforeLeaving && !chip.isMinimized
                    && !m_thumbnailService.cached(chip.id))
                    windows.push_back(chip.id);
            }
        }
        m_thumbnailService.prefetch(windows);
    }
}

void BarManager::moveWindowToSpaceByDragging(WindowID window, SpaceID from, SpaceID to)
{
    m_moves.moveWindowToSpaceByDragging(window, from, to);
}

}
