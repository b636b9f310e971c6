#include "Hosts/Linux/Drawing/SymbolPaths.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace quorvel::xdg {

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

struct LineStyle {
    static constexpr double width = 0.11; ///< in parts of the side
    static constexpr double thinnest = 1.25; ///< pixels; a thinner one would look grey
    static constexpr double reach = 0.3; ///< from the centre to the end of a line
};

/// A line through these corners, which are given from the centre in parts of the reach. They lie on
/// whole pixels from a common centre, so that what mirrors itself does so on the screen.
void strokeLine(cairo_t* cairo, const Rect& box, std::initializer_list<Point> corners)
{
    double side = std::min(box.width, box.height);
    double reach = std::max(1.0, std::round(side * LineStyle::reach));
    double centreX = std::round(box.centre().x * 2) / 2;
    double centreY = std::round(box.centre().y * 2) / 2;
    for (auto& corner : corners)
        cairo_line_to(cairo, centreX + corner.x * reach, centreY + corner.y * reach);
    cairo_set_line_width(cairo, std::max(LineStyle::thinnest, side * LineStyle::width));
    cairo_set_line_cap(cairo, CAIRO_LINE_CAP_ROUND);
    cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
    cairo_stroke(cairo);
}

struct DesktopStyle {
    static constexpr double width = 0.82; ///< in parts of the side
    static constexpr double height = 0.66;
    static constexpr double line = 0.08;
    static constexpr double bar = 0.2; ///< the strip at the bottom of the screen
    static constexpr double rounding = 0.1;
};

/// The outline of a screen with a bar at its bottom, on whole pixels.
void paintDesktop(cairo_t* cairo, const Rect& box)
{
    double side = std::min(box.width, box.height);
    double line = std::max(1.0, std::round(side * DesktopStyle::line));
    double width = std::max(3 * line, std::round(side * DesktopStyle::width));
    double height = std::max(4 * line, std::round(side * DesktopStyle::height));
    Rect outer{std::round(box.centre().x - width / 2), std::round(box.centre().y - height / 2),
        width, height};
    Rect inner = outer.inset(line, line);
    inner.height -= std::max(0.0, std::round(side * DesktopStyle::bar) - line);
    double radius = side * DesktopStyle::rounding;
    fillBetween(cairo, outer, radius, inner, radius - line);
}

struct GlassStyle {
    static constexpr double radius = 0.3; ///< of the lens, in parts of the side
    static constexpr double centre = -0.1; ///< of the lens, from the centre of the box
    static constexpr double handle = 0.4; ///< to the end of the handle, on both axes
};

void paintGlass(cairo_t* cairo, const Rect& box)
{
    double side = std::min(box.width, box.height);
    double line = std::max(LineStyle::thinnest, side * LineStyle::width);
    double radius = side * GlassStyle::radius;
    auto lens = box.centre().translated(side * GlassStyle::centre, side * GlassStyle::centre);
    auto rim = lens.translated(radius * std::numbers::sqrt2 / 2, radius * std::numbers::sqrt2 / 2);
    auto end = box.centre().translated(side * GlassStyle::handle, side * GlassStyle::handle);
    cairo_new_sub_path(cairo);
    cairo_arc(cairo, lens.x, lens.y, radius, 0, 2 * std::numbers::pi);
    cairo_close_path(cairo);
    cairo_move_to(cairo, rim.x, rim.y);
    cairo_line_to(cairo, end.x, end.y);
    cairo_set_line_width(cairo, line);
    cairo_set_line_cap(cairo, CAIRO_LINE_CAP_ROUND);
    cairo_stroke(cairo);
}

/// A square around the middle of the box, on which places are given from the centre in parts of the
/// side: half of it to each edge.
struct SymbolFrame {
    explicit SymbolFrame(const Rect& box)
        : side(std::min(box.width, box.height))
        , centre(box.centre())
    {
    }

    Point at(Point part) const { return {centre.x + part.x * side, centre.y + part.y * side}; }
    Rect rect(double left, double top, double width, double height) const
    {
        auto corner = at({left, top});
        return {corner.x, corner.y, width * side, height * side};
    }
    double line(double part) const { return std::max(LineStyle::thinnest, part * side); }

