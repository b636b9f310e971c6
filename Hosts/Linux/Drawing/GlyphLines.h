#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Hosts/Linux/Drawing/CairoHandles.h"
#include "Quorvel/Platform/Canvas.h"

namespace quorvel::xdg {

using PangoGlyphs = std::unique_ptr<PangoGlyphString, FreeWith<pango_glyph_string_free>>;

/// Shaped letters of one font.
struct GlyphRun {
    explicit GlyphRun(const PangoGlyphItem&);
    GlyphRun(GObjectHandle<PangoFont>, PangoGlyphs);

    GObjectHandle<PangoFont> font; ///< null if the system has none
    PangoGlyphs glyphs;
    int width; ///< in Pango's units, as everything here
};

/// A line of one run that is read from left to right: it can be cut off without shaping it anew.
class GlyphLine {
public:
    /// How much of the line is left in front of an ellipsis.
    struct Cut {
        int glyphs = 0;
        int width = 0;
    };

    /// None if the text is of another kind: a PangoLayout has to lay it out. The font is the
    /// context's.
    static std::optional<GlyphLine> of(std::string_view text, PangoContext*);

    const GlyphRun& run() const { return m_run; }
    /// Where Pango itself would cut it off.
    Cut cutFor(int width, const GlyphRun& ellipsis) const;

private:
    explicit GlyphLine(GlyphRun run) : m_run(std::move(run)) { }
    void findCuts(std::string_view text, const PangoAnalysis&);

    GlyphRun m_run;
    std::vector<Cut> m_cuts; ///< all that there can be, the shortest first
};

/// The latest lines: a bar draws the same titles again and again, and in another width whenever
/// a window comes or goes. Main thread.
class GlyphLines {
public:
    struct Entry {
        std::size_t hash = 0;
        std::string text;
        double pixels = 0; ///< the font's size
        FontWeight weight = FontWeight::regular;
        std::optional<GlyphLine> line; ///< none: Pango has to shape it for each width
    };

    /// Null if it is not known. Valid until the next call of `add`.
    const Entry* find(std::string_view text, double pixels, FontWeight) const;
    const Entry* add(Entry);
    void clear();

private:
    std::vector<Entry> m_entries;
    std::size_t m_oldest = 0;
};

}
