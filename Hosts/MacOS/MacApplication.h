#pragma once

#include <vector>

#include "Hosts/MacOS/Observation.h"
#include "Quorvel/Platform/Application.h"

@class QVApplicationDelegate;

namespace quorvel {

class MacApplication final : public Application {
public:
    MacApplication();
    ~MacApplication() override;

    void setActivationPolicy(ActivationPolicy) override;
    ProcessID processID() const override;
    std::optional<std::string> bundleIdentifier() const override;
    std::optional<int> operatingSystemMajorVersion() const override;
    void warn(std::string_view) override;
    int run() override;
    void terminate() override;
    const Published<Appearance>& appearance() const override { return m_appearance; }

private:
    void emitWillTerminate();
    void endOnSignal(int signal);

    Published<Appearance> m_appearance;
    std::vector<NotificationObserver> m_observers;
    QVPropertyObserver* m_darkObserver;
    QVApplicationDelegate* m_delegate;
    std::vector<dispatch_source_t> m_signalSources;
    bool m_hasEmittedWillTerminate = false;
};

}
