#include "Hosts/X11/PixelLayout.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace quorvel::xdg::x11 {

namespace {

/// The value of a colour, stretched or cut to 8 bits.
std::uint32_t channel(std::uint32_t pixel, std::uint32_t mask)
{
    const int bits = std::popcount(mask);
    const std::uint64_t value = (pixel & mask) >> std::countr_zero(mask);
    const std::uint64_t largest = (std::uint64_t{1} << bits) - 1;
    return static_cast<std::uint32_t>((value * 255 + largest / 2) / largest);
}

template <typename Pixel>
void convert(
    const PixelLayout& layout, std::span<const std::byte> row, std::span<std::uint32_t> pixels)
{
    const auto count = std::min(pixels.size(), row.size() / sizeof(Pixel));
    for (std::size_t i = 0; i < count; ++i) {
        Pixel pixel;
        std::memcpy(&pixel, row.data() + i * sizeof(Pixel), sizeof(Pixel));
        pixels[i] = 0xFF000000 | channel(pixel, layout.red) << 16
            | channel(pixel, layout.green) << 8 | channel(pixel, layout.blue);
    }
}

}

bool PixelLayout::isReadable() const
{
    return (bitsPerPixel == 16 || bitsPerPixel == 32) && red && green && blue;
}

bool PixelLayout::isUsual() const
{
    return bitsPerPixel == 32 && red == 0xFF0000 && green == 0xFF00 && blue == 0xFF;
}

std::size_t PixelLayout::rowBytes(int width) const
{
    const int bits = width * bitsPerPixel;
    return static_cast<std::size_t>((bits + rowBits - 1) / rowBits * rowBits / 8);
}

void PixelLayout::toOpaque(std::span<const std::byte> row, std::span<std::uint32_t> pixels) const
{
    if (bitsPerPixel == 16)
        convert<std::uint16_t>(*this, row, pixels);
    else
        convert<std::uint32_t>(*this, row, pixels);
}

}
