#pragma once

#include <array>
#include <map>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "Quorvel/Core/LaunchPermissionsState.h"
#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Menu.h"
#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Platform/Published.h"
#include "Quorvel/Platform/Workspace.h"
#include "Quorvel/Skylight/Minimal.h"
#include "Quorvel/Skylight/SpaceWindows.h"

namespace quorvel {

class AXObserverManager;
class BadgeService;
class BarManager;
class BarViews;
class DockController;
class HotkeyManager;
class LaunchCoordinator;
class LaunchPermissionCenter;
class NumberKeys;
class PermissionsGateWindowController;
class SettingsPresenter;
class ThumbnailService;
class UpdaterService;
class UserSettings;
class WindowStore;

/// The long-lived objects of one running program. `main` owns it; the static accessors of
/// `QuorvelApp` refer to it, so that a test can build and drop several. Main thread.
class Runtime {
public:
    explicit Runtime(const Platform&);
    ~Runtime();
    Runtime(const Runtime&) = delete;
    Runtime& operator=(const Runtime&) = delete;

    static Runtime& current();

    const Platform& platform() const { return m_platform; }
    UserSettings& userSettings();
    /// Null where the system has no Dock.
    DockController* dockController();
    /// Null where there is nothing to update the program with.
    UpdaterService* updaterService();
    HotkeyManager& hotkeyManager();
    HotkeyManager& findHotkeyManager();
    HotkeyManager& barHotkeyManager();
    BadgeService& badgeService();
    ThumbnailService& thumbnailService();
    WindowStore& windowStore();
    AXObserverManager& axManager();
    /// Null until the main runtime has started.
    BarManager* barManager() { return m_barManager.get(); }

private:
    friend class QuorvelApp;

    void keep(Subscription subscription) { m_subscriptions.push_back(std::move(subscription)); }

    Platform m_platform;
    std::unique_ptr<UserSettings> m_userSettings;
    std::unique_ptr<DockController> m_dockController;
    std::unique_ptr<UpdaterService> m_updaterService;
    std::unique_ptr<HotkeyManager> m_hotkeyManager;
    std::unique_ptr<HotkeyManager> m_findHotkeyManager;
    std::unique_ptr<HotkeyManager> m_barHotkeyManager;
    std::unique_ptr<NumberKeys> m_numberKeys;
    std::unique_ptr<BadgeService> m_badgeService;
    std::unique_ptr<ThumbnailService> m_thumbnailService;
    std::unique_ptr<WindowStore> m_windowStore;
    std::unique_ptr<AXObserverManager> m_axManager;
    std::unique_ptr<BarViews> m_barViews;
    std::unique_ptr<BarManager> m_barManager;
    std::unique_ptr<SettingsPresenter> m_settingsPresenter;
    std::map<ProcessID, Instant> m_lastBootstrap;
    std::vector<Subscription> m_subscriptions;
    std::map<ProcessID, WorkItem> m_refreshAfterAttach;
    WorkItem m_refreshAfterChange; ///< of spaces, or after sleep
    std::unique_ptr<LaunchCoordinator> m_coordinator;
};

/// The entry point: creates the long-lived services and wires them together.
class QuorvelApp {
public:
    QuorvelApp() = delete;

    /// Activating one of these never starts window tracking.
    static constexpr auto excludedBootstrapBundleIDs = kSystemBundleIdentifiers;

    /// What the user has granted, for a rehearsal of the way through the permissions: it is shown
    /// in any case, begins there, and grants whatever it is asked for. Where one of them is really
    /// missing, the way is the real one.
    using Rehearsal = std::optional<LaunchPermissionsState>;

    /// Runs the program until it is terminated; returns the exit status.
    static int main(const Platform&, const Rehearsal& = {});
    /// Everything `main` does before the event loop.
    static void launch(Runtime&, const Rehearsal& = {});

    static WindowStore& windowStore() { return Runtime::current().windowStore(); }
    static AXObserverManager& axManager() { return Runtime::current().axManager(); }

    static void startMainRuntime(Application&);

private:
    static void wireShortcuts(Runtime&);
    static void wireObserverManager(Runtime&);
    static void observeWorkspace(Runtime&);
    static void observeHints(Runtime&);
    static void offerSettings(Runtime&);
    static void answerRequests(Runtime&);
    static void bootstrap(Runtime&, ProcessID);
    static void bootstrapUnlessTriedJustNow(Runtime&, ProcessID);
    static void followMendedMatches(Runtime&);
    static Menu about(Runtime&, WindowID);
    static void end(Runtime&);
    static void bootstrapRunning(Runtime&);
    static void applicationDidActivate(Runtime&, const RunningApplication&);
    enum class Occasion { wake, spaceChange };
    static void resynchronise(Runtime&, Occasion, const SpaceWindows::Answer&);
};

/// Starts the runtime exactly once, as soon as the user has granted both permissions.
class LaunchCoordinator {
public:
    LaunchCoordinator(const Platform&, std::unique_ptr<LaunchPermissionCenter>);
    ~LaunchCoordinator();

    void startMainRuntimeIfPossible();
    void showPermissionsGate();
    bool arePermissionsGranted() const;

    Application& app;
    bool didStartMainRuntime = false;

private:
    const Platform m_platform;
    const std::unique_ptr<LaunchPermissionCenter> m_permissions;
    std::unique_ptr<PermissionsGateWindowController> m_permissionsController;
};

}
