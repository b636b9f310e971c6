#include "Hosts/Linux/Desktop/ObserverRegistry.h"

#include <algorithm>
#include <array>
#include <ranges>

#include "Hosts/Linux/Desktop/Elements.h"

namespace quorvel::xdg {

namespace {

constexpr std::array kApplicationNotifications{ax::windowCreated, ax::focusedWindowChanged};
constexpr std::array kWindowNotifications{ax::titleChanged, ax::windowResized, ax::windowMoved,
    ax::windowMiniaturized, ax::windowDeminiaturized, ax::elementDestroyed};

AXElement senderOf(const DesktopNotification& notification)
{
    return notification.registeredOn ? elementOf(*notification.registeredOn)
                                     : elementOf(notification.owner);
}

}

class ObserverRegistry::Observer final : public AXObserver {
public:
    Observer(ObserverRegistry& registry, std::shared_ptr<State> state)
        : m_registry(registry)
        , m_state(std::move(state))
    {
    }
    ~Observer() override { m_registry.end(m_state); }

    AXError addNotification(const AXElement& element, std::string_view name) override
    {
        return m_registry.add(*m_state, element, name);
    }
    AXError removeNotification(const AXElement& element, std::string_view name) override
    {
        return m_registry.remove(*m_state, element, name);
    }

private:
    ObserverRegistry& m_registry;
    std::shared_ptr<State> m_state;
};

std::unique_ptr<AXObserver> ObserverRegistry::makeObserver(
    ProcessID pid, RunLoopThread& thread, Accessibility::Callback callback)
{
    auto state = std::make_shared<State>(State{pid, thread, std::move(callback), {}, false});
    std::scoped_lock lock{m_mutex};
    m_observers.emplace(pid, state);
    return std::make_unique<Observer>(*this, std::move(state));
}

AXError ObserverRegistry::add(State& state, const AXElement& element, std::string_view name)
{
    auto application = applicationIn(element);
    auto window = windowIn(element, ElementKind::window);
    bool isKnown = application ? std::ranges::count(kApplicationNotifications, name) > 0
                               : window && std::ranges::count(kWindowNotifications, name) > 0;
    if (!isKnown)
        return AXError::notificationUnsupported;
    bool isThere = m_model.read([&](const DesktopModel& model) {
        return application ? model.application(*application) != nullptr
                           : model.window(*window) != nullptr;
    });
    if (!isThere)
        return AXError::invalidElement;

    std::scoped_lock lock{m_mutex};
    bool isNew = state.registrations.emplace(element.token, name).second;
    return isNew ? AXError::success : AXError::notificationAlreadyRegistered;
}

AXError ObserverRegistry::remove(State& state, const AXElement& element, std::string_view name)
{
    std::scoped_lock lock{m_mutex};
    bool wasThere = state.registrations.erase({element.token, std::string{name}}) > 0;
    return wasThere ? AXError::success : AXError::notificationNotRegistered;
}

void ObserverRegistry::end(const std::shared_ptr<State>& state)
{
    state->hasEnded = true;
    std::scoped_lock lock{m_mutex};
    std::erase_if(m_observers, [&](const auto& entry) { return entry.second == state; });
}

void ObserverRegistry::deliver(const std::vector<DesktopNotification>& notifications)
{
    if (notifications.empty())
        return;
    std::scoped_lock lock{m_mutex};
    std::map<std::shared_ptr<State>, Batch> batches;
    for (auto& notification : notifications) {
        const auto sender = senderOf(notification).token;
        const Registration wanted{sender, notification.name};
        auto [first, last] = m_observers.equal_range(notification.owner);
        for (auto& [pid, state] : std::ranges::subrange(first, last)) {
            if (state->registrations.contains(wanted))
                batches[state].emplace_back(elementOf(notification.window), notification.name);
            // The registrations of an element end with it.
            if (notification.name == ax::elementDestroyed)
                std::erase_if(
                    state->registrations, [&](const auto& entry) { return entry.first == sender; });
        }
    }
    for (auto& [state, batch] : batches) {
        state->thread.perform([observer = state, notices = std::move(batch)] {
            for (auto& [element, name] : notices) {
                if (observer->hasEnded)
                    return;
                observer->callback(element, name);
            }
        });
    }
}

}
