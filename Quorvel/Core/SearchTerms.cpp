#include "Quorvel/Core/SearchTerms.h"

#include <algorithm>

#include "Quorvel/Core/CodePoints.h"
#include "Quorvel/Platform/Text.h"

namespace quorvel {
namespace {

/// A control character that nobody types.
constexpr char kBetweenPhrases = '\x1F';

bool isBlank(char32_t point)
{
    return (point >= 0x09 && point <= 0x0D) || point == 0x20 || point == 0x85 || point == 0xA0
        || point == 0x1680 || (point >= 0x2000 && point <= 0x200A) || point == 0x2028
        || point == 0x2029 || point == 0x202F || point == 0x205F || point == 0x3000;
}

bool isPlainText(std::string_view text)
{
    return std::ranges::all_of(
        text, [](char byte) { return static_cast<signed char>(byte) >= 0 && byte != '\r'; });
}

bool isUpper(CharacterClass kind)
{
    return kind == CharacterClass::upperCaseLetter;
}

bool isLower(CharacterClass kind)
{
    return kind == CharacterClass::lowerCaseLetter;
}

bool beginsWord(CharacterClass before, CharacterClass here, CharacterClass after)
{
    if (!isUpper(here))
        return false;
    return isLower(before) || before == CharacterClass::decimalDigit
        || (isUpper(before) && isLower(after));
}

std::vector<std::uint32_t> characterStarts(std::string_view text, const Text& system)
{
    std::vector<std::uint32_t> starts;
    std::uint32_t start = 0;
    for (const auto end : system.characterEnds(text)) {
        starts.push_back(start);
        start = static_cast<std::uint32_t>(end);
    }
    return starts;
}

}

std::string_view trimmed(std::string_view text)
{
    std::size_t first = text.size();
    std::size_t end = 0;
    for (auto rest = text; !rest.empty();) {
        const auto start = text.size() - rest.size();
        if (isBlank(takeCodePoint(rest)))
            continue;
        first = std::min(first, start);
        end = text.size() - rest.size();
    }
    return end == 0 ? std::string_view{} : text.substr(first, end - first);
}

std::string normalised(std::string_view text, const Text& system)
{
    return system.fold(trimmed(text));
}

std::string withSpacesAtWords(std::string_view name, const Text& text)
{
    std::string spaced;
    spaced.reserve(name.size() + 8);
    auto before = CharacterClass::other;
    auto here = CharacterClass::other;
    auto rest = name;
    if (!rest.empty())
        here = text.classOf(takeCodePoint(rest));
    for (std::size_t start = 0; start < name.size();) {
        const auto end = name.size() - rest.size();
        const auto after = rest.empty() ? CharacterClass::other : text.classOf(takeCodePoint(rest));
        if (beginsWord(before, here, after))
            spaced.push_back(' ');
        spaced.append(name.substr(start, end - start));
        before = here;
        here = after;
        start = end;
    }
    return spaced;
}

SearchText::SearchText(std::string normalised, const Text& system) : m_text(std::move(normalised))
{
    if (!isPlainText(m_text))
        m_starts = characterStarts(m_text, system);
}

std::size_t SearchText::characters() const
{
    return m_starts.empty() ? m_text.size() : m_starts.size();
}

std::size_t SearchText::charactersBefore(std::size_t byteOffset) const
{
    if (m_starts.empty())
        return byteOffset;
    const auto found = std::ranges::lower_bound(m_starts, byteOffset);
    return static_cast<std::size_t>(found - m_starts.begin());
}

bool SearchText::isCharacterStart(std::size_t byteOffset) const
{
    return m_starts.empty() || std::ranges::binary_search(m_starts, byteOffset);
}

std::size_t SearchText::find(std::string_view query) const
{
    auto found = m_text.find(query);
    while (found != std::string::npos && !isCharacterStart(found))
        found = m_text.find(query, found + 1);
    return found;
}

SearchWords::SearchWords(std::string normalised, const Text& system) : m_text(std::move(normalised))
{
    Word word;
    const auto finish = [&] {
        if (word.bytes > 0)
            m_words.push_back(word);
    };
    std::size_t start = 0;
    for (const auto end : system.characterEnds(m_text)) {
        auto character = std::string_view{m_text}.substr(start, end - start);
        if (system.classOf(takeCodePoint(character)) == CharacterClass::other) {
            finish();
            word = {static_cast<std::uint32_t>(end), 0, 0};
        } else {
            word.bytes += static_cast<std::uint32_t>(end - start);
            ++word.characters;
        }
        start = end;
    }
    finish();
}

SearchWords searchTokens(std::string_view name, const Text& text)
{
    return SearchWords{normalised(withSpacesAtWords(name, text), text), text};
}

SearchTerms::SearchTerms(
    std::string_view appName, const std::vector<std::string>& phrases, const Text& text)
    : name(normalised(appName, text), text)
    , tokens(searchTokens(appName, text))
{
    std::string all;
    for (const auto& phrase : phrases) {
        all.append(normalised(phrase, text));
        all.push_back(kBetweenPhrases);
    }
    keywords = SearchWords{std::move(all), text};
}

}
