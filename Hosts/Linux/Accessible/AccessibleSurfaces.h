#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "Hosts/Linux/PlacedSurface.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel::xdg {

/// The surfaces that assistive programs may see, and notice of their changes. Costs nothing while
/// nobody listens. Main thread; outlives the surfaces.
class AccessibleSurfaces {
public:
    using ID = std::uint64_t; ///< never reused

    struct Entry {
        ID id;
        const PlacedSurface* surface;
        SurfaceClient* client;
    };

    AccessibleSurfaces() = default;
    AccessibleSurfaces(const AccessibleSurfaces&) = delete;
    AccessibleSurfaces& operator=(const AccessibleSurfaces&) = delete;

    /// The surface is listed as long as the subscription is held.
    [[nodiscard]] Subscription add(const PlacedSurface& surface, SurfaceClient& client)
    {
        const auto id = ++m_lastID;
        m_entries.push_back({id, &surface, &client});
        changed.emit();
        return Subscription{std::shared_ptr<void>(nullptr, [this, id](void*) {
            std::erase_if(m_entries, [id](auto& entry) { return entry.id == id; });
            changed.emit();
        })};
    }

    const std::vector<Entry>& entries() const { return m_entries; }

    /// The surface may be about to go away: look at it in a later turn.
    Signal<> changed;

private:
    std::vector<Entry> m_entries;
    ID m_lastID = 0;
};

}
