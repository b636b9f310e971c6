#include "Tests/Support/FakeObserver.h"

#include <algorithm>

#include "Tests/Support/Contract.h"
#include "Tests/Support/FakeDesktop.h"

namespace quorvel::test {

FakeObserver::FakeObserver(
    FakeDesktop& desktop, ProcessID pid, RunLoopThread& thread, Accessibility::Callback callback)
    : m_desktop(desktop)
    , m_pid(pid)
    , m_thread(thread)
    , m_callback(std::make_shared<const Accessibility::Callback>(std::move(callback)))
{
    m_desktop.accessibility().m_observers.push_back(this);
}

FakeObserver::~FakeObserver()
{
    if (!m_desktop.dispatch().hasEnded(m_thread))
        checkThread();
    std::erase(m_desktop.accessibility().m_observers, this);
}

void FakeObserver::checkThread() const
{
    if (!m_desktop.dispatch().isOn(m_thread))
        contractBroken("an observer was used away from its run loop's thread");
}

AXError FakeObserver::addNotification(const AXElement& element, std::string_view notification)
{
    checkThread();
    auto& accessibility = m_desktop.accessibility();
    AXMessage message{.kind = AXMessage::Kind::registration, .name = std::string{notification}};
    if (auto error = accessibility.send(element, message); error != AXError::success)
        return error;
    auto& application = *m_desktop.model().application(m_pid);
    if (application.faults.failingRegistrations.contains(message.name))
        return AXError::notificationUnsupported;
    if (isRegistered(element, notification))
        return AXError::notificationAlreadyRegistered;
    m_registrations.emplace_back(element, notification);
    return AXError::success;
}

AXError FakeObserver::removeNotification(const AXElement& element, std::string_view notification)
{
    checkThread();
    auto removed = std::erase(m_registrations, Registration{element, notification});
    return removed ? AXError::success : AXError::notificationNotRegistered;
}

bool FakeObserver::isRegistered(const AXElement& element, std::string_view notification) const
{
    return std::ranges::find(m_registrations, Registration{element, notification})
        != m_registrations.end();
}

void FakeObserver::notify(
    const AXElement& about, const AXElement& application, std::string_view notification)
{
    if (!isRegistered(about, notification) && !isRegistered(application, notification))
        return;
    // An element that is gone takes what was asked about it along.
    if (notification == ax::elementDestroyed)
        std::erase_if(m_registrations, [&](auto& each) { return each.first == about; });
    std::weak_ptr<const Accessibility::Callback> callback = m_callback;
    m_thread.perform([callback, about, name = std::string{notification}] {
        if (auto alive = callback.lock())
            (*alive)(about, name);
    });
}

}
