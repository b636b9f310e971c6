#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "Hosts/Linux/Drawing/CairoHandles.h"
#include "Hosts/Linux/Unicode/UnicodeText.h"

namespace quorvel::xdg {

/// Heights of a font in pixels: of the font itself, not of a particular text.
struct LineMetrics {
    double ascent = 0;
    double descent = 0;

    double height() const { return ascent + descent; }
};

/// One shaped line; lives until the next call of the shaper.
struct ShapedLine {
    PangoLayoutLine* line = nullptr;
    double width = 0; ///< pixels
};

/// Shapes single lines with the interface font, through Pango. Main thread.
class TextShaper {
public:
    TextShaper();

    /// Lets a thread of Pango's read which fonts there are, which takes longer than all else that
    /// a bar needs before it can be painted. The first shaper waits for it.
    static void beginReadingFonts();

    /// A font description for Pango, of which only the family is used; empty: the system's own.
    void setFont(const std::string& description);
    LineMetrics metrics(double size, FontWeight, double scale);
    /// At most `maximumWidth` pixels wide if the style elides; negative: no limit.
    ShapedLine shape(
        std::string_view text, const TextStyle&, double scale, double maximumWidth = -1);

private:
    /// A font at one size in pixels, made once.
    struct Font {
        double pixels;
        FontWeight weight;
        PangoFontHandle description;
        LineMetrics metrics;
    };
    const Font& font(double pixels, FontWeight);

    std::string m_family;
    PangoContextHandle m_context;
    PangoLayoutHandle m_layout;
    std::vector<Font> m_fonts;
    const Font* m_current = nullptr;
};

/// Measures text for the views at the display's scale.
class PangoText final : public UnicodeText {
public:
    PangoText(TextShaper& shaper, const double& scale) : m_shaper(shaper), m_scale(scale) { }

    Size measure(std::string_view utf8, const TextStyle&) const override;
    LineLayout lineLayout(std::string_view utf8, const TextStyle&) const override;

private:
    TextShaper& m_shaper;
    const double& m_scale;
};

}
