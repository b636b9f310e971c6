#include "Hosts/X11/Desktop/PixmapIcon.h"

#include "Hosts/X11/Desktop/Properties.h"

namespace quorvel::xdg::x11 {

namespace {

constexpr std::uint32_t kBlack = 0xFF000000;
constexpr std::uint32_t kWhite = 0xFFFFFFFF;

std::size_t bitmapRowBytes(int width, const BitmapLayout& layout)
{
    return static_cast<std::size_t>((width + layout.rowBits - 1) / layout.rowBits * layout.rowBits)
        / 8;
}

bool hasRows(const RawPixmap& pixmap, std::size_t rowBytes)
{
    const auto side = static_cast<int>(limits::iconSide);
    return pixmap.width > 0 && pixmap.height > 0 && pixmap.width <= side && pixmap.height <= side
        && pixmap.data.size() >= rowBytes * static_cast<std::size_t>(pixmap.height);
}

/// Whether the pixmap has this pixel set.
bool bit(const RawPixmap& pixmap, const BitmapLayout& layout, int x, int y)
{
    const auto at = bitmapRowBytes(pixmap.width, layout) * static_cast<std::size_t>(y)
        + static_cast<std::size_t>(x / 8);
    const int place = layout.startsAtLowestBit ? x % 8 : 7 - x % 8;
    return (std::to_integer<unsigned>(pixmap.data[at]) >> place & 1) != 0;
}

bool isBitmap(const RawPixmap& pixmap, const BitmapLayout& layout)
{
    return pixmap.depth == 1 && hasRows(pixmap, bitmapRowBytes(pixmap.width, layout));
}

}

std::optional<IconPixels> iconFromPixmaps(const RawPixmap& picture,
    const std::optional<RawPixmap>& mask, const PixelLayout& ofScreen, const BitmapLayout& layout)
{
    const bool isBlackAndWhite = isBitmap(picture, layout);
    const auto rowBytes = ofScreen.rowBytes(picture.width);
    if (!isBlackAndWhite
        && (picture.depth == 1 || !ofScreen.isReadable() || !hasRows(picture, rowBytes)))
        return std::nullopt;
    const bool isMasked = mask && isBitmap(*mask, layout);

    IconPixels icon{picture.width, picture.height, {}};
    const auto width = static_cast<std::size_t>(picture.width);
    icon.argb.resize(width * static_cast<std::size_t>(picture.height));
    for (int y = 0; y < picture.height; ++y) {
        const auto row = static_cast<std::size_t>(y);
        const std::span pixels{icon.argb.data() + row * width, width};
        if (!isBlackAndWhite)
            ofScreen.toOpaque(picture.data.subspan(row * rowBytes, rowBytes), pixels);
        for (int x = 0; x < picture.width; ++x) {
            auto& pixel = pixels[static_cast<std::size_t>(x)];
            if (isBlackAndWhite)
                pixel = bit(picture, layout, x, y) ? kBlack : kWhite;
            if (isMasked && (x >= mask->width || y >= mask->height || !bit(*mask, layout, x, y)))
                pixel = 0;
        }
    }
    return icon;
}

}
