#include "Hosts/Linux/Unicode/UnicodeText.h"

#include <algorithm>
#include <array>
#include <clocale>
#include <cstring>
#include <numeric>

#include <pango/pango.h>

#include "Hosts/Linux/GHandles.h"
#include "Hosts/Linux/Text.h"

namespace quorvel::xdg {
namespace {

/// Behind Latin, Greek and Cyrillic: from here on a mark makes another letter, as in the Japanese
/// "ga", which is no "ka". The Mac draws the same line.
constexpr gunichar kMarksMatterFrom = 0x0510;
constexpr gunichar kFirstOfOtherWidth = 0xFF00;
constexpr gunichar kLastOfOtherWidth = 0xFFEF;
constexpr gunichar kDotAbove = 0x0307;
constexpr gunichar kCapitalIWithDot = 0x0130;
constexpr gunichar kDotlessI = 0x0131;
constexpr std::size_t kLongestDecomposition = G_UNICHAR_MAX_DECOMPOSITION_LENGTH;

using CodePoints = std::u32string;

/// Plain text, as most names are, needs no library.
bool isAscii(std::string_view text)
{
    return std::ranges::all_of(text, [](char byte) { return static_cast<signed char>(byte) > 0; });
}

std::string asciiInLowerCase(std::string_view text)
{
    std::string lower{text};
    std::ranges::transform(lower, lower.begin(), g_ascii_tolower);
    return lower;
}

CodePoints codePoints(std::string_view utf8)
{
    const auto valid = validUtf8(utf8);
    CodePoints points;
    points.reserve(valid.size());
    const char* end = valid.data() + valid.size();
    for (const char* at = valid.data(); at != end; at = g_utf8_next_char(at))
        points.push_back(g_utf8_get_char(at));
    return points;
}

std::string utf8From(const CodePoints& points)
{
    std::string text;
    text.reserve(points.size());
    std::array<char, 6> bytes{};
    for (auto point : points) {
        const int length = g_unichar_to_utf8(point, bytes.data());
        text.append(bytes.data(), static_cast<std::size_t>(length));
    }
    return text;
}

CodePoints withDotlessIInLowerCase(const CodePoints& points)
{
    CodePoints result;
    result.reserve(points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (points[i] != 'I') {
            result.push_back(points[i] == kCapitalIWithDot ? char32_t{'i'} : points[i]);
        } else if (i + 1 < points.size() && points[i + 1] == kDotAbove) {
            result.push_back('i');
            ++i;
        } else {
            result.push_back(kDotlessI);
        }
    }
    return result;
}

CodePoints decomposed(gunichar point, gboolean isCompatible)
{
    std::array<gunichar, kLongestDecomposition> parts{};
    const auto count = g_unichar_fully_decompose(point, isCompatible, parts.data(), parts.size());
    return {parts.begin(), parts.begin() + static_cast<std::ptrdiff_t>(count)};
}

bool hasOtherWidth(gunichar point)
{
    return point >= kFirstOfOtherWidth && point <= kLastOfOtherWidth;
}

/// In one width, and without the marks that do not matter.
CodePoints plain(const CodePoints& points)
{
    CodePoints result;
    result.reserve(points.size());
    gunichar base = kMarksMatterFrom;
    for (auto point : points) {
        for (auto part : decomposed(point, hasOtherWidth(point))) {
            if (!g_unichar_ismark(part))
                base = part;
            else if (base < kMarksMatterFrom)
                continue;
            result.push_back(part);
        }
    }
    return result;
}

std::string inLowerCase(const std::string& utf8)
{
    const GText folded{g_utf8_casefold(utf8.c_str(), -1)};
    const GText lower{g_utf8_strdown(folded.get(), -1)};
    const GText composed{g_utf8_normalize(lower.get(), -1, G_NORMALIZE_DEFAULT_COMPOSE)};
    return composed ? composed.get() : std::string{};
}

bool isTurkic(std::string_view language)
{
    return language.starts_with("tr") || language.starts_with("az");
}

std::string_view localeName(int category)
{
    const char* name = std::setlocale(category, nullptr);
    return name ? name : "C";
}

bool hasOrder(std::string_view locale)
{
    return locale != "POSIX" && locale != "C" && !locale.starts_with("C.");
}

std::weak_ordering orderFrom(int comparison)
{
    return comparison <=> 0;
}

/// Bytes of a character that is no valid UTF-8 count one by one.
std::size_t validPrefix(std::string_view text)
{
    const char* end = nullptr;
    g_utf8_validate(text.data(), static_cast<gssize>(text.size()), &end);
    return static_cast<std::size_t>(end - text.data());
}

void appendEnds(std::string_view valid, std::size_t offset, std::vector<std::size_t>& ends)
{
    const int length = static_cast<int>(valid.size());
    const auto count = g_utf8_strlen(valid.data(), length);
    std::vector<PangoLogAttr> attributes(static_cast<std::size_t>(count) + 1);
    pango_default_break(
        valid.data(), length, nullptr, attributes.data(), static_cast<int>(attributes.size()));
    const char* at = valid.data();
    for (std::size_t i = 1; i < attributes.size(); ++i) {
        at = g_utf8_next_char(at);
        if (attributes[i].is_cursor_position || i + 1 == attributes.size())
            ends.push_back(offset + static_cast<std::size_t>(at - valid.data()));
    }
}

}

UnicodeText::UnicodeText() : UnicodeText(localeName(LC_CTYPE))
{
}

UnicodeText::UnicodeText(std::string_view language)
    : m_hasDotlessI(isTurkic(language))
    , m_hasOrder(hasOrder(localeName(LC_COLLATE)))
{
}

std::string UnicodeText::fold(std::string_view utf8) const
{
    if (isAscii(utf8) && !m_hasDotlessI)
        return asciiInLowerCase(utf8);
    auto points = codePoints(utf8);
    if (m_hasDotlessI)
        points = withDotlessIInLowerCase(points);
    return inLowerCase(utf8From(plain(points)));
}

std::weak_ordering UnicodeText::compare(std::string_view a, std::string_view b) const
{
    if (isAscii(a) && isAscii(b) && !m_hasDotlessI) {
        const auto first = asciiInLowerCase(a);
        const auto second = asciiInLowerCase(b);
        return m_hasOrder ? orderFrom(std::strcoll(first.c_str(), second.c_str()))
                          : std::weak_ordering{first <=> second};
    }
    if (!m_hasOrder) {
        if (const auto order = fold(a) <=> fold(b); order != 0)
            return order;
    }
    const GText first{g_utf8_casefold(validUtf8(a).c_str(), -1)};
    const GText second{g_utf8_casefold(validUtf8(b).c_str(), -1)};
    return orderFrom(g_utf8_collate(first.get(), second.get()));
}

CharacterClass UnicodeText::classOf(char32_t point) const
{
    switch (g_unichar_type(point)) {
    case G_UNICODE_LOWERCASE_LETTER:
        return CharacterClass::lowerCaseLetter;
    case G_UNICODE_UPPERCASE_LETTER:
        return CharacterClass::upperCaseLetter;
    case G_UNICODE_TITLECASE_LETTER:
    case G_UNICODE_MODIFIER_LETTER:
    case G_UNICODE_OTHER_LETTER:
        return CharacterClass::otherLetter;
    case G_UNICODE_DECIMAL_NUMBER:
        return CharacterClass::decimalDigit;
    case G_UNICODE_LETTER_NUMBER:
    case G_UNICODE_OTHER_NUMBER:
        return CharacterClass::otherNumber;
    default:
        return CharacterClass::other;
    }
}

std::vector<std::size_t> UnicodeText::characterEnds(std::string_view utf8) const
{
    std::vector<std::size_t> ends;
    if (isAscii(utf8) && utf8.find('\r') == std::string_view::npos) {
        ends.resize(utf8.size());
        std::iota(ends.begin(), ends.end(), 1);
        return ends;
    }
    ends.reserve(utf8.size());
    for (std::size_t offset = 0; offset < utf8.size();) {
        const auto valid = validPrefix(utf8.substr(offset));
        if (valid > 0)
            appendEnds(utf8.substr(offset, valid), offset, ends);
        offset += valid;
        if (offset < utf8.size())
            ends.push_back(++offset); // a byte that is no UTF-8
    }
    return ends;
}

}
