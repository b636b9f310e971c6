#include "Hosts/Linux/Desktop/IconNews.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace quorvel::xdg {

namespace {

constexpr Duration kPace = seconds(0.5);

}

void IconNews::announce()
{
    if (m_noted.empty())
        return;
    auto now = m_dispatch.now();
    std::erase_if(m_nextAt, [now](auto& entry) { return entry.second <= now; });
    std::set<std::string> due;
    std::optional<Instant> next;
    for (auto& bundleIdentifier : std::exchange(m_noted, {})) {
        auto held = m_nextAt.find(bundleIdentifier);
        if (held == m_nextAt.end()) {
            due.insert(bundleIdentifier);
            continue;
        }
        m_noted.insert(bundleIdentifier);
        next = std::min(next.value_or(held->second), held->second);
    }
    for (auto& bundleIdentifier : due)
        m_nextAt[bundleIdentifier] = now + kPace;
    if (next && (!m_later.isPending() || m_laterAt != *next)) {
        m_laterAt = *next;
        m_later = m_dispatch.main().after(*next - now, [this] { announce(); });
    }
    for (auto& bundleIdentifier : due)
        didChange.emit(bundleIdentifier);
}

}
