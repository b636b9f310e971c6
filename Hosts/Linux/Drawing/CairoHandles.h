#pragma once

#include <memory>

#include <cairo/cairo.h>
#include <pango/pango.h>

#include "Hosts/Linux/GHandles.h"

namespace quorvel::xdg {

using CairoSurface = std::unique_ptr<cairo_surface_t, FreeWith<cairo_surface_destroy>>;
using Cairo = std::unique_ptr<cairo_t, FreeWith<cairo_destroy>>;
using CairoPattern = std::unique_ptr<cairo_pattern_t, FreeWith<cairo_pattern_destroy>>;
using PangoFontHandle
    = std::unique_ptr<PangoFontDescription, FreeWith<pango_font_description_free>>;
using PangoContextHandle = GObjectHandle<PangoContext>;
using PangoLayoutHandle = GObjectHandle<PangoLayout>;

}
