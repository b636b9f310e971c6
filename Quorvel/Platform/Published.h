#pragma once

#include <algorithm>
#include <functional>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

namespace quorvel {

/// Keeps a subscription alive; dropping it unsubscribes.
class Subscription {
public:
    Subscription() = default;
    explicit Subscription(std::shared_ptr<void> token) : m_token(std::move(token)) { }

private:
    std::shared_ptr<void> m_token;
};

/// An event source. One thread; subscribers are called in the order of subscription and may
/// subscribe, unsubscribe and emit inside the call.
template <typename... Arguments> class Signal {
public:
    using Subscriber = std::function<void(const Arguments&...)>;

    Signal() = default;
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;

    [[nodiscard]] Subscription subscribe(Subscriber subscriber) const
    {
        auto entry = std::make_shared<Subscriber>(std::move(subscriber));
        auto list = current();
        list.push_back(entry);
        m_list = std::make_shared<const List>(std::move(list));
        return Subscription{std::move(entry)};
    }

    void emit(const Arguments&... arguments) const
    {
        if (m_list && std::ranges::any_of(*m_list, hasLeft))
            m_list = std::make_shared<const List>(current());
        // A list is never changed, only replaced: to keep this one costs less than a copy of it.
        const auto list = m_list;
        if (!list)
            return;
        for (auto& entry : *list) {
            if (auto subscriber = entry.lock())
                (*subscriber)(arguments...);
        }
    }

private:
    using Entry = std::weak_ptr<Subscriber>;
    using List = std::vector<Entry>;

    static bool hasLeft(const Entry& entry) { return entry.expired(); }
    /// Those who have not unsubscribed.
    List current() const
    {
        List list;
        if (m_list)
            std::ranges::remove_copy_if(*m_list, std::back_inserter(list), hasLeft);
        return list;
    }

    mutable std::shared_ptr<const List> m_list; ///< null until somebody subscribes
};

/// A value that others watch. Setting an equal value does nothing; subscribers are called after the
/// new one is stored.
template <typename Value> class Published {
public:
    Published() = default;
    explicit Published(Value value) : m_value(std::move(value)) { }

    const Value& value() const { return m_value; }

    void set(Value value)
    {
        if (value == m_value)
            return;
        m_value = std::move(value);
        m_changed.emit();
    }

    /// Changes the value in place. `change` returns whether it did, and must call nobody.
    template <typename Change> void update(Change&& change)
    {
        if (std::forward<Change>(change)(m_value))
            m_changed.emit();
    }

    [[nodiscard]] Subscription subscribe(std::function<void(const Value&)> subscriber) const
    {
        return m_changed.subscribe(
            [this, subscriber = std::move(subscriber)] { subscriber(m_value); });
    }

private:
    Value m_value{};
    Signal<> m_changed;
};

}
