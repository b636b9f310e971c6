#pragma once

#include <string>
#include <string_view>

namespace quorvel::xdg {

/// Walks over the entries of a key file: groups in brackets, then lines of key and value. Any other
/// line is skipped, so that a bad line costs only itself: GLib's parser refuses the whole file, and
/// would lose applications that other programs show. Allocates nothing.
class KeyFileReader {
public:
    /// The bytes must outlive the reader.
    explicit KeyFileReader(std::string_view bytes);

    /// Goes to the next entry; false at the end.
    bool next();

    std::string_view group() const { return m_group; } ///< empty before the first
    std::string_view key() const { return m_key; } ///< including its "[language]", if any
    std::string_view value() const { return m_value; } ///< as written

private:
    std::string_view takeLine();

    std::string_view m_rest;
    std::string_view m_group;
    std::string_view m_key;
    std::string_view m_value;
};

/// The text that a written value stands for: \s
///  \t \r and \\ resolved, other escapes unchanged.
std::string unescaped(std::string_view value);

}
