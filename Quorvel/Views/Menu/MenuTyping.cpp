#include "Quorvel/Views/Menu/MenuTyping.h"

#include <algorithm>
#include <cwctype>

#include "Quorvel/Core/CodePoints.h"

namespace quorvel {

namespace {

/// The system's locale says which letters are the same.
std::u32string lowered(std::string_view utf8)
{
    std::u32string letters;
    while (!utf8.empty()) {
        auto letter = static_cast<std::wint_t>(takeCodePoint(utf8));
        letters.push_back(static_cast<char32_t>(std::towlower(letter)));
    }
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
