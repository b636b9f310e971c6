#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <xcb/xcb.h>

#include "Hosts/Linux/Applications/Icons.h"
#include "Hosts/X11/Atoms.h"
#include "Quorvel/Platform/Geometry.h"

namespace quorvel::xdg::x11 {

/// A property as the server delivers it. Any client may have written anything into it: each decoder
/// below answers a wrong type, format or length with "absent" or the nearest sane value.
struct RawProperty {
    xcb_atom_t type = XCB_ATOM_NONE; ///< none: the window has no such property
    std::uint8_t format = 0; ///< 8, 16 or 32 bits per item
    std::span<const std::byte> data;

    std::size_t words() const { return format == 32 ? data.size() / 4 : 0; }
    /// An item of format 32; 0 beyond the end.
    std::uint32_t word(std::size_t index) const;
};

/// What is asked of the server per property, in words of 4 bytes.
namespace limits {
inline constexpr std::uint32_t text = 1024;
inline constexpr std::uint32_t atoms = 64;
inline constexpr std::uint32_t features = 4096;
inline constexpr std::uint32_t windows = 1 << 16;
inline constexpr std::uint32_t desktopNames = 4096;
inline constexpr std::uint32_t icons = 1'200'000;
inline constexpr std::uint32_t notedOpacities = 3 * 4096;
inline constexpr std::size_t titleBytes = 1024;
inline constexpr std::size_t desktops = 1024;
inline constexpr std::uint32_t iconSide = 256;
inline constexpr int sharpIconSide = 64;
inline constexpr std::uint32_t largeIconSide = 1024;
}

struct WindowClass {
    std::string instance;
    std::string name;

    friend bool operator==(const WindowClass&, const WindowClass&) = default;
};

/// Lengths in pixels around a window.
struct Extents {
    std::uint32_t left = 0;
    std::uint32_t right = 0;
    std::uint32_t top = 0;
    std::uint32_t bottom = 0;

    friend bool operator==(const Extents&, const Extents&) = default;
};

/// The part of `WM_HINTS` that a panel shows.
struct WindowHints {
    bool isUrgent = false;
    xcb_pixmap_t iconPixmap = XCB_NONE;
    xcb_pixmap_t iconMask = XCB_NONE;

    bool hasIconOf(const WindowHints& other) const
    {
        return iconPixmap == other.iconPixmap && iconMask == other.iconMask;
    }
};

/// UTF-8 in which each invalid sequence is U+FFFD, cut at the first NUL and, at a code point
/// boundary, to at most `maximum` bytes.
std::string cleanedUtf8(std::string_view bytes, std::size_t maximum);
std::string utf8FromLatin1(std::string_view bytes, std::size_t maximum);

/// The server's numbers of the types that a text may have, beside STRING, which is Latin-1.
struct TextTypes {
    xcb_atom_t utf8String = XCB_ATOM_NONE;
    xcb_atom_t compoundText = XCB_ATOM_NONE;
};

inline TextTypes textTypes(const Atoms& atoms)
{
    return {atoms.utf8String, atoms.compoundText};
}

std::optional<std::string> decodeText(
    const RawProperty&, const TextTypes&, std::size_t maximum = limits::titleBytes);
/// A list of texts, each ended by NUL.
std::vector<std::string> decodeTexts(
    const RawProperty&, const TextTypes&, std::size_t maximumCount);
std::optional<std::uint32_t> decodeCardinal(const RawProperty&);
std::optional<xcb_window_t> decodeWindow(const RawProperty&);
std::vector<xcb_atom_t> decodeAtoms(const RawProperty&);
/// In their order, without zeros and duplicates.
std::vector<xcb_window_t> decodeWindows(const RawProperty&);
std::optional<WindowClass> decodeClass(const RawProperty&, const TextTypes&);
WindowHints decodeHints(const RawProperty&);
std::optional<Extents> decodeExtents(const RawProperty&);
/// The pixels that a panel reserves at the left, right, top and bottom of the X screen.
std::optional<Extents> decodeStrut(const RawProperty&);
/// The complete pictures of at most `limits::iconSide` pixels a side; if all of them are smaller
/// than `limits::sharpIconSide`, the first of at most `limits::largeIconSide` too.
std::vector<IconPixels> decodeIcons(const RawProperty&);
/// Opacity from 0 to 1; absent means opaque.
double decodeOpacity(const RawProperty&);

/// What windows had said of their opacity, from 0 to 0xFFFFFFFF; absent: nothing.
using NotedOpacities = std::map<xcb_window_t, std::optional<std::uint32_t>>;
/// None from what was not written by `encodeNotedOpacities`.
NotedOpacities decodeNotedOpacities(const RawProperty&);
std::vector<std::uint32_t> encodeNotedOpacities(const NotedOpacities&);

}
