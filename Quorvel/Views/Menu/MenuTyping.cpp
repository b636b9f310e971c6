#include "Quorvel/Views/Menu/MenuTyping.h"

#include <algorithm>
#include <cwctype>

namespace quorvel {

namespace {

/// Whatever is no UTF-8 is left out. The system's locale says which letters are the same.
std::u32string lowered(std::string_view utf8)
{
    std::u32string letters;
    int following = 0;
    for (unsigned char byte : utf8) {
        if (byte < 0x80) {
            letters.push_back(byte);
        } else if (byte >= 0xC0) {
            following = byte >= 0xF0 ? 3 : byte >= 0xE0 ? 2 : 1;
            letters.push_back(byte & (0x3F >> following));
        } else if (following > 0) {
            --following;
            letters.back() = letters.back() << 6 | (byte & 0x3F);
        }
    }
    for (auto& letter : letters)
        letter = static_cast<char32_t>(std::towlower(static_cast<std::wint_t>(letter)));
    return letters;
}

}

bool MenuTyping::isGoingOn() const
{
    return !m_typed.empty() && m_dispatch.now() - m_last < kPause;
}

std::optional<std::size_t> MenuTyping::type(
    std::string_view characters, const Menu& menu, std::optional<std::size_t> from)
{
    auto letters = lowered(characters);
    if (letters.empty() || letters.front() < U' ' || letters.front() == 0x7F)
        return std::nullopt;
    if (!isGoingOn())
        m_typed.clear();
    m_last = m_dispatch.now();
    bool isRepeated = m_typed == letters;
    if (!isRepeated)
        m_typed += letters;
    // A further letter may leave the entry as it is; the first one or the same again goes on.
    std::size_t first = from ? *from + (m_typed == letters) : 0;
    for (std::size_t i = 0; i < menu.size(); ++i) {
        auto row = (first + i) % menu.size();
        if (menu[row].canBeChosen() && lowered(menu[row].title).starts_with(m_typed))
            return row;
    }
    return std::nullopt;
}

}
