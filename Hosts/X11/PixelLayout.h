#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace quorvel::xdg::x11 {

/// How a server keeps pixels of one depth, in the byte order of this machine, and where a visual
/// has its colours in them.
struct PixelLayout {
    int bitsPerPixel = 0; ///< 0: not known
    int rowBits = 32; ///< a row takes a multiple of these
    std::uint32_t red = 0;
    std::uint32_t green = 0;
    std::uint32_t blue = 0;

    /// Pixels of 16 and 32 bits with three colours can be read.
    bool isReadable() const;
    /// Whether they are the pixels of cairo as they are, apart from the alpha.
    bool isUsual() const;
    std::size_t rowBytes(int width) const;
    /// One row as opaque pixels of 8 bits a colour; as many as both have.
    void toOpaque(std::span<const std::byte> row, std::span<std::uint32_t> pixels) const;

    friend bool operator==(const PixelLayout&, const PixelLayout&) = default;
};

}
