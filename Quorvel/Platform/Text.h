#pragma once

#include <compare>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "Quorvel/Platform/Canvas.h"
#include "Quorvel/Platform/LineLayout.h"

namespace quorvel {

/// What Unicode says of a code point.
enum class CharacterClass {
    lowerCaseLetter, ///< Ll
    upperCaseLetter, ///< Lu
    otherLetter, ///< title case, modifiers, and scripts without case
    decimalDigit, ///< Nd
    otherNumber,
    other,
};

/// What the system knows about text. Invalid UTF-8 is taken for U+FFFD. From any thread, except
/// where it says otherwise.
class Text {
public:
    virtual ~Text() = default;

    /// The size of what `Canvas::drawText` would draw, in points. Main thread.
    virtual Size measure(std::string_view utf8, const TextStyle&) const = 0;
    /// Where each character lies when the text is drawn without eliding. It must be one plain line
    /// of valid UTF-8; of any other the characters are left out. Main thread.
    virtual LineLayout lineLayout(std::string_view utf8, const TextStyle&) const = 0;

    /// The text as it is compared in a search in the user's language: without the differences of
    /// case, of full and half width, and of the marks on Latin, Greek and Cyrillic letters; then in
    /// lower case. Marks of other scripts stay, since they make another letter or another vowel.
    virtual std::string fold(std::string_view utf8) const = 0;
    /// The order of names in the user's language, ignoring case.
    virtual std::weak_ordering compare(std::string_view, std::string_view) const = 0;
    virtual CharacterClass classOf(char32_t) const = 0;
    /// Where each character, as a reader sees it, ends: ascending byte offsets, of which the last
    /// is the size of the text. Empty for an empty text.
    virtual std::vector<std::size_t> characterEnds(std::string_view utf8) const = 0;
};

}
