#include "Hosts/Linux/Keys/KeyTable.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace quorvel::xdg {

namespace {

constexpr std::uint16_t none = 0xFFFF;

// clang-format off
/// By the kernel's codes, ten to a row.
constexpr std::array<std::uint16_t, 130> kByDeviceCode{
    none,   53,   18,   19,   20,   21,   23,   22,   26,   28,
      25,   29,   27,   24,   51,   48,   12,   13,   14,   15,
      17,   16,   32,   34,   31,   35,   33,   30,   36,   59,
       0,    1,    2,    3,    5,    4,   38,   40,   37,   41,
      39,   50,   56,   42,    6,    7,    8,    9,   11,   45,
      46,   43,   47,   44,   60,   67,   58,   49,   57,  122,
     120,   99,  118,   96,   97,   98,  100,  101,  109,   71,
     107,   89,   91,   92,   78,   86,   87,   88,   69,   83,
      84,   85,   82,   65, none, none,   10,  103,  111,   94,
    none, none, none,  104,  102,   95,   76,   62,   75,  105,
      61, none,  115,  126,  116,  123,  124,  119,  125,  121,
     114,  117, none,   74,   73,   72, none,   81, none,  113,
    none, none, none, none,   93,   55,   54,  110, none, none};
// clang-format on

/// Further places of some of the Mac's keys, where Apple's own keyboards or large ones have them.
struct Place {
    std::uint16_t device;
    std::uint16_t mac;
};
constexpr Place kFurther[] = {
    {121, 95}, // the comma of Brazilian and Japanese number pads
    {122, 104},
    {123, 102}, // Kana and Eisu on Apple's keyboards
    {138, 114}, // Help
    {183, 105},
    {184, 107},
    {185, 113},
    {186, 106}, // F13 to F20
    {187, 64},
    {188, 79},
    {189, 80},
    {190, 90},
};

}

std::optional<std::uint16_t> macKeyCodeOf(DeviceCode code)
{
    auto place = static_cast<std::uint16_t>(code);
    if (place < kByDeviceCode.size() && kByDeviceCode[place] != none)
        return kByDeviceCode[place];
    auto* found = std::ranges::find(kFurther, place, &Place::device);
    return found == std::end(kFurther) ? std::nullopt : std::optional{found->mac};
}

std::optional<DeviceCode> deviceCodeOf(std::uint32_t macKeyCode)
{
    if (macKeyCode == none)
        return {};
    auto* first = std::ranges::find(kByDeviceCode, macKeyCode);
    if (first != kByDeviceCode.end())
        return DeviceCode{static_cast<std::uint16_t>(first - kByDeviceCode.begin())};
    auto* further = std::ranges::find(kFurther, macKeyCode, &Place::mac);
    return further == std::end(kFurther) ? std::nullopt
                                         : std::optional{DeviceCode{further->device}};
}

}
