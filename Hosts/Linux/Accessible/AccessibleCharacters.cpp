#include "Hosts/Linux/Accessible/AccessibleCharacters.h"

#include <algorithm>
#include <vector>

#include <pango/pango.h>

#include "Hosts/Linux/Text.h"

namespace quorvel::xdg {

AccessibleCharacters::AccessibleCharacters(std::string_view utf8)
    : m_text(validUtf8(utf8)) // the bus cuts off whoever sends other text
    , m_count(static_cast<int>(g_utf8_strlen(m_text.data(), static_cast<gssize>(m_text.size()))))
{
}

int AccessibleCharacters::at(std::size_t byte) const
{
    const auto* start = m_text.c_str();
    const auto* end = start + std::min(byte, m_text.size());
    return static_cast<int>(g_utf8_pointer_to_offset(start, end));
}

std::size_t AccessibleCharacters::byteOf(int character) const
{
    const auto* start = m_text.c_str();
    return static_cast<std::size_t>(
        g_utf8_offset_to_pointer(start, std::clamp(character, 0, m_count)) - start);
}

std::string AccessibleCharacters::slice(int start, int end) const
{
    const auto from = byteOf(start);
    const auto to = byteOf(end < 0 ? m_count : end);
    return from < to ? m_text.substr(from, to - from) : std::string{};
}

char32_t AccessibleCharacters::character(int character) const
{
    const bool isThere = character >= 0 && character < m_count;
    return isThere ? g_utf8_get_char(m_text.c_str() + byteOf(character)) : 0;
}

AccessibleCharacters::Range AccessibleCharacters::around(int character, Unit unit) const
{
    character = std::clamp(character, 0, m_count);
    switch (unit) {
    case Unit::character:
        return {character, std::min(character + 1, m_count)};
    case Unit::word:
        return wordAround(character);
    case Unit::line:
        break;
    }
    return {0, m_count};
}

AccessibleCharacters::Range AccessibleCharacters::wordAround(int character) const
{
    std::vector<PangoLogAttr> attributes(static_cast<std::size_t>(m_count) + 1);
    pango_get_log_attrs(m_text.c_str(), static_cast<int>(m_text.size()), -1,
        pango_language_get_default(), attributes.data(), m_count + 1);
    auto isStart
        = [&](int place) { return attributes[static_cast<std::size_t>(place)].is_word_start != 0; };
    int start = character;
    while (start > 0 && !isStart(start))
        --start;
    int end = std::min(character + 1, m_count);
    while (end < m_count && !isStart(end))
        ++end;
    return {start, end};
}

AccessibleCharacters::Range AccessibleCharacters::differenceTo(
    const AccessibleCharacters& other) const
{
    const int shorter = std::min(m_count, other.m_count);
    int before = 0;
    while (before < shorter && character(before) == other.character(before))
        ++before;
    int after = 0;
    while (after < shorter - before
        && character(m_count - 1 - after) == other.character(other.m_count - 1 - after))
        ++after;
    return {before, m_count - after};
}

}
