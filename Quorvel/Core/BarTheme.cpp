#include "Quorvel/Core/BarTheme.h"

#include <cstddef>

namespace quorvel {

std::string_view rawValue(BarTheme theme)
{
    constexpr std::string_view texts[] = {"frosted", "longhorn", "aero"};
    return texts[static_cast<std::size_t>(theme)];
}

std::optional<BarTheme> barThemeFrom(std::string_view text)
{
    for (auto theme : kAllBarThemes) {
        if (rawValue(theme) == text)
            return theme;
    }
    return {};
}

BarTheme defaultBarTheme(std::optional<int> systemMajorVersion)
{
    return systemMajorVersion == 26 ? BarTheme::longhorn : BarTheme::frosted;
}

}
