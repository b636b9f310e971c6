#pragma once

#include <vector>

#include "Hosts/X11/Surface/CairoHandles.h"
#include "Quorvel/Platform/Canvas.h"

namespace quorvel::x11 {

class TextShaper;

/// Draws into a cairo surface of device pixels. Edges of rectangles lie on whole pixels at any
/// scale, so that lines and gaps are equally sharp everywhere.
class CairoCanvas final : public Canvas {
public:
    CairoCanvas(cairo_surface_t*, double scale, TextShaper&, bool isRightToLeft = false);
    ~CairoCanvas() override;

    double scale() const override { return m_scale; }

    void save() override;
    void restore() override;
    void translate(double dx, double dy) override;
    void clip(const Rect&) override;
    void beginOpacity(double opacity) override;
    void endOpacity() override;

    void fill(const Rect&, const Color&) override;
    void fillRounded(const Rect&, double radius, const Color&) override;
    void strokeRounded(const Rect&, double radius, double width, const Color&) override;
    void fillGradient(const Rect&, GradientDirection, const std::vector<GradientStop>&) override;
    void drawImage(const Image&, const Rect&) override;
    void drawText(std::string_view utf8, const Rect&, const TextStyle&) override;
    void drawSymbol(Symbol, const Rect&, const Color&) override;

    /// Makes the part of the surface transparent and confines what follows to it.
    void beginDamage(const Rect& points);
    void endDamage();

private:
    /// What in points lies where on the surface.
    Rect toPixels(const Rect& points) const;
    /// The same on whole pixels; what has a size keeps at least one.
    Rect toWholePixels(const Rect& points) const;
    void setColor(const Color&);

    const double m_scale;
    TextShaper& m_shaper;
    const bool m_isRightToLeft;
    Cairo m_cairo; ///< in device pixels; the origin in points is kept here
    Point m_origin;
    std::vector<Point> m_savedOrigins;
    std::vector<double> m_opacities;
};

}
