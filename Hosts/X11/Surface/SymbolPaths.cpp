#include "Hosts/X11/Surface/SymbolPaths.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quorvel::x11 {

namespace {

struct GridStyle {
    static constexpr int dots = 3;
    static constexpr double gap = 0.55; ///< between two dots, in parts of a dot
    static constexpr double rounding = 0.3;
};

/// Three by three rounded squares on whole pixels, all of one size.
void addGrid(cairo_t* cairo, const Rect& box)
{
    double side = std::min(box.width, box.height);
    double dot = std::max(1.0, std::floor(side / (GridStyle::dots + 2 * GridStyle::gap)));
    double gap = std::max(1.0, std::floor((side - GridStyle::dots * dot) / 2));
    double whole = GridStyle::dots * dot + 2 * gap;
    double left = std::round(box.centre().x - whole / 2);
    double top = std::round(box.centre().y - whole / 2);
    for (int row = 0; row < GridStyle::dots; ++row) {
        for (int column = 0; column < GridStyle::dots; ++column) {
            Rect square{left + column * (dot + gap), top + row * (dot + gap), dot, dot};
            addRoundedPath(cairo, square, dot * GridStyle::rounding);
        }
    }
}

}

void addSymbolPath(cairo_t* cairo, Symbol symbol, const Rect& pixels)
{
    switch (symbol) {
    case Symbol::menuGrid:
        addGrid(cairo, pixels);
        break;
    }
}

void addRoundedPath(cairo_t* cairo, const Rect& rect, double radius)
{
    if (rect.isEmpty())
        return;
    double r = std::min({radius, rect.width / 2, rect.height / 2});
    if (r <= 0) {
        cairo_rectangle(cairo, rect.x, rect.y, rect.width, rect.height);
        return;
    }
    constexpr double quarter = std::numbers::pi / 2;
    cairo_new_sub_path(cairo);
    cairo_arc(cairo, rect.maxX() - r, rect.y + r, r, -quarter, 0);
    cairo_arc(cairo, rect.maxX() - r, rect.maxY() - r, r, 0, quarter);
    cairo_arc(cairo, rect.x + r, rect.maxY() - r, r, quarter, 2 * quarter);
    cairo_arc(cairo, rect.x + r, rect.y + r, r, 2 * quarter, 3 * quarter);
    cairo_close_path(cairo);
}

}
