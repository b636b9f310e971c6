#pragma once

#include <cstddef>
#include <cstdint>

#include "Hosts/Linux/Pictures/PictureDrawing.h"

namespace quorvel::xdg {

/// What the bar sends to the process that decodes pictures, followed by the bytes of the file.
struct DecoderRequest {
    PictureFormat format;
    std::uint32_t pixels;
    std::uint32_t length; ///< of the bytes
};

/// What comes back, followed by the rows of a square, 32 bits a pixel as Cairo has them, if there
/// is a picture.
struct DecoderAnswer {
    std::uint32_t isDrawn;
};

constexpr std::uint32_t kLargestDecodedSide = 1024;

constexpr std::size_t bytesOfSquare(std::uint32_t pixels)
{
    return std::size_t{pixels} * pixels * 4;
}

}
