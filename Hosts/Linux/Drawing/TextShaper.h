#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Hosts/Linux/Drawing/CairoHandles.h"
#include "Hosts/Linux/Drawing/GlyphLines.h"
#include "Hosts/Linux/Unicode/UnicodeText.h"

namespace quorvel::xdg {

/// Heights of a font in pixels: of the font itself, not of a particular text.
struct LineMetrics {
    double ascent = 0;
    double descent = 0;

    double height() const { return ascent + descent; }
};

/// One shaped line; lives until the shaper's next call of `shape` or `layOut`.
class ShapedLine {
public:
    explicit ShapedLine(PangoLayoutLine*);
    explicit ShapedLine(const GlyphRun&);
    /// Cut off: such a line fills the width, in Pango's units, that it was given.
    ShapedLine(const GlyphRun&, GlyphLine::Cut, const GlyphRun& ellipsis, int width);

    double width() const; ///< pixels
    /// From a place in pixels, with the source of the context.
    void draw(cairo_t*, double x, double baseline) const;

private:
    int m_width; ///< in Pango's units
    PangoLayoutLine* m_line = nullptr;
    const GlyphRun* m_run = nullptr; ///< in place of a line
    GlyphLine::Cut m_cut;
    const GlyphRun* m_ellipsis = nullptr;
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
    /// The whole line as Pango has it, to see where each letter lies. Lives until the next call.
    PangoLayoutLine* layOut(std::string_view text, const TextStyle&, double scale);

private:
    /// A font at one size in pixels, made once.
    struct Font {
        double pixels;
        FontWeight weight;
        PangoFontHandle description;
        LineMetrics metrics;
        std::optional<GlyphRun> ellipsis; ///< made when it is first needed
    };
    Font& font(double pixels, FontWeight);
    PangoLayoutLine* layOut(const std::string& line, const Font&, int width);
    const GlyphRun& ellipsis(Font&);
    const GlyphLines::Entry& lineOf(std::string text, const Font&);

    std::string m_family;
    PangoContextHandle m_context;
    PangoLayoutHandle m_layout;
    std::vector<Font> m_fonts;
    const Font* m_current = nullptr;
    GlyphLines m_lines;
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
