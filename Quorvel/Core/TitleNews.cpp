#include "Quorvel/Core/TitleNews.h"

#include <cstdint>

#include "Quorvel/Core/CodePoints.h"
#include "Quorvel/Core/SearchTerms.h"
#include "Quorvel/Platform/Text.h"

namespace quorvel {

namespace {

/// Of what is counted: "12 MB/s", "3 min", "5 s".
constexpr std::uint32_t kLongestUnit = 3;

bool hasNumber(std::string_view word, const Text& text)
{
    while (!word.empty()) {
        auto kind = text.classOf(takeCodePoint(word));
        if (kind == CharacterClass::decimalDigit || kind == CharacterClass::otherNumber)
            return true;
    }
    return false;
}

}

std::string titleSubstance(std::string_view title, const Text& text)
{
    const SearchWords words{normalised(title, text), text};
    std::string substance;
    bool followsNumber = false;
    for (auto& word : words.words()) {
        auto letters = words.text(word);
        if (hasNumber(letters, text)) {
            if (!followsNumber)
                substance += " #";
            followsNumber = true;
        } else if (!followsNumber || word.characters > kLongestUnit) {
            substance += ' ';
            substance += letters;
            followsNumber = false;
        }
    }
    return substance;
}

bool TitleNews::update(WindowID window, const std::string& title, bool isInFront)
{
    auto [found, isNew] = m_windows.try_emplace(window);
    auto& known = found->second;
    bool isOther = isNew || title != known.title;
    if (isInFront) {
        if (isOther || !known.wasInFront || known.hasNews)
            known.substance = titleSubstance(title, m_text);
        known.wasInFront = true;
        known.hasNews = false;
    } else if (isOther && known.wasInFront && !known.hasNews && !title.empty()) {
        known.hasNews = titleSubstance(title, m_text) != known.substance;
    }
    if (isOther)
        known.title = title;
    return known.hasNews;
}

}
