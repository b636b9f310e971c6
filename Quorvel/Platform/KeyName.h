#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string_view>

namespace quorvel {

struct KeyName {
    std::uint32_t keyCode = 0; ///< virtual key code of the Mac
    std::string_view name;
};

// clang-format off
/// What letters, digits and function keys are called on a US keyboard, on every system.
inline constexpr KeyName kKeyNames[] = {
    {0, "A"}, {11, "B"}, {8, "C"}, {2, "D"}, {14, "E"}, {3, "F"},
    {5, "G"}, {4, "H"}, {34, "I"}, {38, "J"}, {40, "K"}, {37, "L"},
    {46, "M"}, {45, "N"}, {31, "O"}, {35, "P"}, {12, "Q"}, {15, "R"},
    {1, "S"}, {17, "T"}, {32, "U"}, {9, "V"}, {13, "W"}, {7, "X"},
    {16, "Y"}, {6, "Z"}, {29, "0"}, {18, "1"}, {19, "2"}, {20, "3"},
    {21, "4"}, {23, "5"}, {22, "6"}, {26, "7"}, {28, "8"}, {25, "9"},
    {122, "F1"}, {120, "F2"}, {99, "F3"}, {118, "F4"}, {96, "F5"}, {97, "F6"},
    {98, "F7"}, {100, "F8"}, {101, "F9"}, {109, "F10"}, {103, "F11"}, {111, "F12"},
};
// clang-format on

/// Absent for other keys.
inline std::optional<std::string_view> keyName(std::uint32_t keyCode)
{
    auto* found = std::ranges::find(kKeyNames, keyCode, &KeyName::keyCode);
    return found == std::end(kKeyNames) ? std::nullopt : std::optional{found->name};
}

}
