#include "Hosts/MacOS/TextLine.h"

#include <cmath>

#include "Hosts/MacOS/Conversions.h"

namespace quorvel {

namespace {

NSFontWeight toSystem(FontWeight weight)
{
    switch (weight) {
    case FontWeight::regular:
        return NSFontWeightRegular;
    case FontWeight::medium:
        return NSFontWeightMedium;
    case FontWeight::semibold:
        return NSFontWeightSemibold;
    }
    return NSFontWeightRegular;
}

NSString* onOneLine(NSString* text)
{
    static NSCharacterSet* const breaks = [] {
        NSMutableCharacterSet* set = [NSMutableCharacterSet newlineCharacterSet];
        // Not all of controlCharacterSet: that holds the joiners of many scripts too.
        [set addCharactersInRange:NSMakeRange(0, 0x20)];
        [set addCharactersInRange:NSMakeRange(0x7f, 0x21)];
        return set;
    }();
    if ([text rangeOfCharacterFromSet:breaks].location == NSNotFound)
        return text;
    return [[text componentsSeparatedByCharactersInSet:breaks] componentsJoinedByString:@" "];
}

CFRef<CTLineRef> makeLine(NSString* text, const TextStyle& style)
{
    const auto color = toSystem(style.color);
    NSDictionary* attributes = @{
        (__bridge id)kCTFontAttributeName : [NSFont systemFontOfSize:style.size
                                                              weight:toSystem(style.weight)],
        (__bridge id)kCTForegroundColorAttributeName : (__bridge id)color.get(),
    };
    NSAttributedString* attributed = [[NSAttributedString alloc] initWithString:text
                                                                     attributes:attributes];
    return CFRef<CTLineRef>::adopt(
        CTLineCreateWithAttributedString((__bridge CFAttributedStringRef)attributed));
}

}

TextLine::TextLine(std::string_view utf8, const TextStyle& style)
    : m_style(style)
{
    NSString* text = toSystem(utf8);
    if (!text)
        return;
    m_line = makeLine(onOneLine(text), style);
    if (m_line)
        m_width = CTLineGetTypographicBounds(m_line.get(), &m_ascent, &m_descent, nullptr);
}

Size TextLine::size() const { return {m_width, m_ascent + m_descent}; }

void TextLine::draw(CGContextRef context, const Rect& rect, LayoutDirection direction) const
{
    const auto line = fitted(rect.width);
    if (!line)
        return;
    const double width = CTLineGetTypographicBounds(line.get(), nullptr, nullptr, nullptr);
    const double baseline = std::round(rect.centre().y + (m_ascent - m_descent) / 2);
    CGContextSaveGState(context);
    CGContextSetTextMatrix(context, CGAffineTransformMakeScale(1, -1));
    CGContextSetTextPosition(context, startX(rect, width, direction), baseline);
    CTLineDraw(line.get(), context);
    CGContextRestoreGState(context);
}

CFRef<CTLineRef> TextLine::fitted(double width) const
{
    if (!m_line || m_width <= width || m_style.elide == Elide::none)
        return m_line;
    const auto ellipsis = makeLine(@"\u2026", m_style);
    // Null where not even the ellipsis fits.
    return CFRef<CTLineRef>::adopt(
        CTLineCreateTruncatedLine(m_line.get(), width, kCTLineTruncationEnd, ellipsis.get()));
}

double TextLine::startX(const Rect& rect, double width, LayoutDirection direction) const
{
    const double room = rect.width - width;
    const bool isRightToLeft = direction == LayoutDirection::rightToLeft;
    const bool isAtRight = (m_style.alignment == TextAlignment::trailing) != isRightToLeft;
    if (m_style.alignment == TextAlignment::centre)
        return rect.x + room / 2;
    return isAtRight ? rect.x + room : rect.x;
}

Size CoreTextText::measure(std::string_view utf8, const TextStyle& style) const
{
    return TextLine{utf8, style}.size();
}

}
