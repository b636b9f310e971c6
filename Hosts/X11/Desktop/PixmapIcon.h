#pragma once

#include <cstddef>
#include <optional>
#include <span>

#include "Hosts/Linux/Applications/Icons.h"
#include "Hosts/X11/PixelLayout.h"

namespace quorvel::xdg::x11 {

/// A pixmap as the server delivers it: rows from the top.
struct RawPixmap {
    int width = 0;
    int height = 0;
    int depth = 0;
    std::span<const std::byte> data;
};

/// Where a server puts the leftmost of eight pixels of depth 1, and what its rows are padded to.
struct BitmapLayout {
    bool startsAtLowestBit = true;
    int rowBits = 32;
};

/// The icon that a window names in its hints: black on white at depth 1, else in the layout of the
/// screen. The mask, of depth 1, says which pixels are visible. Absent where a size or the data
/// make no sense; an invalid mask is ignored.
std::optional<IconPixels> iconFromPixmaps(const RawPixmap& picture,
    const std::optional<RawPixmap>& mask, const PixelLayout& ofScreen, const BitmapLayout&);

}
