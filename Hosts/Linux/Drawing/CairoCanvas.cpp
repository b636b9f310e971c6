#include "Hosts/Linux/Drawing/CairoCanvas.h"

#include <algorithm>
#include <cmath>

#include "Hosts/Linux/Drawing/CanvasTools.h"
#include "Hosts/Linux/Drawing/IconImage.h"
#include "Hosts/Linux/Drawing/PixelPicture.h"
#include "Hosts/Linux/Drawing/SymbolPaths.h"

namespace quorvel::xdg {

namespace {

constexpr double kSmallestFactor = 0.001;

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

double textStart(const Rect& box, double width, TextAlignment alignment, bool isRightToLeft)
{
    if (alignment == TextAlignment::centre)
        return box.x + (box.width - width) / 2;
    bool isRight = (alignment == TextAlignment::trailing) != isRightToLeft;
    return isRight ? box.maxX() - width : box.x;
}

constexpr double kBilinearLimit = 0.5;

void drawPicture(cairo_t* cairo, const PixelPicture& picture, const Rect& box)
{
    if (box.isEmpty() || picture.width() < 1 || picture.height() < 1)
        return;
    cairo_save(cairo);
    cairo_translate(cairo, box.x, box.y);
    double factor = box.width / picture.width();
    cairo_scale(cairo, factor, box.height / picture.height());
    cairo_set_source_surface(cairo, picture.surface(), 0, 0);
    auto* source = cairo_get_source(cairo);
    // At the edges, what lies outside the picture must not shine through.
    cairo_pattern_set_extend(source, CAIRO_EXTEND_PAD);
    // Each pixel of the result has four of the picture to come from: as good down to the half, and
    // many times faster than a filter that looks at all of them.
    if (factor >= kBilinearLimit)
        cairo_pattern_set_filter(source, CAIRO_FILTER_BILINEAR);
    cairo_rectangle(cairo, 0, 0, picture.width(), picture.height());
    cairo_fill(cairo);
    cairo_restore(cairo);
}

}

CairoCanvas::CairoCanvas(
    cairo_surface_t* surface, double scale, CanvasTools& tools, bool isRightToLeft)
    : m_scale(scale)
    , m_tools(tools)
    , m_isRightToLeft(isRightToLeft)
    , m_cairo(cairo_create(surface))
{
}

CairoCanvas::~CairoCanvas() = default;

void CairoCanvas::save()
{
    cairo_save(m_cairo.get());
    m_saved.push_back(m_transform);
}

void CairoCanvas::restore()
{
    if (m_saved.empty())
        return;
    cairo_restore(m_cairo.get());
    m_transform = m_saved.back();
    m_saved.pop_back();
}

void CairoCanvas::translate(double dx, double dy)
{
    double factor = m_transform.factor;
    m_transform.origin = m_transform.origin.translated(dx * factor, dy * factor);
}

void CairoCanvas::magnify(double factor, Point about)
{
    // A factor of 0 would leave nothing to invert.
    factor = std::max(factor, kSmallestFactor);
    translate(about.x * (1 - factor), about.y * (1 - factor));
    m_transform.factor *= factor;
}

void CairoCanvas::clip(const Rect& rect)
{
    addRectangle(m_cairo.get(), toWholePixels(rect));
    cairo_clip(m_cairo.get());
}

void CairoCanvas::clipRounded(const Rect& rect, double radius)
{
    addRoundedPath(m_cairo.get(), toWholePixels(rect), radius * pixelsPerPoint());
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
    auto pixels = toWholePixels(rect);
    if (pixels.isEmpty())
        return;
    setColor(color);
    if (auto* mask = maskOf(pixels, radius))
        return cairo_mask_surface(m_cairo.get(), mask, pixels.x, pixels.y);
    addRoundedPath(m_cairo.get(), pixels, radius * pixelsPerPoint());
    cairo_fill(m_cairo.get());
}

cairo_surface_t* CairoCanvas::maskOf(const Rect& pixels, double radius, double line)
{
    if (isMagnified())
        return nullptr;
    return m_tools.masks.mask({static_cast<int>(pixels.width), static_cast<int>(pixels.height),
        radius * pixelsPerPoint(), line});
}

void CairoCanvas::strokeRounded(const Rect& rect, double radius, double width, const Color& color)
{
    auto outer = toWholePixels(rect);
    double line = std::max(1.0, std::round(width * pixelsPerPoint()));
    if (outer.isEmpty())
        return;
    setColor(color);
    if (auto* mask = maskOf(outer, radius, line))
        return cairo_mask_surface(m_cairo.get(), mask, outer.x, outer.y);
    double outerRadius = radius * pixelsPerPoint();
    fillBetween(m_cairo.get(), outer, outerRadius, outer.inset(line, line), outerRadius - line);
}

void CairoCanvas::fillPolygon(const std::vector<Point>& corners, const Color& color)
{
    setColor(color);
    for (auto& corner : corners) {
        auto [x, y] = toPixels(corner);
        cairo_line_to(m_cairo.get(), x, y); // the first one moves there
    }
    cairo_fill(m_cairo.get());
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
    if (auto* icon = dynamic_cast<const IconImage*>(image.get()); icon && !rect.isEmpty())
        drawMagnified(rect, [&](const Rect& pixels) { drawIcon(*icon, pixels); });
}

void CairoCanvas::drawIcon(const IconImage& icon, const Rect& pixels)
{
    int side = std::max(1, static_cast<int>(std::lround(std::min(pixels.width, pixels.height))));
    auto* surface = icon.rendered(side);
    if (!surface)
        return;
    auto corner = pixels.centred({static_cast<double>(side), static_cast<double>(side)});
    cairo_set_source_surface(m_cairo.get(), surface, std::round(corner.x), std::round(corner.y));
    cairo_paint(m_cairo.get());
}

void CairoCanvas::drawText(std::string_view utf8, const Rect& rect, const TextStyle& style)
{
    if (!utf8.empty() && !rect.isEmpty())
        drawMagnified(rect, [&](const Rect& pixels) { drawLine(utf8, pixels, style); });
}

void CairoCanvas::drawLine(std::string_view utf8, const Rect& box, const TextStyle& style)
{
    auto line = m_tools.shaper.shape(utf8, style, m_scale, box.width);
    auto metrics = m_tools.shaper.metrics(style.size, style.weight, m_scale);
    double baseline = box.y + (box.height - metrics.height()) / 2 + metrics.ascent;

    cairo_save(m_cairo.get());
    if (style.elide == Elide::none) {
        auto [x, width] = snapped(box.x, box.width);
        auto [y, height] = snapped(box.y, box.height);
        addRectangle(m_cairo.get(), {x, y, width, height});
        cairo_clip(m_cairo.get());
    }
    setColor(style.color);
    double start = textStart(box, line.width(), style.alignment, m_isRightToLeft);
    line.draw(m_cairo.get(), std::round(start), std::round(baseline));
    cairo_restore(m_cairo.get());
    cairo_new_path(m_cairo.get());
}

/// Fonts and icons are kept for each size, so those of all sizes on the way to another are not
/// made.
template <typename Draw> void CairoCanvas::drawMagnified(const Rect& points, Draw draw)
{
    auto pixels = toPixels(points);
    if (!isMagnified())
        return draw(pixels);
    cairo_save(m_cairo.get());
    cairo_translate(m_cairo.get(), pixels.x, pixels.y);
    cairo_scale(m_cairo.get(), m_transform.factor, m_transform.factor);
    draw(Rect{0, 0, points.width * m_scale, points.height * m_scale});
    cairo_restore(m_cairo.get());
}

void CairoCanvas::drawSymbol(Symbol symbol, const Rect& rect, const Color& color)
{
    setColor(color);
    paintSymbol(m_cairo.get(), symbol, toPixels(rect));
}

void CairoCanvas::beginDamage(const Rect& points, const Color& ground)
{
    save();
    clip(points);
    setColor(ground);
    cairo_set_operator(m_cairo.get(), CAIRO_OPERATOR_SOURCE);
    cairo_paint(m_cairo.get());
    cairo_set_operator(m_cairo.get(), CAIRO_OPERATOR_OVER);
}

void CairoCanvas::endDamage()
{
    while (!m_opacities.empty())
        endOpacity();
    while (!m_saved.empty())
        restore();
}

Point CairoCanvas::toPixels(Point point) const
{
    auto& [origin, factor] = m_transform;
    return {(point.x * factor + origin.x) * m_scale, (point.y * factor + origin.y) * m_scale};
}

Rect CairoCanvas::toPixels(const Rect& points) const
{
    double factor = pixelsPerPoint();
    return Rect::from(toPixels(points.origin()), {points.width * factor, points.height * factor});
}

Rect CairoCanvas::toWholePixels(const Rect& points) const
{
    auto pixels = toPixels(points);
    if (isMagnified())
        return pixels;
    auto [x, width] = snapped(pixels.x, pixels.width);
    auto [y, height] = snapped(pixels.y, pixels.height);
    return {x, y, width, height};
}

void CairoCanvas::setColor(const Color& color)
{
    cairo_set_source_rgba(m_cairo.get(), color.red, color.green, color.blue, color.alpha);
}

}
