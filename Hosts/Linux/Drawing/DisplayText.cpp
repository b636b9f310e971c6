#include "Hosts/Linux/Drawing/DisplayText.h"

#include <glib.h>

namespace quorvel::xdg {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
constexpr std::string_view kEllipsis = "\xE2\x80\xA6";
constexpr gunichar kLineSeparator = 0x2028;
constexpr gunichar kParagraphSeparator = 0x2029;

bool isShownAsSpace(gunichar character)
{
    return character < 0x20 || (character >= 0x7f && character < 0xa0)
        || character == kLineSeparator || character == kParagraphSeparator;
}

/// Bytes of the character at the start of the text; 0 when it is no UTF-8.
std::size_t readCharacter(std::string_view text, gunichar& character)
{
    character = 0;
    if (text[0] == '\0')
        return 1; // which GLib takes for the end
    character = g_utf8_get_char_validated(text.data(), static_cast<gssize>(text.size()));
    if (character == static_cast<gunichar>(-1) || character == static_cast<gunichar>(-2))
        return 0;
    return static_cast<std::size_t>(g_utf8_skip[static_cast<unsigned char>(text[0])]);
}

}

std::string displayText(std::string_view text, std::size_t maximumLength)
{
    std::string line;
    line.reserve(std::min(text.size(), maximumLength * 2));
    for (std::size_t length = 0; !text.empty(); ++length) {
        if (length == maximumLength)
            return line.append(kEllipsis);
        gunichar character = 0;
        auto bytes = readCharacter(text, character);
        if (bytes == 0)
            line.append(kReplacement);
        else if (isShownAsSpace(character))
            line.push_back(' ');
        else
            line.append(text.substr(0, bytes));
        text.remove_prefix(std::max<std::size_t>(bytes, 1));
    }
    return line;
}

}
