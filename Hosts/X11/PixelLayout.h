#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace quorvel::xdg::x11 {

/// How a server stores pixels of one depth, in the byte order of this machine, and where a visual
/// has its colours in them.
struct PixelLayout {
    int bitsPerPixel = 0; ///< 0: unknown
    int rowBits = 32; ///< rows are padded to a multiple of this
    std::uint32_t red = 0;
    std::uint32_t green = 0;
    std::uint32_t blue = 0;

    /// Whether pixels of this layout can be read: 16 or 32 bits with three colours.
    bool isReadable() const;
    /// Whether they are cairo's pixels unchanged, apart from the alpha.
    bool isUsual() const;
    std::size_t rowBytes(int width) const;
    /// One row as opaque pixels of 8 bits a colour; as many as fit both spans.
    void toOpaque(std::span<const std::byte> row, std::span<std::uint32_t> pixels) const;

    friend bool operator==(const PixelLayout&, const PixelLayout&) = default;
};

}
