#include "Quorvel/Core/ThumbnailCache.h"

#include <algorithm>

namespace quorvel {

std::optional<WindowPicture> ThumbnailCache::ifFresh(WindowID id, Instant now) const
{
    const auto found = m_cache.find(id);
    if (found == m_cache.end() || now - found->second.capturedAt >= cacheTTL)
        return {};
    return found->second.picture;
}

std::optional<WindowPicture> ThumbnailCache::ofAnyAge(WindowID id) const
{
    const auto found = m_cache.find(id);
    return found == m_cache.end() ? std::nullopt : std::optional{found->second.picture};
}

void ThumbnailCache::store(WindowID id, WindowPicture picture, Instant now)
{
    if (m_cache.size() >= maxCacheSize)
        removeOldest();
    auto& entry = m_cache[id];
    m_bytes = m_bytes - entry.picture.bytes() + picture.bytes();
    entry = {std::move(picture), now};
    while (m_bytes > maxCacheBytes && m_cache.size() > 1)
        removeOldest();
}

std::vector<WindowID> ThumbnailCache::windows() const
{
    std::vector<WindowID> ids;
    for (auto& [id, cached] : m_cache)
        ids.push_back(id);
    return ids;
}

void ThumbnailCache::forget(WindowID id)
{
    if (const auto found = m_cache.find(id); found != m_cache.end())
        remove(found);
}

void ThumbnailCache::removeOldest()
{
    remove(std::ranges::min_element(
        m_cache, {}, [](const auto& entry) { return entry.second.capturedAt; }));
}

void ThumbnailCache::remove(Cached::iterator cached)
{
    m_bytes -= cached->second.picture.bytes();
    m_cache.erase(cached);
}

}
