#pragma once

#include <librsvg/rsvg.h>

namespace quorvel::xdg {

/// The calls of librsvg, which is loaded when the first drawing in its format is shown: with what
/// it depends on it is a seventh of the bar's memory, and many desktops have all icons as pixels.
struct RsvgLibrary {
    /// Null where it is not installed.
    static const RsvgLibrary* load();

    decltype(&::rsvg_handle_new_from_data) newFromData;
    decltype(&::rsvg_handle_render_document) render;
};

}
