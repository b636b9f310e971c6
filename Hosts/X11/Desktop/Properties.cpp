#include "Hosts/X11/Desktop/Properties.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <tuple>
#include <unordered_set>

#include <glib.h>

#include "Hosts/Linux/Text.h"
#include "Hosts/X11/Desktop/CompoundText.h"

namespace quorvel::xdg::x11 {

namespace {

/// Frames and shadows are never wider; what claims more would push windows off every screen.
constexpr std::uint32_t kLargestExtent = 4096;
constexpr std::uint32_t kIconPixmapHint = 1u << 2;
constexpr std::uint32_t kIconMaskHint = 1u << 5;
constexpr std::uint32_t kUrgencyHint = 1u << 8;

std::string_view bytesOf(const RawProperty& property)
{
    return {reinterpret_cast<const char*>(property.data.data()), property.data.size()};
}

std::string_view upToNul(std::string_view bytes)
{
    return bytes.substr(0, bytes.find('\0'));
}

std::vector<std::string_view> splitAtNul(std::string_view bytes, std::size_t maximumCount)
{
    std::vector<std::string_view> parts;
    while (!bytes.empty() && parts.size() < maximumCount) {
        auto part = upToNul(bytes);
        parts.push_back(part);
        bytes.remove_prefix(std::min(bytes.size(), part.size() + 1));
    }
    return parts;
}

std::string textOfType(
    std::string_view bytes, xcb_atom_t type, const TextTypes& types, std::size_t maximum)
{
    if (type == types.utf8String)
        return cleanedUtf8(bytes, maximum);
    if (type == types.compoundText)
        return cleanedUtf8(decodeCompoundText(upToNul(bytes)), maximum);
    return utf8FromLatin1(bytes, maximum);
}

bool isText(const RawProperty& property, const TextTypes& types)
{
    return property.format == 8
        && (property.type == types.utf8String || property.type == types.compoundText
            || property.type == XCB_ATOM_STRING);
}

bool isWordList(const RawProperty& property, xcb_atom_t type)
{
    return property.type == type && property.format == 32;
}

}

std::uint32_t RawProperty::word(std::size_t index) const
{
    std::uint32_t value = 0;
    if (index < words())
        std::memcpy(&value, data.data() + index * 4, 4);
    return value;
}

std::string cleanedUtf8(std::string_view bytes, std::size_t maximum)
{
    constexpr std::size_t longestCharacter = 4;
    bytes = upToNul(bytes).substr(0, maximum + longestCharacter);
    auto text = validUtf8(bytes);
    if (text.size() > maximum) {
        const auto* cut = g_utf8_find_prev_char(text.data(), text.data() + maximum + 1);
        text.resize(static_cast<std::size_t>(cut - text.data()));
    }
    return text;
}

std::string utf8FromLatin1(std::string_view bytes, std::size_t maximum)
{
    std::string result;
    for (char c : upToNul(bytes)) {
        auto byte = static_cast<unsigned char>(c);
        if (result.size() + (byte < 0x80 ? 1 : 2) > maximum)
            break;
        if (byte >= 0x80)
            result += static_cast<char>(0xC0 | byte >> 6);
        result += static_cast<char>(byte < 0x80 ? byte : 0x80 | (byte & 0x3F));
    }
    return result;
}

std::optional<std::string> decodeText(
    const RawProperty& property, const TextTypes& types, std::size_t maximum)
{
    if (!isText(property, types))
        return std::nullopt;
    return textOfType(bytesOf(property), property.type, types, maximum);
}

std::vector<std::string> decodeTexts(
    const RawProperty& property, const TextTypes& types, std::size_t maximumCount)
{
    std::vector<std::string> texts;
    if (!isText(property, types))
        return texts;
    for (auto part : splitAtNul(bytesOf(property), maximumCount))
        texts.push_back(textOfType(part, property.type, types, limits::titleBytes));
    return texts;
}

std::optional<std::uint32_t> decodeCardinal(const RawProperty& property)
{
    if (!isWordList(property, XCB_ATOM_CARDINAL) || property.words() == 0)
        return std::nullopt;
    return property.word(0);
}

std::optional<xcb_window_t> decodeWindow(const RawProperty& property)
{
    if (!isWordList(property, XCB_ATOM_WINDOW) || property.words() == 0)
        return std::nullopt;
    return property.word(0);
}

std::vector<xcb_atom_t> decodeAtoms(const RawProperty& property)
{
    std::vector<xcb_atom_t> atoms;
    if (!isWordList(property, XCB_ATOM_ATOM))
        return atoms;
    auto count = std::min<std::size_t>(property.words(), limits::atoms);
    for (std::size_t i = 0; i < count; ++i)
        atoms.push_back(property.word(i));
    return atoms;
}

std::vector<xcb_window_t> decodeWindows(const RawProperty& property)
{
    std::vector<xcb_window_t> windows;
    if (!isWordList(property, XCB_ATOM_WINDOW))
        return windows;
    std::unordered_set<xcb_window_t> seen;
    auto count = std::min<std::size_t>(property.words(), limits::windows);
    windows.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        auto window = property.word(i);
        if (window != XCB_WINDOW_NONE && seen.insert(window).second)
            windows.push_back(window);
    }
    return windows;
}

