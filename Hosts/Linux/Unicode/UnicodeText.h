#pragma once

#include <string>

#include "Quorvel/Platform/Text.h"

namespace quorvel::xdg {

/// Unicode as GLib and Pango know it, for a language and the current locale's order of letters.
class UnicodeText : public Text {
public:
    /// The language of the current locale's letters (LC_CTYPE).
    UnicodeText();
    /// As a locale's name begins: "tr". Only its letters matter.
    explicit UnicodeText(std::string_view language);

    std::string fold(std::string_view utf8) const override;
    /// Where the locale has no order of its own (C, POSIX), letters with marks stand beside those
    /// without.
    std::weak_ordering compare(std::string_view, std::string_view) const override;
    CharacterClass classOf(char32_t) const override;
    std::vector<std::size_t> characterEnds(std::string_view utf8) const override;

private:
    /// Turkish and Azerbaijani have two letters i, with and without a dot, each in both cases.
    bool m_hasDotlessI = false;
    bool m_hasOrder = false; ///< of the locale
};

}
