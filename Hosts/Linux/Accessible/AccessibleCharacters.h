#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace quorvel::xdg {

/// A text as assistive programs count it: in characters, where the rest of the program counts
/// bytes. Offsets that are wrong become the nearest right ones.
class AccessibleCharacters {
public:
    enum class Unit { character, word, line };
    using Range = std::pair<int, int>; ///< the end is not part of it

    explicit AccessibleCharacters(std::string_view utf8);

    int count() const { return m_count; }
    /// The character that begins at this byte.
    int at(std::size_t byte) const;
    std::size_t byteOf(int character) const;
    /// Up to the end where `end` is negative.
    std::string slice(int start, int end) const;
    char32_t character(int) const;
    /// The unit that the character belongs to; a word reaches to the next one.
    Range around(int character, Unit) const;
    /// What has to be replaced to make the other text of this one.
    Range differenceTo(const AccessibleCharacters& other) const;

private:
    Range wordAround(int character) const;

    std::string m_text;
    int m_count;
};

}
