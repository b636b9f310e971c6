#include "Hosts/MacOS/TextLine.h"

#include <algorithm>
#include <cmath>
#include <map>

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
        (__bridge id)kCTFontAttributeName : interfaceFont(style),
        (__bridge id)kCTForegroundColorAttributeName : (__bridge id)color.get(),
    };
    NSAttributedString* attributed = [[NSAttributedString alloc] initWithString:text
                                                                     attributes:attributes];
    return CFRef<CTLineRef>::adopt(
        CTLineCreateWithAttributedString((__bridge CFAttributedStringRef)attributed));
}

/// Of valid UTF-8: beyond the first plane two units, else one.
CFIndex utf16Length(std::string_view utf8)
{
    CFIndex length = 0;
    for (const char byte : utf8) {
        const auto value = static_cast<unsigned char>(byte);
        length += (value & 0xC0) == 0x80 ? 0 : value >= 0xF0 ? 2 : 1;
    }
    return length;
}

/// Where the edges of characters are, by their index in UTF-16.
struct CaretEdges {
    std::map<CFIndex, double> leading;
    std::map<CFIndex, double> trailing;

    explicit CaretEdges(CTLineRef line)
    {
        CTLineEnumerateCaretOffsets(line, ^(double offset, CFIndex index, bool isLeading, bool*) {
            (isLeading ? leading : trailing)[index] = offset;
        });
    }
    std::optional<double> leadingOf(CFIndex index) const
    {
        const auto found = leading.find(index);
        return found == leading.end() ? std::nullopt : std::optional{found->second};
    }
    /// Of what begins there and ends before the other index.
    std::optional<double> trailingOf(CFIndex start, CFIndex end) const
    {
        const auto past = trailing.lower_bound(end);
        if (past == trailing.begin() || std::prev(past)->first < start)
            return std::nullopt;
        return std::prev(past)->second;
    }
};

}

NSFont* interfaceFont(const TextStyle& style)
{
    return [NSFont systemFontOfSize:style.size weight:toSystem(style.weight)];
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

LineLayout TextLine::layout(std::string_view utf8, const std::vector<std::size_t>& ends) const
{
    LineLayout line;
    line.width = m_width;
    if (!m_line)
        return line;
    const CaretEdges edges{m_line.get()};
    const auto offset = [&](CFIndex index) {
        return CTLineGetOffsetForStringIndex(m_line.get(), index, nullptr);
    };
    CFIndex index = 0;
    std::size_t start = 0;
    for (const auto end : ends) {
        const CFIndex next = index + utf16Length(utf8.substr(start, end - start));
        const double from = edges.leadingOf(index).value_or(offset(index));
        const double to = edges.trailingOf(index, next).value_or(offset(next));
        line.characters.push_back({start, end, std::min(from, to), std::max(from, to), from > to});
        start = end;
        index = next;
    }
    line.isRightToLeft = !line.characters.empty() && line.characters.front().isRightToLeft;
    return line;
}

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

LineLayout CoreTextText::lineLayout(std::string_view utf8, const TextStyle& style) const
{
    return TextLine{utf8, style}.layout(utf8, characterEnds(utf8));
}

}
