#include "Hosts/MacOS/CoreGraphicsCanvas.h"

#include "Hosts/MacOS/Conversions.h"
#include "Hosts/MacOS/MacImage.h"

namespace quorvel {

namespace {

/// The system asserts that twice the radius fits.
CFRef<CGPathRef> makeRoundedPath(const Rect& rect, double radius)
{
    const double most = std::min(rect.width, rect.height) / 2;
    const double corner = std::clamp(radius, 0.0, std::max(most, 0.0));
    return CFRef<CGPathRef>::adopt(
        CGPathCreateWithRoundedRect(toSystem(rect), corner, corner, nullptr));
}

CFRef<CGGradientRef> makeGradient(const std::vector<GradientStop>& stops)
{
    NSMutableArray* colors = [NSMutableArray arrayWithCapacity:stops.size()];
    std::vector<CGFloat> positions;
    for (const GradientStop& stop : stops) {
        [colors addObject:(__bridge id)toSystem(stop.color).get()];
        positions.push_back(stop.position);
    }
    const auto space = CFRef<CGColorSpaceRef>::adopt(CGColorSpaceCreateWithName(kCGColorSpaceSRGB));
    return CFRef<CGGradientRef>::adopt(
        CGGradientCreateWithColors(space.get(), (__bridge CFArrayRef)colors, positions.data()));
}

struct GradientLine {
    CGPoint start;
    CGPoint end;
};

GradientLine gradientLine(const Rect& rect, GradientDirection direction, LayoutDirection interface)
{
    if (direction == GradientDirection::topToBottom)
        return {CGPointMake(rect.x, rect.y), CGPointMake(rect.x, rect.maxY())};
    const CGPoint left = CGPointMake(rect.x, rect.y);
    const CGPoint right = CGPointMake(rect.maxX(), rect.y);
    return interface == LayoutDirection::rightToLeft ? GradientLine{right, left}
                                                     : GradientLine{left, right};
}

NSString* symbolName(Symbol symbol)
{
    switch (symbol) {
    case Symbol::menuGrid:
        return @"square.grid.2x2";
    case Symbol::close:
        return @"xmark";
    case Symbol::chevronLeft:
        return @"chevron.left";
    case Symbol::chevronRight:
        return @"chevron.right";
    case Symbol::chevronUp:
        return @"chevron.up";
    case Symbol::showDesktop:
        return @"macwindow";
    case Symbol::checkmark:
        return @"checkmark";
    case Symbol::magnifyingGlass:
        return @"magnifyingglass";
    case Symbol::clear:
        return @"xmark.circle.fill";
    case Symbol::appDashed:
        return @"app.dashed";
    case Symbol::lockShield:
        return @"lock.shield";
    case Symbol::figureStand:
        return @"figure.stand";
    case Symbol::display:
        return @"display";
    case Symbol::checkmarkCircle:
        return @"checkmark.circle.fill";
    }
    return @"questionmark";
}

NSImage* makeSymbol(Symbol symbol, double height, const Color& color)
{
    NSColor* tint = [NSColor colorWithSRGBRed:color.red
                                        green:color.green
                                         blue:color.blue
                                        alpha:color.alpha];
    NSImageSymbolConfiguration* size =
        [NSImageSymbolConfiguration configurationWithPointSize:height weight:NSFontWeightRegular];
    NSImageSymbolConfiguration* style =
        [size configurationByApplyingConfiguration:[NSImageSymbolConfiguration
                                                       configurationWithPaletteColors:@[ tint ]]];
    return [[NSImage imageWithSystemSymbolName:symbolName(symbol)
                      accessibilityDescription:nil] imageWithSymbolConfiguration:style];
}

void drawInCurrentContext(NSImage* image, const Rect& rect)
{
    [image drawInRect:toSystem(rect)
              fromRect:NSZeroRect
             operation:NSCompositingOperationSourceOver
              fraction:1
        respectFlipped:YES
                 hints:@{
                     NSImageHintInterpolation : @(NSImageInterpolationHigh)
                 }];
}

}

void CoreGraphicsCanvas::save() { CGContextSaveGState(m_context); }

void CoreGraphicsCanvas::restore() { CGContextRestoreGState(m_context); }

void CoreGraphicsCanvas::translate(double dx, double dy)
{
    CGContextTranslateCTM(m_context, dx, dy);
}

void CoreGraphicsCanvas::magnify(double factor, Point about)
{
    CGContextTranslateCTM(m_context, about.x, about.y);
    CGContextScaleCTM(m_context, factor, factor);
    CGContextTranslateCTM(m_context, -about.x, -about.y);
}

void CoreGraphicsCanvas::clip(const Rect& rect) { CGContextClipToRect(m_context, toSystem(rect)); }

void CoreGraphicsCanvas::clipRounded(const Rect& rect, double radius)
{
    CGContextAddPath(m_context, makeRoundedPath(rect, radius).get());
    CGContextClip(m_context);
}

void CoreGraphicsCanvas::beginOpacity(double opacity)
{
    CGContextSaveGState(m_context);
    CGContextSetAlpha(m_context, opacity);
    CGContextBeginTransparencyLayer(m_context, nullptr);
}

void CoreGraphicsCanvas::endOpacity()
{
    CGContextEndTransparencyLayer(m_context);
    CGContextRestoreGState(m_context);
}

void CoreGraphicsCanvas::fill(const Rect& rect, const Color& color)
{
    CGContextSetFillColorWithColor(m_context, toSystem(color).get());
    CGContextFillRect(m_context, toSystem(rect));
}

void CoreGraphicsCanvas::fillRounded(const Rect& rect, double radius, const Color& color)
{
    if (rect.isEmpty())
        return;
    CGContextSetFillColorWithColor(m_context, toSystem(color).get());
    CGContextAddPath(m_context, makeRoundedPath(rect, radius).get());
    CGContextFillPath(m_context);
}

void CoreGraphicsCanvas::strokeRounded(
    const Rect& rect, double radius, double width, const Color& color)
{
    const Rect middle = rect.inset(width / 2, width / 2);
    if (middle.isEmpty())
        return;
    CGContextSetStrokeColorWithColor(m_context, toSystem(color).get());
    CGContextSetLineWidth(m_context, width);
    CGContextAddPath(m_context, makeRoundedPath(middle, radius - width / 2).get());
    CGContextStrokePath(m_context);
}

void CoreGraphicsCanvas::fillPolygon(const std::vector<Point>& corners, const Color& color)
{
    if (corners.empty())
        return;
    CGContextSetFillColorWithColor(m_context, toSystem(color).get());
    CGContextMoveToPoint(m_context, corners.front().x, corners.front().y);
    for (const Point& corner : corners)
        CGContextAddLineToPoint(m_context, corner.x, corner.y);
    CGContextFillPath(m_context);
}

void CoreGraphicsCanvas::fillGradient(
    const Rect& rect, GradientDirection direction, const std::vector<GradientStop>& stops)
{
    const auto gradient = makeGradient(stops);
    if (!gradient)
        return;
    const GradientLine line = gradientLine(rect, direction, m_direction);
    CGContextSaveGState(m_context);
    CGContextClipToRect(m_context, toSystem(rect));
    CGContextDrawLinearGradient(m_context, gradient.get(), line.start, line.end,
        kCGGradientDrawsBeforeStartLocation | kCGGradientDrawsAfterEndLocation);
    CGContextRestoreGState(m_context);
}

void CoreGraphicsCanvas::drawImage(const Image& image, const Rect& rect)
{
    if (const auto* picture = dynamic_cast<const MacImage*>(image.get()))
        drawInCurrentContext(picture->image, rect);
}

void CoreGraphicsCanvas::drawText(std::string_view utf8, const Rect& rect, const TextStyle& style)
{
    TextLine{utf8, style}.draw(m_context, rect, m_direction);
}

void CoreGraphicsCanvas::drawSymbol(Symbol symbol, const Rect& rect, const Color& color)
{
    NSImage* image = makeSymbol(symbol, rect.height, color);
    if (!image || image.size.width <= 0 || image.size.height <= 0)
        return;
    const double ratio = std::min(rect.width / image.size.width, rect.height / image.size.height);
    drawInCurrentContext(
        image, rect.centred({image.size.width * ratio, image.size.height * ratio}));
}

}
