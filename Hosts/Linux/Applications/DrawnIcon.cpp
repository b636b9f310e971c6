#include "Hosts/Linux/Applications/DrawnIcon.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quorvel::xdg {
namespace {

constexpr double kMargin = 0.08; // of the side, as are the next ones
constexpr double kRadius = 0.14;
constexpr double kTitleHeight = 0.2;
constexpr double kDotRadius = 0.035;

void roundedPath(cairo_t* context, double start, double end, double radius)
{
    constexpr double quarter = std::numbers::pi / 2;
    cairo_new_path(context);
    cairo_arc(context, end - radius, start + radius, radius, -quarter, 0);
    cairo_arc(context, end - radius, end - radius, radius, 0, quarter);
    cairo_arc(context, start + radius, end - radius, radius, quarter, 2 * quarter);
    cairo_arc(context, start + radius, start + radius, radius, 2 * quarter, 3 * quarter);
    cairo_close_path(context);
}

void drawWindow(cairo_t* context, double side)
{
    const double start = std::round(side * kMargin); // whole pixels keep the edges sharp
    const double end = side - start;
    const double title = start + std::max(std::round(side * kTitleHeight), 2.0);

    roundedPath(context, start, end, side * kRadius);
    cairo_clip(context);
    cairo_set_source_rgb(context, 0.93, 0.94, 0.96);
    cairo_paint(context);
    cairo_rectangle(context, 0, 0, side, title);
    cairo_set_source_rgb(context, 0.29, 0.45, 0.68);
    cairo_fill(context);

    const double middle = (start + title) / 2;
    cairo_set_source_rgba(context, 1, 1, 1, 0.9);
    for (int dot = 0; dot < 3; ++dot) {
        const double x = start + side * (kRadius + dot * 3.2 * kDotRadius);
        cairo_arc(context, x, middle, side * kDotRadius, 0, 2 * std::numbers::pi);
        cairo_fill(context);
    }
    cairo_reset_clip(context);

    const double line = std::max(1.0, std::round(side / 32));
    roundedPath(context, start + line / 2, end - line / 2, side * kRadius - line / 2);
    cairo_set_source_rgb(context, 0.2, 0.31, 0.48);
    cairo_set_line_width(context, line);
    cairo_stroke(context);
}

}

std::optional<SurfacePointer> DrawnIcon::draw(int pixels) const
{
    auto square = makeSquare(pixels);
    if (!square)
        return std::nullopt;
    cairo_t* context = cairo_create(square.get());
    drawWindow(context, pixels);
    cairo_destroy(context);
    return square;
}

}
