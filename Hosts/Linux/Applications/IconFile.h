#pragma once

#include <string>
#include <string_view>

namespace quorvel::xdg {

/// Whether the name has the ending of a format that can be drawn.
bool isIconFileName(std::string_view name);
bool isVectorFileName(std::string_view name);
/// Whether the file is there and looks like one of these formats.
bool isIconFile(const std::string& path);

}
