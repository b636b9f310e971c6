#include "Hosts/X11/Surface/PartPainter.h"

#include "Hosts/Linux/Drawing/CairoCanvas.h"
#include "Hosts/X11/Surface/SurfaceContext.h"
#include "Quorvel/Platform/Surfaces.h"

namespace quorvel::xdg::x11 {

void paintPart(const SurfaceContext& context, SurfaceClient& client, cairo_surface_t* picture,
    const Rect& part, const Color& ground)
{
    double factor = context.scale();
    const Rect points{part.x / factor, part.y / factor, part.width / factor, part.height / factor};
    CairoCanvas canvas{picture, factor, context.tools, context.appearance.value().isRightToLeft};
    canvas.beginDamage(points, ground);
    client.paint(canvas, points);
    canvas.endDamage();
}

}