std::optional<WindowClass> decodeClass(const RawProperty& property, const TextTypes& types)
{
    auto texts = decodeTexts(property, types, 2);
    if (texts.empty())
        return std::nullopt;
    texts.resize(2);
    return WindowClass{std::move(texts[0]), std::move(texts[1])};
}

WindowHints decodeHints(const RawProperty& property)
{
    WindowHints hints;
    if (!isWordList(property, XCB_ATOM_WM_HINTS))
        return hints;
    const auto flags = property.word(0);
    hints.isUrgent = (flags & kUrgencyHint) != 0;
    if (flags & kIconPixmapHint)
        hints.iconPixmap = property.word(3);
    if (flags & kIconMaskHint)
        hints.iconMask = property.word(7);
    return hints;
}

std::optional<Extents> decodeExtents(const RawProperty& property)
{
    if (!isWordList(property, XCB_ATOM_CARDINAL) || property.words() < 4)
        return std::nullopt;
    auto side = [&](std::size_t index) {
        auto value = property.word(index);
        return value > kLargestExtent ? 0 : value;
    };
    return Extents{side(0), side(1), side(2), side(3)};
}

std::optional<Extents> decodeStrut(const RawProperty& property)
{
    return decodeExtents(property);
}

std::vector<IconPixels> decodeIcons(const RawProperty& property)
{
    std::vector<IconPixels> icons;
    if (!isWordList(property, XCB_ATOM_CARDINAL))
        return icons;

    auto read = [&property](std::uint64_t width, std::uint64_t height, std::size_t at) {
        IconPixels icon{static_cast<int>(width), static_cast<int>(height), {}};
        icon.argb.resize(width * height);
        std::memcpy(icon.argb.data(), property.data.data() + at * 4, icon.argb.size() * 4);
        return icon;
    };
    std::optional<std::array<std::size_t, 3>> large; // width, height and place
    std::size_t at = 0;
    while (at + 2 < property.words()) {
        std::uint64_t width = property.word(at);
        std::uint64_t height = property.word(at + 1);
        at += 2;
        if (width == 0 || height == 0 || width > property.words() || height > property.words())
            break; // nothing behind an absurd size can be found
        auto pixels = width * height;
        if (pixels > property.words() - at)
            break;
        const auto side = std::max(width, height);
        if (side <= limits::iconSide)
            icons.push_back(read(width, height, at));
        else if (side <= limits::largeIconSide && !large)
            large = {width, height, at};
        at += pixels;
        // A property of thousands of 1 x 1 pictures is nonsense too.
        if (icons.size() >= limits::atoms)
            break;
    }
    // Many programs give just the large picture that they were published with.
    bool isSharp = std::ranges::any_of(icons,
        [](auto& icon) { return std::max(icon.width, icon.height) >= limits::sharpIconSide; });
    if (!isSharp && large)
        icons.push_back(std::apply(read, *large));
    return icons;
}

double decodeOpacity(const RawProperty& property)
{
    auto value = decodeCardinal(property);
    return value ? *value / 4294967295.0 : 1;
}

NotedOpacities decodeNotedOpacities(const RawProperty& property)
{
    NotedOpacities opacities;
    if (!isWordList(property, XCB_ATOM_CARDINAL) || property.words() % 3 != 0)
        return opacities;
    for (std::size_t at = 0; at < property.words(); at += 3) {
        bool wasSet = property.word(at + 1) != 0;
        opacities[property.word(at)] = wasSet ? std::optional{property.word(at + 2)} : std::nullopt;
    }
    return opacities;
}

std::vector<std::uint32_t> encodeNotedOpacities(const NotedOpacities& opacities)
{
    std::vector<std::uint32_t> words;
    for (auto& [window, opacity] : opacities)
        words.insert(words.end(), {window, opacity ? 1u : 0u, opacity.value_or(0)});
    return words;
}

}
