#include "Hosts/Linux/Drawing/TextShaper.h"

#include <algorithm>
#include <cmath>
#include <utility>

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

/// As much of the text as can be seen: shaping a title of a megabyte would stop the bar.
std::size_t longestVisibleText(double pixels, double maximumWidth)
{
    if (maximumWidth < 0)
        return kLongestMeasuredText;
    auto letters = std::min(maximumWidth / (kNarrowestLetter * std::max(pixels, 1.0)),
        static_cast<double>(kLongestMeasuredText));
    return kSpareLetters + static_cast<std::size_t>(letters);
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
    m_current = nullptr;
}

const TextShaper::Font& TextShaper::font(double pixels, FontWeight weight)
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
    PangoMetricsHandle metrics{
        pango_context_get_metrics(m_context.get(), description.get(), nullptr)};
    LineMetrics line{
        static_cast<double>(pango_font_metrics_get_ascent(metrics.get())) / PANGO_SCALE,
        static_cast<double>(pango_font_metrics_get_descent(metrics.get())) / PANGO_SCALE};
    return m_fonts.emplace_back(Font{pixels, weight, std::move(description), line});
}

LineMetrics TextShaper::metrics(double size, FontWeight weight, double scale)
{
    return font(size * scale, weight).metrics;
}

ShapedLine TextShaper::shape(
    std::string_view text, const TextStyle& style, double scale, double maximumWidth)
{
    auto& chosen = font(style.size * scale, style.weight);
    auto line = displayText(text, longestVisibleText(chosen.pixels, maximumWidth));
    bool isElided = style.elide == Elide::tail && maximumWidth >= 0;

    auto* layout = m_layout.get();
    if (m_current != &chosen)
        pango_layout_set_font_description(layout, chosen.description.get());
    m_current = &chosen;
    pango_layout_set_ellipsize(layout, isElided ? PANGO_ELLIPSIZE_END : PANGO_ELLIPSIZE_NONE);
    // Rounded up with a little to spare, or a text in its own measured width loses its end.
    pango_layout_set_width(
        layout, isElided ? static_cast<int>(std::ceil(maximumWidth - 0.01)) * PANGO_SCALE : -1);
    pango_layout_set_text(layout, line.data(), static_cast<int>(line.size()));

    ShapedLine shaped;
    shaped.line = pango_layout_get_line_readonly(layout, 0);
    PangoRectangle logical{};
    pango_layout_line_get_extents(shaped.line, nullptr, &logical);
    shaped.width = static_cast<double>(logical.width) / PANGO_SCALE;
    return shaped;
}

Size PangoText::measure(std::string_view utf8, const TextStyle& style) const
{
    auto line = m_shaper.shape(utf8, style, m_scale);
    auto metrics = m_shaper.metrics(style.size, style.weight, m_scale);
    return {std::ceil(line.width) / m_scale, std::ceil(metrics.height()) / m_scale};
}

LineLayout PangoText::lineLayout(std::string_view utf8, const TextStyle& style) const
{
    auto shaped = m_shaper.shape(utf8, style, m_scale);
    LineLayout line;
    line.width = shaped.width / m_scale;
    line.isRightToLeft
        = pango_layout_line_get_resolved_direction(shaped.line) == PANGO_DIRECTION_RTL;
    if (pango_layout_get_text(shaped.line->layout) != utf8)
        return line; // other bytes are drawn than these
    auto places = placesOf(shaped.line, utf8);
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
