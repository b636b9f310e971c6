#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Quorvel/Core/RememberedOrder.h"

namespace quorvel {

/// The file holds one order for each of the last sessions, the latest first: a user may have bars
/// on several displays at a time. What exceeds these limits is left out.
struct OrderLimits {
    static constexpr std::size_t fileBytes = 1024 * 1024;
    static constexpr std::size_t sessions = 4;
    static constexpr std::size_t spaces = 64; ///< of a session
    static constexpr std::size_t windows = 500; ///< of a space
    static constexpr std::size_t textBytes = 200;
};

/// A text as it is stored: without control characters, and cut to the limit between two characters.
std::string rememberedText(std::string_view);

/// Absent if the bytes are not wholly understood. An index into nothing is left out.
std::optional<std::vector<RememberedOrder>> decodeOrders(std::string_view bytes);
std::string encodeOrders(std::vector<RememberedOrder>);

/// The file's new content: this order in front, in place of the session's last one.
std::string withOrder(const std::optional<std::string>& file, RememberedOrder);

/// The session's own order, else the latest; absent if there is none.
std::optional<RememberedOrder> orderFor(
    std::string_view session, std::vector<RememberedOrder> orders);

}
