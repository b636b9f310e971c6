#pragma once

#include "Quorvel/Platform/Published.h"
#include "Quorvel/Platform/Updater.h"

namespace quorvel {

/// Keeps the program up to date where the system has a framework for it. Main thread.
class UpdaterService {
public:
    explicit UpdaterService(Updater& updater) : m_updater(updater)
    {
        canCheckForUpdates.set(updater.canCheckForUpdates().value());
        m_subscription = updater.canCheckForUpdates().subscribe(
            [this](bool canCheck) { canCheckForUpdates.set(canCheck); });
    }
    UpdaterService(const UpdaterService&) = delete;
    UpdaterService& operator=(const UpdaterService&) = delete;

    /// The running program's instance; null where there is nothing to update with. Use only where
    /// the program is wired together.
    static UpdaterService* shared();

    /// Checks in the background from now on.
    void start() { m_updater.start(); }
    void checkForUpdates() { m_updater.checkForUpdates(); }

    /// Whether a check may be asked for.
    Published<bool> canCheckForUpdates;

private:
    Updater& m_updater;
    Subscription m_subscription;
};

}
