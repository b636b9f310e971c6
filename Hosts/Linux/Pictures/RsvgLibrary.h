#pragma once

#include <librsvg/rsvg.h>

namespace quorvel::xdg {

/// The calls of librsvg, which is loaded when the first vector icon is shown: with its dependencies
/// it takes a seventh of the bar's memory, and on many desktops all icons are pixels.
struct RsvgLibrary {
    /// Null where it is not installed.
    static const RsvgLibrary* load();

    decltype(&::rsvg_handle_new_from_data) newFromData;
    decltype(&::rsvg_handle_render_document) render;
};

}
