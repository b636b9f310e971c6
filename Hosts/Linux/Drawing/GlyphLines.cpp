#include "Hosts/Linux/Drawing/GlyphLines.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace quorvel::xdg {

namespace {

/// More than are seen at once on a large screen; a kilobyte each, with a title of usual length.
constexpr std::size_t kMostLines = 128;
/// Nothing longer is kept: it would take ten times as much.
constexpr int kMostGlyphs = 256;

/// Whose ellipsis is another one.
bool hasWideLetter(std::string_view utf8)
{
    for (auto* at = utf8.data(); at < utf8.data() + utf8.size(); at = g_utf8_next_char(at)) {
        if (g_unichar_iswide(g_utf8_get_char(at)))
            return true;
    }
    return false;
}

void freeItems(GList* items)
{
    g_list_free_full(items, [](gpointer item) { pango_item_free(static_cast<PangoItem*>(item)); });
}
using PangoItems = std::unique_ptr<GList, FreeWith<freeItems>>;

/// Empty unless the text is one run that is read from left to right.
PangoItems onlyItem(std::string_view utf8, PangoContext* context)
{
    auto bytes = static_cast<int>(utf8.size());
    if (utf8.empty())
        return nullptr;
    PangoItems items{pango_itemize_with_base_dir(
        context, PANGO_DIRECTION_LTR, utf8.data(), 0, bytes, nullptr, nullptr)};
    if (!items || items->next)
        return nullptr;
    auto& analysis = static_cast<PangoItem*>(items->data)->analysis;
    return analysis.font && analysis.level == 0 ? std::move(items) : nullptr;
}

}

GlyphRun::GlyphRun(const PangoGlyphItem& item)
    : font(item.item->analysis.font ? PANGO_FONT(g_object_ref(item.item->analysis.font)) : nullptr)
    , glyphs(pango_glyph_string_copy(item.glyphs))
    , width(pango_glyph_string_get_width(item.glyphs))
{
}

GlyphRun::GlyphRun(GObjectHandle<PangoFont> font_, PangoGlyphs glyphs_)
    : font(std::move(font_))
    , glyphs(std::move(glyphs_))
    , width(pango_glyph_string_get_width(glyphs.get()))
{
}

std::optional<GlyphLine> GlyphLine::of(std::string_view text, PangoContext* context)
{
    if (hasWideLetter(text))
        return std::nullopt;
    auto items = onlyItem(text, context);
    if (!items)
        return std::nullopt;
    auto& analysis = static_cast<PangoItem*>(items->data)->analysis;
    auto bytes = static_cast<int>(text.size());
    PangoGlyphs glyphs{pango_glyph_string_new()};
    pango_shape_with_flags(text.data(), bytes, text.data(), bytes, &analysis, glyphs.get(),
        pango_context_get_round_glyph_positions(context) ? PANGO_SHAPE_ROUND_POSITIONS
                                                         : PANGO_SHAPE_NONE);
    if (glyphs->num_glyphs > kMostGlyphs)
        return std::nullopt;
    GObjectHandle<PangoFont> font{PANGO_FONT(g_object_ref(analysis.font))};
    GlyphLine line{{std::move(font), std::move(glyphs)}};
    line.findCuts(text, analysis);
    return line;
}

void GlyphLine::findCuts(std::string_view text, const PangoAnalysis& analysis)
{
    auto bytes = static_cast<int>(text.size());
    // One for each character, and one for the end.
    std::vector<PangoLogAttr> characters(
        static_cast<std::size_t>(g_utf8_strlen(text.data(), bytes)) + 1);
    auto count = static_cast<int>(characters.size());
    pango_default_break(text.data(), bytes, nullptr, characters.data(), count);
    auto analysed = analysis;
    pango_tailor_break(text.data(), bytes, &analysed, -1, characters.data(), count);
    auto& glyphs = *m_run.glyphs;
    Cut cut;
    std::size_t character = 0;
    for (int at = 0; at < glyphs.num_glyphs; cut.glyphs = at) {
        int start = glyphs.log_clusters[at];
        int width = 0;
        for (; at < glyphs.num_glyphs && glyphs.log_clusters[at] == start; ++at)
            width += glyphs.glyphs[at].geometry.width;
        // Nothing is gained by cutting off what is not seen.
        if (character < characters.size() && characters[character].is_cursor_position
            && (width != 0 || cut.glyphs == 0))
            m_cuts.push_back(cut);
        int end = at < glyphs.num_glyphs ? glyphs.log_clusters[at] : bytes;
        character += static_cast<std::size_t>(g_utf8_strlen(text.data() + start, end - start));
        cut.width += width;
    }
}

GlyphLine::Cut GlyphLine::cutFor(int width, const GlyphRun& ellipsis) const
{
    auto tooWide = std::ranges::upper_bound(m_cuts, width - ellipsis.width, {}, &Cut::width);
    return tooWide == m_cuts.begin() ? Cut{} : *std::prev(tooWide);
}

const GlyphLines::Entry* GlyphLines::find(
    std::string_view text, double pixels, FontWeight weight) const
{
    auto hash = std::hash<std::string_view>{}(text);
    auto known = std::ranges::find_if(m_entries, [&](auto& entry) {
        return entry.hash == hash && entry.pixels == pixels && entry.weight == weight
            && entry.text == text;
    });
    return known == m_entries.end() ? nullptr : &*known;
}

const GlyphLines::Entry* GlyphLines::add(Entry entry)
{
    entry.hash = std::hash<std::string_view>{}(entry.text);
    if (m_entries.size() < kMostLines)
        return &m_entries.emplace_back(std::move(entry));
    auto& oldest = m_entries[m_oldest];
    m_oldest = (m_oldest + 1) % kMostLines;
    return &(oldest = std::move(entry));
}

void GlyphLines::clear()
{
    m_entries.clear();
    m_oldest = 0;
}

}
