#include "Hosts/Linux/Desktop/ObserverRegistry.h"

#include <algorithm>
#include <array>
#include <optional>
#include <ranges>

#include "Hosts/Linux/Desktop/Elements.h"

namespace quorvel::xdg {

namespace {

/// Those of an application, then those of a window.
constexpr std::array kNotifications{ax::windowCreated, ax::focusedWindowChanged, ax::titleChanged,
    ax::windowResized, ax::windowMoved, ax::windowMiniaturized, ax::windowDeminiaturized,
    ax::elementDestroyed};
constexpr std::size_t kOfApplications = 2;

/// Its place in the list; absent for one that nobody sends.
std::optional<std::size_t> placeOf(std::string_view name)
{
    auto found = std::ranges::find(kNotifications, name);
    if (found == kNotifications.end())
        return std::nullopt;
    return static_cast<std::size_t>(found - kNotifications.begin());
}

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
    auto place = placeOf(name);
    if (!place || !(*place < kOfApplications ? application.has_value() : window.has_value()))
        return AXError::notificationUnsupported;
    bool isThere = m_model.read([&](const DesktopModel& model) {
        return application ? model.application(*application) != nullptr
                           : model.window(*window) != nullptr;
    });
    if (!isThere)
        return AXError::invalidElement;

    std::scoped_lock lock{m_mutex};
    static_assert(kNotifications.size() <= Names{}.size());
    auto& names = state.registrations[element.token];
    if (names.test(*place))
        return AXError::notificationAlreadyRegistered;
    names.set(*place);
    return AXError::success;
}

AXError ObserverRegistry::remove(State& state, const AXElement& element, std::string_view name)
{
    std::scoped_lock lock{m_mutex};
    auto found = state.registrations.find(element.token);
    auto place = placeOf(name);
    if (found == state.registrations.end() || !place || !found->second.test(*place))
        return AXError::notificationNotRegistered;
    if (found->second.reset(*place).none())
        state.registrations.erase(found);
    return AXError::success;
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
        const auto place = placeOf(notification.name);
        auto [first, last] = m_observers.equal_range(notification.owner);
        for (auto& [pid, state] : std::ranges::subrange(first, last)) {
            auto found = state->registrations.find(senderOf(notification).token);
            if (!place || found == state->registrations.end())
                continue;
            if (found->second.test(*place))
                batches[state].emplace_back(elementOf(notification.window), notification.name);
            // The registrations of an element end with it.
            if (notification.name == ax::elementDestroyed)
                state->registrations.erase(found);
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
