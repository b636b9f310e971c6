#pragma once

#include <string_view>

#include "Hosts/MacOS/Cocoa.h"
#include "Hosts/MacOS/System/CFRef.h"
#include "Hosts/MacOS/System/CFText.h"

namespace quorvel {

/// Of the interface: it decides which side `leading` is.
enum class LayoutDirection { leftToRight, rightToLeft };

/// Of a style.
NSFont* interfaceFont(const TextStyle&);

/// One shaped line of text in a style; line breaks and controls become spaces.
class TextLine {
public:
    TextLine(std::string_view utf8, const TextStyle&);

    Size size() const;
    /// The text that it was made of, of which this is where each character ends.
    LineLayout layout(std::string_view utf8, const std::vector<std::size_t>& ends) const;
    /// Draws it centred vertically in the rectangle. The context's y grows downwards.
    void draw(CGContextRef, const Rect&, LayoutDirection) const;

private:
    CFRef<CTLineRef> fitted(double width) const;
    double startX(const Rect&, double width, LayoutDirection) const;

    TextStyle m_style;
    CFRef<CTLineRef> m_line;
    double m_width = 0;
    CGFloat m_ascent = 0;
    CGFloat m_descent = 0;
};

/// Measures what the canvas draws.
class CoreTextText final : public CFText {
public:
    Size measure(std::string_view utf8, const TextStyle&) const override;
    LineLayout lineLayout(std::string_view utf8, const TextStyle&) const override;
};

}
