#pragma once

#include <memory>

#include <cairo/cairo.h>
#include <pango/pango.h>

namespace quorvel::xdg {

/// Frees a C library's object with the library's own call.
template <auto Free> struct FreeWith {
    template <typename Object> void operator()(Object* object) const { Free(object); }
};

using CairoSurface = std::unique_ptr<cairo_surface_t, FreeWith<cairo_surface_destroy>>;
using Cairo = std::unique_ptr<cairo_t, FreeWith<cairo_destroy>>;
using CairoPattern = std::unique_ptr<cairo_pattern_t, FreeWith<cairo_pattern_destroy>>;
using PangoFontHandle
    = std::unique_ptr<PangoFontDescription, FreeWith<pango_font_description_free>>;
using PangoMetricsHandle = std::unique_ptr<PangoFontMetrics, FreeWith<pango_font_metrics_unref>>;
using PangoContextHandle = std::unique_ptr<PangoContext, FreeWith<g_object_unref>>;
using PangoLayoutHandle = std::unique_ptr<PangoLayout, FreeWith<g_object_unref>>;

}
