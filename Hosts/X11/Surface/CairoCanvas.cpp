#include "Hosts/X11/Surface/CairoCanvas.h"

#include <algorithm>
#include <cmath>

#include <pango/pangocairo.h>

#include "Hosts/X11/IconImage.h"
#include "Hosts/X11/PixelPicture.h"
#include "Hosts/X11/Surface/SymbolPaths.h"
#include "Hosts/X11/Surface/TextShaper.h"

namespace quorvel::x11 {

namespace {

void addRectangle(cairo_t* cairo, const Rect& rect)
{
    cairo_rectangle(cairo, rect.x, rect.y, rect.width, rect.height);
}

/// A start and a length on whole pixels, such that neighbours that touch still touch.
std::pair<double, double> snapped(double start, double length)
{
    double from = std::round(start);
    double to = std::round(start + length);
    if (length > 0)
        to = std::max(to, from + 1);
    return {from, to - from};
}

double textStart(const Rect& box, const ShapedLine& line, TextAlignment alignment)
{
    if (alignment == TextAlignment::centre)
        return box.x + (box.width - line.width) / 2;
    bool isRight = (alignment == TextAlignment::trailing) != line.isRightToLeft;
    return isRight ? box.maxX() - line.width : box.x;
}

void drawPicture(cairo_t* cairo, const PixelPicture& picture, const Rect& box)
{
    if (box.isEmpty() || picture.width() < 1 || picture.height() < 1)
        return;
    cairo_save(cairo);
    cairo_translate(cairo, box.x, box.y);
    cairo_scale(cairo, box.width / picture.width(), box.height / picture.height());
    cairo_set_source_surface(cairo, picture.surface(), 0, 0);
    // At the edges, what lies outside the picture must not shine through.
    cairo_pattern_set_extend(cairo_get_source(cairo), CAIRO_EXTEND_PAD);
    cairo_rectangle(cairo, 0, 0, picture.width(), picture.height());
    cairo_fill(cairo);
    cairo_restore(cairo);
}

}

CairoCanvas::CairoCanvas(
    cairo_surface_t* surface, double scale, TextShaper& shaper, bool isRightToLeft)
    : m_scale(scale)
    , m_shaper(shaper)
    , m_isRightToLeft(isRightToLeft)
    , m_cairo(cairo_create(surface))
{
}

CairoCanvas::~CairoCanvas() = default;

void CairoCanvas::save()
{
    cairo_save(m_cairo.get());
    m_savedOrigins.push_back(m_origin);
}

void CairoCanvas::restore()
{
    if (m_savedOrigins.empty())
        return;
    cairo_restore(m_cairo.get());
    m_origin = m_savedOrigins.back();
    m_savedOrigins.pop_back();
}

void CairoCanvas::translate(double dx, double dy)
{
    m_origin = m_origin.translated(dx, dy);
}

void CairoCanvas::clip(const Rect& rect)
{
    addRectangle(m_cairo.get(), toWholePixels(rect));
    cairo_clip(m_cairo.get());
}

void CairoCanvas::beginOpacity(double opacity)
{
    m_opacities.push_back(std::clamp(opacity, 0.0, 1.0));
    cairo_push_group(m_cairo.get());
}

void CairoCanvas::endOpacity()
{
    if (m_opacities.empty())
        return;
    cairo_pop_group_to_source(m_cairo.get());
    cairo_paint_with_alpha(m_cairo.get(), m_opacities.back());
    m_opacities.pop_back();
}

void CairoCanvas::fill(const Rect& rect, const Color& color)
{
    setColor(color);
    addRectangle(m_cairo.get(), toWholePixels(rect));
    cairo_fill(m_cairo.get());
}

void CairoCanvas::fillRounded(const Rect& rect, double radius, const Color& color)
{
    setColor(color);
    addRoundedPath(m_cairo.get(), toWholePixels(rect), radius * m_scale);
    cairo_fill(m_cairo.get());
}

void CairoCanvas::strokeRounded(const Rect& rect, double radius, double width, const Color& color)
{
    auto outer = toWholePixels(rect);
    double line = std::max(1.0, std::round(width * m_scale));
    setColor(color);
    cairo_set_fill_rule(m_cairo.get(), CAIRO_FILL_RULE_EVEN_ODD);
    addRoundedPath(m_cairo.get(), outer, radius * m_scale);
    addRoundedPath(m_cairo.get(), outer.inset(line, line), radius * m_scale - line);
    cairo_fill(m_cairo.get());
    cairo_set_fill_rule(m_cairo.get(), CAIRO_FILL_RULE_WINDING);
}

void CairoCanvas::fillGradient(
    const Rect& rect, GradientDirection direction, const std::vector<GradientStop>& stops)
{
    auto box = toWholePixels(rect);
    bool isVertical = direction == GradientDirection::topToBottom;
    double from = m_isRightToLeft ? box.maxX() : box.x;
    double to = m_isRightToLeft ? box.x : box.maxX();
    CairoPattern gradient{isVertical ? cairo_pattern_create_linear(0, box.y, 0, box.maxY())
                                     : cairo_pattern_create_linear(from, 0, to, 0)};
    for (auto& [position, color] : stops)
        cairo_pattern_add_color_stop_rgba(
            gradient.get(), position, color.red, color.green, color.blue, color.alpha);
    cairo_set_source(m_cairo.get(), gradient.get());
    addRectangle(m_cairo.get(), box);
    cairo_fill(m_cairo.get());
}

void CairoCanvas::drawImage(const Image& image, const Rect& rect)
{
    if (auto* picture = dynamic_cast<const PixelPicture*>(image.get()))
        return drawPicture(m_cairo.get(), *picture, toPixels(rect));
    auto* icon = dynamic_cast<const IconImage*>(image.get());
    if (!icon || rect.isEmpty())
        return;
    auto pixels = toPixels(rect);
    int side = std::max(1, static_cast<int>(std::lround(std::min(pixels.width, pixels.height))));
    auto* surface = icon->rendered(side);
    if (!surface)
        return;
    auto corner = pixels.centred({static_cast<double>(side), static_cast<double>(side)});
    cairo_set_source_surface(m_cairo.get(), surface, std::round(corner.x), std::round(corner.y));
    cairo_paint(m_cairo.get());
}

void CairoCanvas::drawText(std::string_view utf8, const Rect& rect, const TextStyle& style)
{
    auto box = toPixels(rect);
    if (utf8.empty() || box.isEmpty())
        return;
    auto line = m_shaper.shape(utf8, style, m_scale, box.width);
    auto metrics = m_shaper.metrics(style.size, style.weight, m_scale);
    double baseline = box.y + (box.height - metrics.height()) / 2 + metrics.ascent;

    cairo_save(m_cairo.get());
    if (style.elide == Elide::none) {
        addRectangle(m_cairo.get(), toWholePixels(rect));
        cairo_clip(m_cairo.get());
    }
    setColor(style.color);
    cairo_move_to(
        m_cairo.get(), std::round(textStart(box, line, style.alignment)), std::round(baseline));
    pango_cairo_show_layout_line(m_cairo.get(), line.line);
    cairo_restore(m_cairo.get());
    cairo_new_path(m_cairo.get());
}

void CairoCanvas::drawSymbol(Symbol symbol, const Rect& rect, const Color& color)
{
    setColor(color);
    addSymbolPath(m_cairo.get(), symbol, toPixels(rect));
    cairo_fill(m_cairo.get());
}

void CairoCanvas::beginDamage(const Rect& points)
{
    save();
    clip(points);
    cairo_set_operator(m_cairo.get(), CAIRO_OPERATOR_CLEAR);
    cairo_paint(m_cairo.get());
    cairo_set_operator(m_cairo.get(), CAIRO_OPERATOR_OVER);
}

void CairoCanvas::endDamage()
{
    while (!m_opacities.empty())
        endOpacity();
    while (!m_savedOrigins.empty())
        restore();
}

Rect CairoCanvas::toPixels(const Rect& points) const
{
    return {(points.x + m_origin.x) * m_scale, (points.y + m_origin.y) * m_scale,
        points.width * m_scale, points.height * m_scale};
}

Rect CairoCanvas::toWholePixels(const Rect& points) const
{
    auto pixels = toPixels(points);
    auto [x, width] = snapped(pixels.x, pixels.width);
    auto [y, height] = snapped(pixels.y, pixels.height);
    return {x, y, width, height};
}

void CairoCanvas::setColor(const Color& color)
{
    cairo_set_source_rgba(m_cairo.get(), color.red, color.green, color.blue, color.alpha);
}

}
