#pragma once

#include <string>
#include <string_view>

#include "Hosts/Linux/Applications/RenderedIcon.h"

namespace quorvel::xdg {

/// Whether the name has the ending of a format that `drawIconFile` reads.
bool isIconFileName(std::string_view name);
bool isVectorFileName(std::string_view name);
/// Whether the file is there and looks like one of these formats.
bool isIconFile(const std::string& path);

/// Draws a PNG or SVG file into a square; null for a file that is missing, broken, of another
/// format or larger than any icon.
SurfacePointer drawIconFile(const std::string& path, int pixels);

}
