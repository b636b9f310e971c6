#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <vector>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/ScreenCapture.h"

namespace quorvel {

/// The newest picture of each window. Age removes none: an old picture is better than no picture.
class ThumbnailCache {
public:
    static constexpr std::size_t maxCacheSize = 50;
    static constexpr std::size_t maxCacheBytes = 32U << 20;
    static constexpr Duration cacheTTL = seconds(30);

    std::optional<WindowPicture> ifFresh(WindowID, Instant now) const;
    std::optional<WindowPicture> ofAnyAge(WindowID) const;
    void store(WindowID, WindowPicture, Instant now);
    /// Those that there are pictures of.
    std::vector<WindowID> windows() const;
    void forget(WindowID);

private:
    struct CachedThumbnail {
        WindowPicture picture;
        Instant capturedAt;
    };

    using Cached = std::map<WindowID, CachedThumbnail>;

    void removeOldest();
    void remove(Cached::iterator);

    Cached m_cache;
    std::size_t m_bytes = 0;
};

}
