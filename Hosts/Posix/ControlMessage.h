#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Quorvel/Platform/ControlChannel.h"

namespace quorvel::posix {

inline constexpr std::uint32_t kLongestRequest = 64 * 1024;
inline constexpr std::uint32_t kLongestReply = 64 * 1024 * 1024;

/// A message on the wire is its length and its bytes. Both ends are on this machine, so numbers are
/// in its own byte order.
std::string encodeRequest(const std::vector<std::string>& arguments);
std::string encodeReply(const ControlReply&);

/// From the bytes of one message; absent when they make no sense.
std::optional<std::vector<std::string>> decodeRequest(std::string_view);
std::optional<ControlReply> decodeReply(std::string_view);

/// Collects a message that arrives in pieces.
class MessageReader {
public:
    enum class State { incomplete, complete, malformed };

    explicit MessageReader(std::uint32_t longest) : m_longest(longest) { }

    State add(std::string_view bytes);
    /// The message; only when complete.
    std::string_view message() const;

private:
    std::uint32_t m_longest;
    std::string m_bytes;
};

}
