#pragma once

#include <compare>
#include <optional>
#include <string_view>

#include "Quorvel/Core/SearchTerms.h"

namespace quorvel {

/// How a query matched; the best comes first.
enum class SearchMatchKind {
    exactName = 0,
    namePrefix = 1,
    tokenPrefix = 2,
    substring = 3,
    /// Nothing of the name, but the beginning of a word that says what the application is for, or
    /// of its program's name.
    keyword = 4,
};

/// Where a search result stands: the smaller comes first, by the first field that differs.
struct SearchRank {
    SearchMatchKind kind = SearchMatchKind::exactName;
    std::ptrdiff_t tokenIndex = 0; ///< of the word that matched
    std::ptrdiff_t characterIndex = 0; ///< of the occurrence in the normalised name
    /// In characters, of the normalised name; of the word if only its beginning matched.
    std::ptrdiff_t length = 0;

    friend auto operator<=>(const SearchRank&, const SearchRank&) = default;
};

/// The rank for a query that is normalised and not empty; absent if it does not match.
std::optional<SearchRank> searchRank(const SearchTerms&, std::string_view query);

}
