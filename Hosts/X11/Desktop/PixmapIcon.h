#pragma once

#include <cstddef>
#include <optional>
#include <span>

#include "Hosts/Linux/Applications/Icons.h"
#include "Hosts/X11/PixelLayout.h"

namespace quorvel::xdg::x11 {

/// A pixmap as the server hands it over: rows from the top.
struct RawPixmap {
    int width = 0;
    int height = 0;
    int depth = 0;
    std::span<const std::byte> data;
};

/// Where a server has the leftmost of eight pixels of depth 1, and what its rows are multiples of.
struct BitmapLayout {
    bool startsAtLowestBit = true;
    int rowBits = 32;
};

/// The icon that a window names in its hints: black on white where it has depth 1, else in the
/// layout of the screen. The mask, of depth 1, says which pixels are there. Absent where a size or
/// the data make no sense; a mask that makes none counts as missing.
std::optional<IconPixels> iconFromPixmaps(const RawPixmap& picture,
    const std::optional<RawPixmap>& mask, const PixelLayout& ofScreen, const BitmapLayout&);

}
