#pragma once

#include "Hosts/MacOS/Cocoa.h"
#include "Hosts/MacOS/TextLine.h"
#include "Quorvel/Platform/Canvas.h"

namespace quorvel {

/// Draws in the current AppKit drawing context of a flipped view.
class CoreGraphicsCanvas final : public Canvas {
public:
    CoreGraphicsCanvas(CGContextRef context, double scale, LayoutDirection direction)
        : m_context(context)
        , m_scale(scale)
        , m_direction(direction)
    {
    }

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

private:
    CGContextRef m_context;
    double m_scale;
    LayoutDirection m_direction;
};

}
