#pragma once

#include <string>
#include <string_view>

namespace quorvel::xdg {

/// Walks over the entries of a key file: groups in brackets, then lines of key and value. A line
/// that is neither is passed over, so one bad line costs no more than itself: GLib's parser, which
/// refuses the whole file then, would lose applications that other programs show. Allocates
/// nothing.
class KeyFileReader {
public:
    /// The bytes outlive the reader.
    explicit KeyFileReader(std::string_view bytes);

    /// Goes to the next entry; false at the end.
    bool next();

    std::string_view group() const { return m_group; } ///< empty before the first
    std::string_view key() const { return m_key; } ///< with its "[language]", if any
    std::string_view value() const { return m_value; } ///< as written

private:
    std::string_view takeLine();

    std::string_view m_rest;
    std::string_view m_group;
    std::string_view m_key;
    std::string_view m_value;
};

/// The text that a written value stands for: \s \n \t \r and \\ resolved, others left alone.
std::string unescaped(std::string_view value);

}
