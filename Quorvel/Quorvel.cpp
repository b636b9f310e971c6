#include "Quorvel/Quorvel.h"

#include <cassert>

#include "Quorvel/AboutWindowMenu.h"
#include "Quorvel/Core/BadgeService.h"
#include "Quorvel/Core/BarManager.h"
#include "Quorvel/Core/DockController.h"
#include "Quorvel/Core/HotkeyManager.h"
#include "Quorvel/Core/NumberKeys.h"
#include "Quorvel/Core/PermissionsRehearsal.h"
#include "Quorvel/Core/SettingsPresenter.h"
#include "Quorvel/Core/ThumbnailService.h"
#include "Quorvel/Core/UpdaterService.h"
#include "Quorvel/Core/UserSettings.h"
#include "Quorvel/Platform/Accessibility.h"
#include "Quorvel/Platform/Application.h"
#include "Quorvel/Platform/ApplicationMatching.h"
#include "Quorvel/Platform/ControlChannel.h"
#include "Quorvel/Platform/Displays.h"
#include "Quorvel/Platform/ScreenCapture.h"
#include "Quorvel/Platform/WindowServer.h"
#include "Quorvel/SettingsRequest.h"
#include "Quorvel/Skylight/AXObserverManager.h"
#include "Quorvel/Skylight/WindowStore.h"
#include "Quorvel/StateReport.h"
#include "Quorvel/Views/BarViews.h"
#include "Quorvel/Views/PermissionsGateWindowController.h"
#include "Quorvel/WindowExplanation.h"

