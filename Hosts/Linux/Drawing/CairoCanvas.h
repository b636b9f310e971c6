#pragma once

#include <vector>

#include "Hosts/Linux/Drawing/CairoHandles.h"
#include "Quorvel/Platform/Canvas.h"

namespace quorvel::xdg {

struct CanvasTools;
struct IconImage;

/// Draws into a cairo surface of device pixels. Edges of rectangles are aligned to whole pixels at
/// any scale, so that lines and gaps are equally sharp everywhere.
class CairoCanvas final : public Canvas {
public:
    CairoCanvas(cairo_surface_t*, double scale, CanvasTools&, bool isRightToLeft = false);
    ~CairoCanvas() override;

    double scale() const override { return m_scale; }

    void save() override;
    void restore() override;
    void translate(double dx, double dy) override;
    void magnify(double factor, Point about) override;
    void clip(const Rect&) override;
    void clipRounded(const Rect&, double radius) override;
    void beginOpacity(double opacity) override;
    void endOpacity() override;

    void fill(const Rect&, const Color&) override;
    void fillRounded(const Rect&, double radius, const Color&) override;
    void strokeRounded(const Rect&, double radius, double width, const Color&) override;
    void fillPolygon(const std::vector<Point>&, const Color&) override;
    void fillGradient(const Rect&, GradientDirection, const std::vector<GradientStop>&) override;
    void drawImage(const Image&, const Rect&) override;
    void drawText(std::string_view utf8, const Rect&, const TextStyle&) override;
    void drawSymbol(Symbol, const Rect&, const Color&) override;

    /// Gives this part of the surface the colour, or makes it transparent, and clips further
    /// drawing to it.
    void beginDamage(const Rect& points, const Color& ground = Color::grey(0, 0));
    void endDamage();

private:
    /// How points map to the surface at the moment.
    struct Transform {
        Point origin; ///< in points of the surface
        double factor = 1;
    };

    bool isMagnified() const { return m_transform.factor != 1; }
    double pixelsPerPoint() const { return m_scale * m_transform.factor; }
    Point toPixels(Point) const;
    Rect toPixels(const Rect& points) const;
    /// The same, aligned to whole pixels; anything with a size keeps at least one. Magnified
    /// drawing is not aligned: it is on its way from one size to another and would stutter.
    Rect toWholePixels(const Rect& points) const;
    /// Draws in device pixels of the usual size, with the rectangle's corner as the origin.
    template <typename Draw> void drawMagnified(const Rect& points, Draw draw);
    /// Of a rounded rectangle, or of the line along its edge. Null if it has to be filled.
    cairo_surface_t* maskOf(const Rect& pixels, double radius, double line = 0);
    void drawIcon(const IconImage&, const Rect& pixels);
    void drawLine(std::string_view utf8, const Rect& pixels, const TextStyle&);
    void setColor(const Color&);

    const double m_scale;
    CanvasTools& m_tools;
    const bool m_isRightToLeft;
    Cairo m_cairo; ///< in device pixels; the mapping of points is kept here
    Transform m_transform;
    std::vector<Transform> m_saved;
    std::vector<double> m_opacities;
};

}
