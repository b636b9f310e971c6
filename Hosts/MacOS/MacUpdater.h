#pragma once

#include <memory>

#include "Hosts/MacOS/Cocoa.h"
#include "Quorvel/Platform/Updater.h"

@class QVPropertyObserver;
@protocol QVUpdaterController;

namespace quorvel {

/// Sparkle's standard updater, from the framework in the program's own bundle.
class MacUpdater final : public Updater {
public:
    /// Null where the bundle has no such framework, or one that is not as expected.
    static std::unique_ptr<MacUpdater> load();
    ~MacUpdater() override;
    MacUpdater(const MacUpdater&) = delete;
    MacUpdater& operator=(const MacUpdater&) = delete;

    void start() override;
    void checkForUpdates() override;
    const Published<bool>& canCheckForUpdates() const override { return m_canCheckForUpdates; }

private:
    MacUpdater(id<QVUpdaterController>, NSObject* updater);

    id<QVUpdaterController> m_controller;
    Published<bool> m_canCheckForUpdates;
    QVPropertyObserver* m_observer;
};

}
