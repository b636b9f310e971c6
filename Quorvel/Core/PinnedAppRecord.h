#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quorvel {

/// Where an application can be pinned: a set of bits.
enum class PinDestination : std::int64_t { bar = 1, launcher = 2 };

constexpr PinDestination operator|(PinDestination a, PinDestination b)
{
    return static_cast<PinDestination>(static_cast<std::int64_t>(a) | static_cast<std::int64_t>(b));
}

/// The pasteboard type while a pin is dragged; its text is the record's `id`.
inline constexpr std::string_view kPinnedAppPasteboardType = "com.quorvel.pinned-app-id";

/// One pinned application. It exists only while the application is pinned somewhere.
struct PinnedAppRecord {
    std::string id; ///< as in the catalogue: a bundle identifier or a bundle's path
    std::int64_t destinationsRaw = 0; ///< of `PinDestination`

    bool isPinned(PinDestination to) const
    {
        auto bits = static_cast<std::int64_t>(to);
        return (destinationsRaw & bits) == bits;
    }

    friend bool operator==(const PinnedAppRecord&, const PinnedAppRecord&) = default;
};

}
