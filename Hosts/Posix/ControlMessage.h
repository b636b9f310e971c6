#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Quorvel/Platform/ControlChannel.h"

namespace quorvel::posix {

inline constexpr std::size_t kLongestRequest = 64 * 1024;
inline constexpr std::size_t kLongestReply = 64 * 1024 * 1024;

/// A message on the wire is one line of JSON: a request is the list of arguments, a reply an
/// object. Invalid UTF-8 arrives as U+FFFD.
std::string encodeRequest(const std::vector<std::string>& arguments);
std::string encodeReply(const ControlReply&);

/// Decodes one message; absent when it makes no sense.
std::optional<std::vector<std::string>> decodeRequest(std::string_view);
std::optional<ControlReply> decodeReply(std::string_view);

/// Parts what arrives in pieces into lines.
class LineReader {
public:
    explicit LineReader(std::size_t longest) : m_longest(longest) { }

    void add(std::string_view bytes) { m_bytes.append(bytes); }
    /// The next line without its end; absent while it is not whole.
    std::optional<std::string> next();
    /// Whether what has come of the next line is longer than a line may be.
    bool isTooLong() const { return m_bytes.size() > m_longest; }
    /// Whether something came after the last line that was taken.
    bool hasMore() const { return !m_bytes.empty(); }

private:
    std::size_t m_longest;
    std::string m_bytes;
};

/// Collects a message that arrives in pieces.
class MessageReader {
public:
    enum class State { incomplete, complete, malformed };

    explicit MessageReader(std::size_t longest) : m_longest(longest) { }

    State add(std::string_view bytes);
    /// The message; only when complete.
    std::string_view message() const { return m_bytes; }

private:
    std::size_t m_longest;
    std::string m_bytes;
};

}
