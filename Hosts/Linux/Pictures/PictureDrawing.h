#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "Hosts/Linux/Pictures/PictureSurface.h"

namespace quorvel::xdg {

enum class PictureFormat : std::uint32_t { png, svg };

/// How many bytes of a file tell its format.
constexpr std::size_t kFormatBytes = 8;
/// A file with more is no icon.
constexpr std::size_t kLargestPictureFile = 8 << 20;

/// The format of a file, by its first bytes or, for text, its name; absent for any other.
std::optional<PictureFormat> formatOf(std::string_view name, std::string_view start);

/// Draws the bytes of a file into a square; null for a broken picture, or one larger than any icon.
/// Decodes what strangers wrote, in this process: the bar has it done by `DecoderProcess`.
SurfacePointer drawPicture(std::string_view bytes, PictureFormat, int pixels);

}
