#include "Hosts/Linux/Drawing/TextShaper.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

#include <hb.h>
#include <pango/pangocairo.h>

#include "Hosts/Linux/Drawing/DisplayText.h"

namespace quorvel::xdg {

namespace {

constexpr std::size_t kLongestMeasuredText = 1000;
constexpr std::size_t kMostFonts = 24;
constexpr const char* kAnyFamily = "Sans";
/// Narrower than any letter is on average, in parts of the font's size.
constexpr double kNarrowestLetter = 0.2;
constexpr std::size_t kSpareLetters = 32;

PangoWeight pangoWeight(FontWeight weight)
{
    switch (weight) {
    case FontWeight::regular:
        return PANGO_WEIGHT_NORMAL;
    case FontWeight::medium:
        return PANGO_WEIGHT_MEDIUM;
    case FontWeight::semibold:
        return PANGO_WEIGHT_SEMIBOLD;
    }
    return PANGO_WEIGHT_NORMAL;
}

/// The one in the locale C is none: Pango would find fonts for it, and for each text those of the
/// language that its script suggests.
PangoLanguage* userLanguage()
{
    auto* language = pango_language_get_default();
    std::string_view name = pango_language_to_string(language);
    return name == "c" || name == "posix" ? pango_language_from_string("en") : language;
}

/// Of the fonts that Pango takes for the user's language, as pango_context_get_metrics tells them.
/// That also lays a sample out to learn how wide letters are, which takes a tenth of the way to the
/// first title.
LineMetrics lineMetrics(PangoContext* context, const PangoFontDescription* description)
{
    auto* language = pango_context_get_language(context);
    GObjectHandle<PangoFontset> fonts{pango_font_map_load_fontset(
        pango_context_get_font_map(context), context, description, language)};
    int ascent = 0;
    int descent = 0;
    const char* sample = pango_language_get_sample_string(language);
    for (; fonts && *sample; sample = g_utf8_next_char(sample)) {
        GObjectHandle<PangoFont> font{pango_fontset_get_font(fonts.get(), g_utf8_get_char(sample))};
        hb_font_extents_t extents{};
        if (font)
            hb_font_get_extents_for_direction(
                pango_font_get_hb_font(font.get()), HB_DIRECTION_LTR, &extents);
        ascent = std::max(ascent, extents.ascender);
        descent = std::max(descent, -extents.descender);
    }
    return {static_cast<double>(PANGO_PIXELS_CEIL(ascent)),
        static_cast<double>(PANGO_PIXELS_CEIL(descent))};
}

constexpr int kNoLimit = -1;

/// As much of the text as can be seen: shaping a title of a megabyte would stop the bar. In steps,
/// so that widths that are nearly the same share one line.
std::size_t longestVisibleText(double pixels, double maximumWidth)
{
    if (maximumWidth < 0)
        return kLongestMeasuredText;
    auto letters = std::min(maximumWidth / (kNarrowestLetter * std::max(pixels, 1.0)),
        static_cast<double>(kLongestMeasuredText));
    return std::min(
        std::bit_ceil(kSpareLetters + static_cast<std::size_t>(letters)), kLongestMeasuredText);
}

int widthOf(PangoLayoutLine* line)
{
    PangoRectangle logical{};
    pango_layout_line_get_extents(line, nullptr, &logical);
    return logical.width;
}

/// Of a code point, in pixels from the left end of its line.
struct Place {
    double left = 0;
    double right = 0;
    bool isRightToLeft = false;
};

/// Of the code points of a run that begins at `x`.
void placeRun(PangoGlyphItem* run, int x, std::string_view utf8, std::vector<Place>& places)
{
    auto* item = run->item;
    std::vector<int> widths(static_cast<std::size_t>(item->num_chars));
    pango_glyph_item_get_logical_widths(run, utf8.data(), widths.data());
    bool isRightToLeft = item->analysis.level % 2 == 1;
    int from = isRightToLeft ? x + pango_glyph_string_get_width(run->glyphs) : x;
    auto at = static_cast<std::size_t>(item->offset);
    for (auto width : widths) {
        int to = isRightToLeft ? from - width : from + width;
        auto [left, right] = std::minmax({from, to});
        auto* next = g_utf8_next_char(utf8.data() + at);
        auto bytes = static_cast<std::size_t>(next - utf8.data()) - at;
        std::fill_n(places.begin() + static_cast<std::ptrdiff_t>(at), bytes,
            Place{static_cast<double>(left) / PANGO_SCALE, static_cast<double>(right) / PANGO_SCALE,
                isRightToLeft});
        at += bytes;
        from = to;
    }
}

/// By the byte; the text is the one that the line was made of.
std::vector<Place> placesOf(const PangoLayoutLine* line, std::string_view utf8)
{
    std::vector<Place> places(utf8.size());
    int x = 0;
    for (auto* link = line->runs; link; link = link->next) {
        auto* run = static_cast<PangoGlyphItem*>(link->data);
        placeRun(run, x, utf8, places);
        x += pango_glyph_string_get_width(run->glyphs);
    }
    return places;
}

}

TextShaper::TextShaper()
    : m_family(kAnyFamily)
    , m_context(pango_font_map_create_context(pango_cairo_font_map_get_default()))
    , m_layout(pango_layout_new(m_context.get()))
{
    pango_layout_set_single_paragraph_mode(m_layout.get(), true);
    pango_layout_set_auto_dir(m_layout.get(), true);
    pango_context_set_language(m_context.get(), userLanguage());
}

void TextShaper::beginReadingFonts()
{
    pango_cairo_font_map_get_default();
}

void TextShaper::setFont(const std::string& description)
{
    PangoFontHandle font{pango_font_description_from_string(description.c_str())};
    const char* family = pango_font_description_get_family(font.get());
    std::string wanted = family && *family ? family : kAnyFamily;
    if (std::exchange(m_family, wanted) == wanted)
        return;
    m_fonts.clear();
    m_lines.clear();
    m_current = nullptr;
}

TextShaper::Font& TextShaper::font(double pixels, FontWeight weight)
{
    for (auto& font : m_fonts) {
        if (font.pixels == pixels && font.weight == weight)
            return font;
    }
    if (m_fonts.size() >= kMostFonts)
        m_fonts.clear();
    m_fonts.reserve(kMostFonts);
    m_current = nullptr;

    PangoFontHandle description{pango_font_description_new()};
    pango_font_description_set_family(description.get(), m_family.c_str());
    pango_font_description_set_weight(description.get(), pangoWeight(weight));
    pango_font_description_set_absolute_size(description.get(), pixels * PANGO_SCALE);
    auto line = lineMetrics(m_context.get(), description.get());
    return m_fonts.emplace_back(Font{pixels, weight, std::move(description), line, {}});
}

LineMetrics TextShaper::metrics(double size, FontWeight weight, double scale)
{
    return font(size * scale, weight).metrics;
}

PangoLayoutLine* TextShaper::layOut(const std::string& line, const Font& font, int width)
{
    auto* layout = m_layout.get();
    if (m_current != &font)
        pango_layout_set_font_description(layout, font.description.get());
    m_current = &font;
    pango_layout_set_ellipsize(
        layout, width == kNoLimit ? PANGO_ELLIPSIZE_NONE : PANGO_ELLIPSIZE_END);
    pango_layout_set_width(layout, width);
    pango_layout_set_text(layout, line.data(), static_cast<int>(line.size()));
    return pango_layout_get_line_readonly(layout, 0);
}

/// As Pango makes it, of a text that has no room at all.
const GlyphRun& TextShaper::ellipsis(Font& font)
{
    if (!font.ellipsis) {
        auto* line = layOut("mm", font, 0);
        font.ellipsis.emplace(*static_cast<PangoGlyphItem*>(line->runs->data));
    }
    return *font.ellipsis;
}

const GlyphLines::Entry& TextShaper::lineOf(std::string text, const Font& font)
{
    auto* known = m_lines.find(text, font.pixels, font.weight);
    if (!known) {
        pango_context_set_font_description(m_context.get(), font.description.get());
        auto line = GlyphLine::of(text, m_context.get());
        known = m_lines.add({.text = std::move(text),
            .pixels = font.pixels,
            .weight = font.weight,
            .line = std::move(line)});
    }
    return *known;
}

ShapedLine TextShaper::shape(
    std::string_view text, const TextStyle& style, double scale, double maximumWidth)
{
    auto& chosen = font(style.size * scale, style.weight);
    auto& entry
        = lineOf(displayText(text, longestVisibleText(chosen.pixels, maximumWidth)), chosen);
    // Rounded up with a little to spare, or a text in its own measured width loses its end.
    int width = style.elide == Elide::tail && maximumWidth >= 0
        ? static_cast<int>(std::ceil(maximumWidth - 0.01)) * PANGO_SCALE
        : kNoLimit;
    if (!entry.line)
        return ShapedLine{layOut(entry.text, chosen, width)};
    auto& run = entry.line->run();
    if (width == kNoLimit || run.width <= width)
        return ShapedLine{run};
    auto& end = ellipsis(chosen);
    return {run, entry.line->cutFor(width, end), end, width};
}

PangoLayoutLine* TextShaper::layOut(std::string_view text, const TextStyle& style, double scale)
{
    return layOut(
        displayText(text, kLongestMeasuredText), font(style.size * scale, style.weight), kNoLimit);
}

ShapedLine::ShapedLine(PangoLayoutLine* line) : m_width(widthOf(line)), m_line(line)
{
}

ShapedLine::ShapedLine(const GlyphRun& run)
    : m_width(run.width)
    , m_run(&run)
    , m_cut(run.glyphs->num_glyphs, run.width)
{
}

ShapedLine::ShapedLine(const GlyphRun& run, GlyphLine::Cut cut, const GlyphRun& ellipsis, int width)
    : m_width(std::max(width, cut.width + ellipsis.width))
    , m_run(&run)
    , m_cut(cut)
    , m_ellipsis(&ellipsis)
{
}

double ShapedLine::width() const
{
    return static_cast<double>(m_width) / PANGO_SCALE;
}

void ShapedLine::draw(cairo_t* cairo, double x, double baseline) const
{
    cairo_move_to(cairo, x, baseline);
    if (m_line)
        return pango_cairo_show_layout_line(cairo, m_line);
    auto shown = *m_run->glyphs; // the glyphs themselves stay where they are
    shown.num_glyphs = m_cut.glyphs;
    pango_cairo_show_glyph_string(cairo, m_run->font.get(), &shown);
    if (!m_ellipsis || !m_ellipsis->font)
        return;
    cairo_move_to(cairo, x + static_cast<double>(m_cut.width) / PANGO_SCALE, baseline);
    pango_cairo_show_glyph_string(cairo, m_ellipsis->font.get(), m_ellipsis->glyphs.get());
}

Size PangoText::measure(std::string_view utf8, const TextStyle& style) const
{
    auto line = m_shaper.shape(utf8, style, m_scale);
    auto metrics = m_shaper.metrics(style.size, style.weight, m_scale);
    return {std::ceil(line.width()) / m_scale, std::ceil(metrics.height()) / m_scale};
}

LineLayout PangoText::lineLayout(std::string_view utf8, const TextStyle& style) const
{
    auto* shaped = m_shaper.layOut(utf8, style, m_scale);
    LineLayout line;
    line.width = static_cast<double>(widthOf(shaped)) / PANGO_SCALE / m_scale;
    line.isRightToLeft = pango_layout_line_get_resolved_direction(shaped) == PANGO_DIRECTION_RTL;
    if (pango_layout_get_text(shaped->layout) != utf8)
        return line; // other bytes are drawn than these
    auto places = placesOf(shaped, utf8);
    std::size_t start = 0;
    for (auto end : characterEnds(utf8)) {
        CharacterBox box{
            start, end, places[start].left, places[start].right, places[start].isRightToLeft};
        for (auto i = start; i < end; ++i) { // the bytes of one code point share its place
            box.left = std::min(box.left, places[i].left);
            box.right = std::max(box.right, places[i].right);
        }
        box.left /= m_scale;
        box.right /= m_scale;
        line.characters.push_back(box);
        start = end;
    }
    return line;
}

}
