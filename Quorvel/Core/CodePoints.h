#pragma once

#include <cstddef>
#include <string_view>

namespace quorvel {

/// Takes the first code point off the text, which must not be empty. A byte that is no UTF-8 is
/// taken alone, as U+FFFD.
constexpr char32_t takeCodePoint(std::string_view& utf8)
{
    const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(utf8[index]); };
    const auto first = byte(0);
    const std::size_t length = first < 0x80 ? 1
        : first >= 0xC2 && first < 0xE0     ? 2
        : first >= 0xE0 && first < 0xF0     ? 3
        : first >= 0xF0 && first < 0xF5     ? 4
                                            : 0;
    constexpr char32_t kReplacement = 0xFFFD;
    constexpr char32_t kFirstBits[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
    if (length == 0 || length > utf8.size()) {
        utf8.remove_prefix(1);
        return kReplacement;
    }
    char32_t point = first & kFirstBits[length];
    for (std::size_t index = 1; index < length; ++index) {
        if ((byte(index) & 0xC0) != 0x80) {
            utf8.remove_prefix(1);
            return kReplacement;
        }
        point = point << 6 | (byte(index) & 0x3F);
    }
    // Neither too long a form, nor half of a pair, nor beyond Unicode.
    constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool isHalf = point >= 0xD800 && point <= 0xDFFF;
    const bool isValid = point >= kLeast[length] && point <= 0x10FFFF && !isHalf;
    utf8.remove_prefix(isValid ? length : 1);
    return isValid ? point : kReplacement;
}

}