    double side;
    Point centre;
};

void addDisc(cairo_t* cairo, const SymbolFrame& frame, Point centre, double radius)
{
    auto at = frame.at(centre);
    cairo_new_sub_path(cairo);
    cairo_arc(cairo, at.x, at.y, radius * frame.side, 0, 2 * std::numbers::pi);
    cairo_close_path(cairo);
}

void addLine(cairo_t* cairo, const SymbolFrame& frame, std::initializer_list<Point> corners)
{
    cairo_new_sub_path(cairo);
    for (auto& corner : corners) {
        auto at = frame.at(corner);
        cairo_line_to(cairo, at.x, at.y);
    }
}

void strokeRound(cairo_t* cairo, double width)
{
    cairo_set_line_width(cairo, width);
    cairo_set_line_cap(cairo, CAIRO_LINE_CAP_ROUND);
    cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
    cairo_stroke(cairo);
}

struct DiscStyle {
    static constexpr double radius = 0.46; ///< in parts of the side
    static constexpr double line = 0.1;
};

using Strokes = std::initializer_list<std::initializer_list<Point>>;

/// A disc from which lines are left out, whatever is behind it.
void paintDiscWithout(cairo_t* cairo, const Rect& box, Strokes strokes)
{
    SymbolFrame frame{box};
    cairo_push_group(cairo);
    addDisc(cairo, frame, {}, DiscStyle::radius);
    cairo_fill(cairo);
    cairo_set_operator(cairo, CAIRO_OPERATOR_CLEAR);
    for (auto& stroke : strokes)
        addLine(cairo, frame, stroke);
    strokeRound(cairo, frame.line(DiscStyle::line));
    cairo_set_operator(cairo, CAIRO_OPERATOR_OVER);
    cairo_pop_group_to_source(cairo);
    cairo_paint(cairo);
}

struct DashedStyle {
    static constexpr double side = 0.8; ///< in parts of the box's
    static constexpr double rounding = 0.28;
    static constexpr double line = 0.06;
    static constexpr int dashes = 12; ///< around the square
    static constexpr double share = 0.6; ///< of a dash, of the way from one to the next
};

/// A rounded square of dashes, a whole number of them.
void paintDashed(cairo_t* cairo, const Rect& box)
{
    double side = std::min(box.width, box.height) * DashedStyle::side;
    double radius = side * DashedStyle::rounding;
    double way = 4 * (side - 2 * radius) + 2 * std::numbers::pi * radius;
    double step = way / DashedStyle::dashes;
    double dashes[] = {step * DashedStyle::share, step * (1 - DashedStyle::share)};
    addRoundedPath(cairo, box.centred({side, side}), radius);
    cairo_set_line_width(cairo, std::max(LineStyle::thinnest, side * DashedStyle::line));
    cairo_set_line_cap(cairo, CAIRO_LINE_CAP_BUTT);
    cairo_set_dash(cairo, dashes, 2, 0);
    cairo_stroke(cairo);
    cairo_set_dash(cairo, nullptr, 0, 0);
}

/// A shield with a lock on it.
void paintLockShield(cairo_t* cairo, const Rect& box)
{
    SymbolFrame frame{box};
    auto curve = [&](Point first, Point second, Point end) {
        auto [a, b, c] = std::array{frame.at(first), frame.at(second), frame.at(end)};
        cairo_curve_to(cairo, a.x, a.y, b.x, b.y, c.x, c.y);
    };
    auto top = frame.at({0, -0.46});
    cairo_move_to(cairo, top.x, top.y);
    curve({0.12, -0.37}, {0.25, -0.33}, {0.39, -0.32});
    curve({0.4, 0.05}, {0.3, 0.32}, {0, 0.46});
    curve({-0.3, 0.32}, {-0.4, 0.05}, {-0.39, -0.32});
    curve({-0.25, -0.33}, {-0.12, -0.37}, {0, -0.46});
    cairo_close_path(cairo);
    strokeRound(cairo, frame.line(0.07));

    addRoundedPath(cairo, frame.rect(-0.15, -0.04, 0.3, 0.22), 0.04 * frame.side);
    cairo_fill(cairo);
    auto bow = frame.at({0, -0.08});
    addLine(cairo, frame, {{-0.09, -0.03}});
    cairo_arc(cairo, bow.x, bow.y, 0.09 * frame.side, std::numbers::pi, 0);
    addLine(cairo, frame, {{0.09, -0.08}, {0.09, -0.03}});
    strokeRound(cairo, frame.line(0.055));
}

