#pragma once

#include "Hosts/Linux/Drawing/CairoHandles.h"
#include "Quorvel/Platform/Canvas.h"
#include "Quorvel/Platform/Geometry.h"

namespace quorvel {
class SurfaceClient;
}

namespace quorvel::xdg::x11 {

struct SurfaceContext;

/// Has the client repaint this part (pixels) of its picture, over the ground.
void paintPart(const SurfaceContext&, SurfaceClient&, cairo_surface_t* picture, const Rect& part,
    const Color& ground = Color::grey(0, 0));

}
