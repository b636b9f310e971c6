#include "Quorvel/Core/SearchRank.h"

#include <algorithm>

namespace quorvel {
namespace {

std::optional<SearchRank> rankByName(const SearchText& name, std::string_view query)
{
    if (!name.text().starts_with(query))
        return std::nullopt;
    const auto kind = name.text().size() == query.size() ? SearchMatchKind::exactName
                                                         : SearchMatchKind::namePrefix;
    return SearchRank{kind, 0, 0, static_cast<std::ptrdiff_t>(name.characters())};
}

/// The first word that begins with the query has the smallest index, so no later one is better.
std::optional<SearchRank> rankByToken(const SearchWords& tokens, std::string_view query)
{
    const auto& words = tokens.words();
    const auto found = std::ranges::find_if(
        words, [&](const auto& word) { return tokens.text(word).starts_with(query); });
    if (found == words.end())
        return std::nullopt;
    return SearchRank{SearchMatchKind::tokenPrefix, found - words.begin(), 0, found->characters};
}

std::optional<SearchRank> rankBySubstring(const SearchTerms& terms, std::string_view query)
{
    const auto occurrence = terms.name.find(query);
    if (occurrence == std::string::npos)
        return std::nullopt;
    const auto& words = terms.tokens.words();
    const auto word = std::ranges::find_if(words, [&](const auto& each) {
        return terms.tokens.text(each).find(query) != std::string_view::npos;
    });
    return SearchRank{SearchMatchKind::substring, word - words.begin(),
        static_cast<std::ptrdiff_t>(terms.name.charactersBefore(occurrence)),
        static_cast<std::ptrdiff_t>(terms.name.characters())};
}

/// The query may go on over several words of one phrase.
std::optional<SearchRank> rankByKeyword(const SearchWords& keywords, std::string_view query)
{
    const auto& words = keywords.words();
    const auto found = std::ranges::find_if(
        words, [&](const auto& word) { return keywords.textFrom(word).starts_with(query); });
    if (found == words.end())
        return std::nullopt;
    return SearchRank{SearchMatchKind::keyword, found - words.begin(), 0, found->characters};
}

}

std::optional<SearchRank> searchRank(const SearchTerms& terms, std::string_view query)
{
    if (auto rank = rankByName(terms.name, query))
        return rank;
    if (auto rank = rankByToken(terms.tokens, query))
        return rank;
    if (auto rank = rankBySubstring(terms, query))
        return rank;
    return rankByKeyword(terms.keywords, query);
}

}