/// Standing, with the arms down.
void paintFigure(cairo_t* cairo, const Rect& box)
{
    SymbolFrame frame{box};
    addDisc(cairo, frame, {0, -0.37}, 0.095);
    addRoundedPath(cairo, frame.rect(-0.11, -0.23, 0.22, 0.36), 0.05 * frame.side);
    cairo_fill(cairo);
    addLine(cairo, frame, {{0, -0.19}, {0.17, -0.19}, {0.17, 0.1}});
    addLine(cairo, frame, {{0, -0.19}, {-0.17, -0.19}, {-0.17, 0.1}});
    strokeRound(cairo, frame.line(0.08));
    addLine(cairo, frame, {{-0.06, 0.1}, {-0.06, 0.42}});
    addLine(cairo, frame, {{0.06, 0.1}, {0.06, 0.42}});
    strokeRound(cairo, frame.line(0.095));
}

/// A screen on its foot.
void paintDisplay(cairo_t* cairo, const Rect& box)
{
    SymbolFrame frame{box};
    addRoundedPath(cairo, frame.rect(-0.43, -0.35, 0.86, 0.56), 0.07 * frame.side);
    strokeRound(cairo, frame.line(0.075));
    addRoundedPath(cairo, frame.rect(-0.07, 0.21, 0.14, 0.14), 0);
    addRoundedPath(cairo, frame.rect(-0.21, 0.32, 0.42, 0.07), 0.035 * frame.side);
    cairo_fill(cairo);
}

}

void paintSymbol(cairo_t* cairo, Symbol symbol, const Rect& pixels)
{
    switch (symbol) {
    case Symbol::menuGrid:
        addGrid(cairo, pixels);
        return cairo_fill(cairo);
    case Symbol::close:
        strokeLine(cairo, pixels, {{-1, -1}, {1, 1}});
        return strokeLine(cairo, pixels, {{1, -1}, {-1, 1}});
    case Symbol::chevronLeft:
        return strokeLine(cairo, pixels, {{0.5, -1}, {-0.5, 0}, {0.5, 1}});
    case Symbol::chevronRight:
        return strokeLine(cairo, pixels, {{-0.5, -1}, {0.5, 0}, {-0.5, 1}});
    case Symbol::chevronUp:
        return strokeLine(cairo, pixels, {{-1, 0.5}, {0, -0.5}, {1, 0.5}});
    case Symbol::showDesktop:
        return paintDesktop(cairo, pixels);
    case Symbol::checkmark:
        return strokeLine(cairo, pixels, {{-1, 0.1}, {-0.3, 0.8}, {1, -0.8}});
    case Symbol::magnifyingGlass:
        return paintGlass(cairo, pixels);
    case Symbol::clear:
        return paintDiscWithout(
            cairo, pixels, {{{-0.17, -0.17}, {0.17, 0.17}}, {{0.17, -0.17}, {-0.17, 0.17}}});
    case Symbol::appDashed:
        return paintDashed(cairo, pixels);
    case Symbol::lockShield:
        return paintLockShield(cairo, pixels);
    case Symbol::figureStand:
        return paintFigure(cairo, pixels);
    case Symbol::display:
        return paintDisplay(cairo, pixels);
    case Symbol::checkmarkCircle:
        return paintDiscWithout(cairo, pixels, {{{-0.2, 0.02}, {-0.06, 0.16}, {0.21, -0.15}}});
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

void fillBetween(
    cairo_t* cairo, const Rect& outer, double outerRadius, const Rect& inner, double innerRadius)
{
    cairo_set_fill_rule(cairo, CAIRO_FILL_RULE_EVEN_ODD);
    addRoundedPath(cairo, outer, outerRadius);
    addRoundedPath(cairo, inner, innerRadius);
    cairo_fill(cairo);
    cairo_set_fill_rule(cairo, CAIRO_FILL_RULE_WINDING);
}

}
