#pragma once

#include <string>

#include "Hosts/Linux/GHandles.h"

namespace quorvel::settings {

/// Plain text for a widget that takes its text for markup.
inline std::string escapedMarkup(const std::string& text)
{
    return xdg::GText{g_markup_escape_text(text.c_str(), -1)}.get();
}

}
