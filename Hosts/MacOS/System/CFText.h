#pragma once

#include <string>

#include "Quorvel/Platform/Text.h"

namespace quorvel {

/// Unicode and the user's locale, as CoreFoundation knows them.
class CFText : public Text {
public:
    std::string fold(std::string_view utf8) const override;
    std::weak_ordering compare(std::string_view, std::string_view) const override;
    CharacterClass classOf(char32_t) const override;
    std::vector<std::size_t> characterEnds(std::string_view utf8) const override;
};

}