namespace quorvel {

namespace {

constexpr Duration kLateRefresh = seconds(0.8);
constexpr Duration kBootstrapPause = seconds(1.5);

SpaceWindows::Answer askForSpaces(const Platform& platform)
{
    return SpaceWindows(platform.windowServer, platform.displays).ask();
}

bool mayBeBootstrapped(const RunningApplication& application)
{
    bool isExcluded
        = application.bundleIdentifier && isSystemBundleIdentifier(*application.bundleIdentifier);
    return application.activationPolicy == ActivationPolicy::regular && !isExcluded;
}

Runtime* s_current = nullptr;

ControlReply answerLauncherRequest(BarManager& manager, LauncherKind kind)
{
    if (manager.toggleAppLauncher(BarManager::LauncherCaller::anotherProgram, kind))
        return {};
    return {1, "", "quorvel: no bar is to be seen that the list could open from\n"};
}

ControlReply answerSettingsWindowRequest(SettingsPresenter& presenter)
{
    if (presenter.show())
        return {};
    return {1, "", "quorvel: there is no settings window; is quorvel-settings installed?\n"};
}

ControlReply answerToggleRequest(BarManager& manager, const UserSettings& settings)
{
    if (!settings.hidesBar())
        return {1, "", "quorvel: the bar does not hide; see --set autoHide=true\n"};
    if (manager.toggleBar())
        return {};
    return {1, "", "quorvel: no bar is to be seen that could hide\n"};
}

ControlReply answerFocusRequest(BarManager& manager)
{
    if (manager.takeKeyboard())
        return {};
    return {1, "", "quorvel: the bar is not to be seen, or another program holds the keyboard\n"};
}

}

// MARK: Runtime

Runtime::Runtime(const Platform& platform) : m_platform(platform)
{
    assert(!s_current);
    s_current = this;
}

Runtime::~Runtime()
{
    m_platform.control.setHandler({});
    s_current = nullptr;
}

Runtime& Runtime::current()
{
    assert(s_current);
    return *s_current;
}

UserSettings& Runtime::userSettings()
{
    if (!m_userSettings) {
        m_userSettings = std::make_unique<UserSettings>(m_platform.files, m_platform.loginItem,
            m_platform.application, m_platform.dispatch, m_platform.trace);
    }
    return *m_userSettings;
}

UserSettings& UserSettings::shared()
{
    return Runtime::current().userSettings();
}

DockController* Runtime::dockController()
{
    if (!m_dockController && m_platform.dockControl) {
        m_dockController = std::make_unique<DockController>(
            *m_platform.dockControl, m_platform.files, userSettings(), m_platform.dispatch);
    }
    return m_dockController.get();
}

DockController* DockController::shared()
{
    return Runtime::current().dockController();
}

UpdaterService* Runtime::updaterService()
{
    if (!m_updaterService && m_platform.updater)
        m_updaterService = std::make_unique<UpdaterService>(*m_platform.updater);
    return m_updaterService.get();
}

UpdaterService* UpdaterService::shared()
{
    return Runtime::current().updaterService();
}

HotkeyManager& Runtime::hotkeyManager()
{
    if (!m_hotkeyManager) {
        m_hotkeyManager = std::make_unique<HotkeyManager>(
            m_platform.hotkeys, userSettings(), m_platform.dispatch);
    }
    return *m_hotkeyManager;
}

HotkeyManager& Runtime::findHotkeyManager()
{
    if (!m_findHotkeyManager) {
        m_findHotkeyManager = std::make_unique<HotkeyManager>(m_platform.hotkeys, userSettings(),
            m_platform.dispatch, HotkeyPurpose::windows, std::vector{&hotkeyManager()});
    }
    return *m_findHotkeyManager;
}

HotkeyManager& Runtime::barHotkeyManager()
{
    if (!m_barHotkeyManager) {
        m_barHotkeyManager = std::make_unique<HotkeyManager>(m_platform.hotkeys, userSettings(),
            m_platform.dispatch, HotkeyPurpose::bar,
            std::vector{&hotkeyManager(), &findHotkeyManager()});
    }
    return *m_barHotkeyManager;
}

HotkeyManager& HotkeyManager::shared()
{
    return Runtime::current().hotkeyManager();
}

BadgeService& Runtime::badgeService()
{
    if (!m_badgeService) {
        m_badgeService = std::make_unique<BadgeService>(
            m_platform.dispatch, m_platform.launchServices, m_platform.trace);
    }
    return *m_badgeService;
}

BadgeService& BadgeService::shared()
{
    return Runtime::current().badgeService();
}

ThumbnailService& Runtime::thumbnailService()
{
    if (!m_thumbnailService) {
        m_thumbnailService = std::make_unique<ThumbnailService>(
            m_platform.dispatch, m_platform.screenCapture, m_platform.displays);
    }
    return *m_thumbnailService;
}

ThumbnailService& ThumbnailService::shared()
{
    return Runtime::current().thumbnailService();
}

WindowStore& Runtime::windowStore()
{
    if (!m_windowStore) {
        m_windowStore = std::make_unique<WindowStore>(m_platform.dispatch, m_platform.accessibility,
            m_platform.windowServer, m_platform.displays, m_platform.workspace, m_platform.trace);
    }
    return *m_windowStore;
}

AXObserverManager& Runtime::axManager()
{
    if (!m_axManager) {
        m_axManager = std::make_unique<AXObserverManager>(
            m_platform.dispatch, m_platform.accessibility, m_platform.dispatch.main());
    }
    return *m_axManager;
}

// MARK: LaunchCoordinator

LaunchCoordinator::LaunchCoordinator(
    const Platform& platform, std::unique_ptr<LaunchPermissionCenter> permissions)
    : app(platform.application)
    , m_platform(platform)
    , m_permissions(std::move(permissions))
{
}

LaunchCoordinator::~LaunchCoordinator() = default;

bool LaunchCoordinator::arePermissionsGranted() const
{
    return m_permissions->currentState().areAllGranted();
}

void LaunchCoordinator::showPermissionsGate()
{
    m_permissionsController
        = std::make_unique<PermissionsGateWindowController>(m_platform, *m_permissions);
    m_permissionsController->onContinue = [this] {
        startMainRuntimeIfPossible();
        // One of them was taken back just now, when the window had closed.
        if (!didStartMainRuntime)
            m_permissionsController->show();
    };
    m_permissionsController->onQuit = [this] { app.terminate(); };
    m_permissionsController->show();
}

void LaunchCoordinator::startMainRuntimeIfPossible()
{
    if (didStartMainRuntime || !arePermissionsGranted())
        return;
    if (auto controller = std::move(m_permissionsController))
        controller->close();
    didStartMainRuntime = true;
    QuorvelApp::startMainRuntime(app);
}

// MARK: QuorvelApp

namespace {

/// Where something is missing in earnest, the way through the permissions is no rehearsal.
std::unique_ptr<LaunchPermissionCenter> makePermissionCenter(
    const Platform& platform, const QuorvelApp::Rehearsal& rehearsal)
{
    auto center = std::make_unique<LaunchPermissionCenter>(
        platform.accessibility, platform.screenCapture, platform.workspace);
    if (!rehearsal || !center->currentState().areAllGranted())
        return center;
    return std::make_unique<PermissionsRehearsal>(
        *rehearsal, platform.accessibility, platform.screenCapture, platform.workspace);
}

}

int QuorvelApp::main(const Platform& platform, const Rehearsal& rehearsal)
{
    Runtime runtime(platform);
    launch(runtime, rehearsal);
    return platform.application.run();
}

void QuorvelApp::launch(Runtime& runtime, const Rehearsal& rehearsal)
{
    auto& platform = runtime.m_platform;
    platform.application.setActivationPolicy(ActivationPolicy::accessory);
    runtime.userSettings();
    runtime.dockController();
    runtime.keep(platform.application.willTerminate.subscribe([&runtime] { end(runtime); }));
    answerRequests(runtime);
    runtime.m_coordinator
        = std::make_unique<LaunchCoordinator>(platform, makePermissionCenter(platform, rehearsal));
    if (!rehearsal && runtime.m_coordinator->arePermissionsGranted())
        runtime.m_coordinator->startMainRuntimeIfPossible();
    else
        runtime.m_coordinator->showPermissionsGate();
}

void QuorvelApp::startMainRuntime(Application& app)
{
    auto& runtime = Runtime::current();
    auto& platform = runtime.m_platform;
    app.setActivationPolicy(ActivationPolicy::accessory);
    if (auto* updater = UpdaterService::shared())
        updater->start();
    runtime.m_lastBootstrap.clear();
    followMendedMatches(runtime);
    // The bar must have windows before its first layout.
    runtime.windowStore().populate();
    runtime.m_barViews = std::make_unique<BarViews>(platform);
    runtime.m_barManager
        = std::make_unique<BarManager>(platform, runtime.windowStore(), UserSettings::shared(),
            BadgeService::shared(), ThumbnailService::shared(), *runtime.m_barViews);
    runtime.m_barManager->aboutWindow = [&runtime](WindowID id) { return about(runtime, id); };
    wireShortcuts(runtime);
    offerSettings(runtime);
    runtime.m_barManager->syncPanels();
    runtime.m_barManager->repositionPanels();
    runtime.keep(platform.displays.parametersDidChange.subscribe(
        [&runtime] { runtime.m_barManager->screensDidChange(); }));
    wireObserverManager(runtime);
    observeWorkspace(runtime);
    observeHints(runtime);
    bootstrapRunning(runtime);
}

Menu QuorvelApp::about(Runtime& runtime, WindowID id)
{
    auto& manager = *runtime.m_barManager;
    return AboutWindowMenu(runtime.m_platform, runtime.windowStore(), manager.viewModel(),
        manager.pinStore(), runtime.userSettings())
        .of(id);
}

void QuorvelApp::followMendedMatches(Runtime& runtime)
{
    auto* matching = runtime.m_platform.applicationMatching;
    if (!matching)
        return;
    matching->setMended(runtime.userSettings().mendedMatches());
    runtime.keep(runtime.userSettings().data().subscribe([matching](const UserSettingsData& data) {
        matching->setMended(data.more.mendedMatches.value_or(ApplicationMatching::Mended{}));
    }));
}

void QuorvelApp::end(Runtime& runtime)
{
    if (runtime.m_barManager)
        runtime.m_barManager->end();
    // Last: it may take seconds, and whoever waits for the end may lose patience.
    if (runtime.m_dockController)
        runtime.m_dockController->finishRestarts();
}

void QuorvelApp::wireShortcuts(Runtime& runtime)
{
    auto& hotkeys = HotkeyManager::shared();
    hotkeys.onHotkeyPressed = [&runtime] { runtime.m_barManager->toggleAppLauncher(); };
    auto& findHotkeys = runtime.findHotkeyManager();
    findHotkeys.onHotkeyPressed = [&runtime] {
        runtime.m_barManager->toggleAppLauncher(
            BarManager::LauncherCaller::thisProgram, LauncherKind::windows);
    };
    auto& barHotkeys = runtime.barHotkeyManager();
    barHotkeys.onHotkeyPressed = [&runtime] { runtime.m_barManager->toggleBar(); };
    runtime.m_numberKeys = std::make_unique<NumberKeys>(runtime.m_platform.hotkeys,
        std::vector<const HotkeyManager*>{&hotkeys, &findHotkeys, &barHotkeys},
        runtime.userSettings(), runtime.m_platform.dispatch);
    runtime.m_numberKeys->onPressed
        = [&runtime](std::size_t place, ItemUse use) { runtime.m_barManager->useItem(place, use); };
}

void QuorvelApp::wireObserverManager(Runtime& runtime)
{
    auto& manager = runtime.axManager();
    manager.onEvent
        = [&runtime](const AXWindowEvent& event) { runtime.windowStore().handleAXEvent(event); };
    manager.onObserverAdded = [&runtime](ProcessID pid) {
        runtime.windowStore().handleObserverAttached(pid);
        runtime.windowStore().addWindowsForPID(pid);
        // It may have come to the front before it could be asked for its focus.
        if (runtime.m_platform.workspace.frontmostApplication() == pid)
            runtime.windowStore().handleAppActivated(pid);
        runtime.m_refreshAfterAttach[pid]
            = runtime.m_platform.dispatch.main().after(kLateRefresh, [&runtime, pid] {
                  runtime.axManager().refreshWindows({pid});
                  runtime.m_refreshAfterAttach.erase(pid);
              });
    };
    manager.onObserverFailed
        = [&runtime](ProcessID pid) { runtime.windowStore().handleObserverFailed(pid); };
    runtime.windowStore().onObservationNeeded
        = [&runtime](ProcessID pid) { runtime.axManager().refreshWindows({pid}); };
    manager.start();
    for (auto pid : runtime.windowStore().trackedPIDs())
        manager.observe(pid);
}

void QuorvelApp::observeWorkspace(Runtime& runtime)
{
    auto& workspace = runtime.m_platform.workspace;
    runtime.keep(workspace.didLaunch.subscribe([&runtime](const RunningApplication& application) {
        if (application.activationPolicy == ActivationPolicy::regular)
            bootstrap(runtime, application.pid);
    }));
    runtime.keep(
        workspace.didTerminate.subscribe([&runtime](const RunningApplication& application) {
            runtime.m_refreshAfterAttach.erase(application.pid);
            runtime.m_lastBootstrap.erase(application.pid);
            runtime.axManager().stopObserving(application.pid);
            runtime.windowStore().removeWindows(application.pid);
        }));
    runtime.keep(workspace.didActivate.subscribe([&runtime](const RunningApplication& application) {
        applicationDidActivate(runtime, application);
    }));
    runtime.keep(workspace.didWake.subscribe(
        [&runtime] { resynchronise(runtime, Occasion::wake, askForSpaces(runtime.m_platform)); }));
    runtime.m_barManager->onSpaceChange = [&runtime](const SpaceWindows::Answer& spaces) {
        resynchronise(runtime, Occasion::spaceChange, spaces);
    };
}

void QuorvelApp::bootstrap(Runtime& runtime, ProcessID pid)
{
    runtime.axManager().observe(pid);
    runtime.windowStore().startLifecycleMonitoring(pid, WindowStore::kLaunchTickDelay);
    runtime.windowStore().scheduleDeferredScan(pid);
}

/// Nobody announces the start of what runs already, nor the activation of what is in front: their
/// first windows may be still to come.
void QuorvelApp::bootstrapRunning(Runtime& runtime)
{
    auto& workspace = runtime.m_platform.workspace;
    auto frontmost = workspace.frontmostApplication();
    auto tracked = runtime.windowStore().trackedPIDs();
    std::set<ProcessID> pids;
    workspace.enumerateRunningApplications([&](const RunningApplication& application) {
        bool isOurs = application.pid == runtime.m_platform.application.processID();
        if (!isOurs && mayBeBootstrapped(application) && !tracked.contains(application.pid))
            pids.insert(application.pid);
    });
    for (auto pid : pids) {
        if (pid == frontmost)
            bootstrapUnlessTriedJustNow(runtime, pid);
        else
            runtime.axManager().observe(pid);
    }
}

void QuorvelApp::applicationDidActivate(Runtime& runtime, const RunningApplication& application)
{
    auto pid = application.pid;
    // A question to ourselves would wait for the very thread that asks.
    if (pid == runtime.m_platform.application.processID())
        return;
    auto& store = runtime.windowStore();
    if (auto& bundleID = application.bundleIdentifier)
        runtime.badgeService().clearAttention(*bundleID, store.windowIDs(*bundleID));
    store.handleAppActivated(pid);
    if (!store.needsObserverBootstrap(pid))
        runtime.m_lastBootstrap.erase(pid);
    else if (mayBeBootstrapped(application))
        bootstrapUnlessTriedJustNow(runtime, pid);
}

void QuorvelApp::bootstrapUnlessTriedJustNow(Runtime& runtime, ProcessID pid)
{
    auto now = runtime.m_platform.dispatch.now();
    auto last = runtime.m_lastBootstrap.find(pid);
    if (last != runtime.m_lastBootstrap.end() && now - last->second < kBootstrapPause)
        return;
    runtime.m_lastBootstrap[pid] = now;
    bootstrap(runtime, pid);
}

void QuorvelApp::resynchronise(
    Runtime& runtime, Occasion occasion, const SpaceWindows::Answer& answer)
{
    auto& store = runtime.windowStore();
    auto spaces = store.lookAtSpaces(answer);
    store.refreshSpaces(spaces);
    if (occasion == Occasion::wake)
        store.resyncMinimizedWindows();
    runtime.m_barManager->syncPanels(answer);
    store.discoverNewWindowsForTrackedPIDs(std::move(spaces));
    runtime.axManager().refreshWindows(store.trackedPIDs());
    // Applications are slow to list the windows of another space.
    runtime.m_refreshAfterChange
        = runtime.m_platform.dispatch.main().after(kLateRefresh, [&runtime, shown = answer.shown] {
              std::set<ProcessID> owners;
              for (auto space : shown) {
                  for (auto* window : runtime.windowStore().windows(space))
                      owners.insert(window->pid);
              }
              runtime.axManager().refreshWindows(owners);
          });
}

void QuorvelApp::observeHints(Runtime& runtime)
{
    auto& server = runtime.m_platform.windowServer;
    runtime.keep(server.spacesOfWindowsDidChange.subscribe(
        [&runtime] { runtime.windowStore().refreshSpaces(); }));
    runtime.keep(server.spacesDidChange.subscribe([&runtime] {
        auto answer = askForSpaces(runtime.m_platform);
        auto& store = runtime.windowStore();
        store.refreshSpaces(store.lookAtSpaces(answer));
        runtime.m_barManager->syncPanels(answer);
    }));
}

void QuorvelApp::offerSettings(Runtime& runtime)
{
    auto& platform = runtime.m_platform;
    auto& manager = *runtime.m_barManager;
    const SettingsSubjects subjects{.settings = UserSettings::shared(),
        .pinStore = manager.pinStore(),
        .appLauncher = manager.appLauncher(),
        .loginItem = platform.loginItem,
        .hotkeyManager = HotkeyManager::shared(),
        .findHotkeyManager = runtime.findHotkeyManager(),
        .barHotkeyManager = runtime.barHotkeyManager(),
        .numberKeys = *runtime.m_numberKeys,
        .hotkeys = platform.hotkeys,
        .dockController = DockController::shared(),
        .updaterService = UpdaterService::shared()};
    runtime.m_settingsPresenter = std::make_unique<SettingsPresenter>(
        subjects, platform.settingsWindow, platform.control, platform.dispatch);
    if (platform.settingsWindow)
        manager.onSettingsRequested
            = [&presenter = *runtime.m_settingsPresenter] { presenter.show(); };
}

void QuorvelApp::answerRequests(Runtime& runtime)
{
    runtime.m_platform.control.setHandler(
        [&runtime](const std::vector<std::string>& arguments) -> ControlReply {
            if (arguments == std::vector<std::string>{"--quit"}) {
                // On the next turn, when the reply is on its way.
                runtime.m_platform.dispatch.main().async(
                    [&application = runtime.m_platform.application] { application.terminate(); });
                return {};
            }
            if (isSettingsRequest(arguments))
                return answerSettingsRequest(runtime.userSettings(), arguments);
            bool asksForWindow = WindowExplanation::isRequest(arguments);
            bool asksForFocus = arguments == std::vector<std::string>{"--focus"};
            bool asksForLauncher = arguments == std::vector<std::string>{"--launcher"};
            bool asksForWindows = arguments == std::vector<std::string>{"--find"};
            bool asksForSettings = arguments == std::vector<std::string>{"--settings"};
            bool asksToToggle = arguments == std::vector<std::string>{"--toggle-bar"};
            if (!asksForWindow && !asksForFocus && !asksForLauncher && !asksForWindows
                && !asksForSettings && !asksToToggle
                && arguments != std::vector<std::string>{"--state"})
                return {1, "", "quorvel: the running bar does not know this request\n"};
            if (!runtime.barManager())
                return {1, "", "quorvel: the bar is waiting for permissions\n"};
            if (asksForWindow)
                return WindowExplanation(runtime.m_platform, runtime.windowStore(),
                    runtime.barManager()->viewModel(), runtime.userSettings())
                    .answer(arguments);
            if (asksForFocus)
                return answerFocusRequest(*runtime.barManager());
            if (asksForLauncher || asksForWindows)
                return answerLauncherRequest(*runtime.barManager(),
                    asksForLauncher ? LauncherKind::applications : LauncherKind::windows);
            if (asksToToggle)
                return answerToggleRequest(*runtime.barManager(), runtime.userSettings());
            if (asksForSettings)
                return answerSettingsWindowRequest(*runtime.m_settingsPresenter);
            return {0,
                stateReport(runtime.m_platform, runtime.windowStore(), *runtime.barManager(),
                    *runtime.m_barViews,
                    {runtime.hotkeyManager(), runtime.findHotkeyManager(),
                        runtime.barHotkeyManager(), *runtime.m_numberKeys}),
                ""};
        });
}

}
