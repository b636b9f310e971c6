#pragma once

#include <string>
#include <string_view>

#include "Hosts/Linux/GHandles.h"

namespace quorvel::xdg {

/// The text with each invalid stretch of bytes replaced, as UTF-8.
inline std::string validUtf8(std::string_view bytes)
{
    if (bytes.empty())
        return {};
    return GText{g_utf8_make_valid(bytes.data(), static_cast<gssize>(bytes.size()))}.get();
}

}
