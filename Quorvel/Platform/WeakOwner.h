#pragma once

#include <memory>

namespace quorvel {

/// A reference that may travel through other queues but resolves only on the owner's thread.
template <typename Owner> class WeakReference {
public:
    WeakReference() = default;
    explicit WeakReference(std::weak_ptr<Owner*> slot) : m_slot(std::move(slot)) { }

    /// Null once the owner is gone. On the owner's thread only.
    Owner* get() const
    {
        auto slot = m_slot.lock();
        return slot ? *slot : nullptr;
    }

private:
    std::weak_ptr<Owner*> m_slot;
};

/// A member of a class that is referenced weakly; declare it last, so that it is emptied first.
template <typename Owner> class WeakOwner {
public:
    explicit WeakOwner(Owner& owner) : m_slot(std::make_shared<Owner*>(&owner)) { }
    WeakOwner(const WeakOwner&) = delete;
    WeakOwner& operator=(const WeakOwner&) = delete;

    WeakReference<Owner> reference() const { return WeakReference<Owner>{m_slot}; }

private:
    std::shared_ptr<Owner*> m_slot;
};

}
