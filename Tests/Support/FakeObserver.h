#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Quorvel/Platform/Accessibility.h"

namespace quorvel::test {

class FakeDesktop;

/// An observer as the system makes it: it hears what it registered for, on its run loop's thread.
class FakeObserver final : public AXObserver {
public:
    FakeObserver(FakeDesktop&, ProcessID, RunLoopThread&, Accessibility::Callback);
    ~FakeObserver() override;

    AXError addNotification(const AXElement&, std::string_view notification) override;
    AXError removeNotification(const AXElement&, std::string_view notification) override;

    ProcessID pid() const { return m_pid; }
    bool isRegistered(const AXElement&, std::string_view notification) const;

    /// Creation and focus are announced to who asked the application, about the window.
    void notify(
        const AXElement& about, const AXElement& application, std::string_view notification);

private:
    using Registration = std::pair<AXElement, std::string>;

    void checkThread() const;

    FakeDesktop& m_desktop;
    ProcessID m_pid;
    RunLoopThread& m_thread;
    std::shared_ptr<const Accessibility::Callback> m_callback; // shared with what is under way
    std::vector<Registration> m_registrations;
};

}
