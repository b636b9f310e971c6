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

/// Null unless the line is one run from left to right, of a length that is worth keeping.
const PangoGlyphItem* onlyRun(PangoLayoutLine* line)
{
    if (!line->runs || line->runs->next)
        return nullptr;
    if (pango_layout_line_get_resolved_direction(line) == PANGO_DIRECTION_RTL)
        return nullptr;
    auto* run = static_cast<const PangoGlyphItem*>(line->runs->data);
    bool isPlain = run->item->analysis.font && run->item->analysis.level == 0;
    return isPlain && run->glyphs->num_glyphs <= kMostGlyphs ? run : nullptr;
}

}

GlyphRun::GlyphRun(const PangoGlyphItem& item)
    : font(item.item->analysis.font ? PANGO_FONT(g_object_ref(item.item->analysis.font)) : nullptr)
    , glyphs(pango_glyph_string_copy(item.glyphs))
    , width(pango_glyph_string_get_width(item.glyphs))
{
}

std::optional<GlyphLine> GlyphLine::from(PangoLayoutLine* shaped)
{
    std::string_view text = pango_layout_get_text(shaped->layout);
    auto* item = onlyRun(shaped);
    if (!item || hasWideLetter(text))
        return std::nullopt;
    GlyphLine line{*item};
    int count = 0;
    auto* characters = pango_layout_get_log_attrs_readonly(shaped->layout, &count);
    auto& glyphs = *line.m_run.glyphs;
    Cut cut;
    long character = 0;
    for (int at = 0; at < glyphs.num_glyphs; cut.glyphs = at) {
        int start = glyphs.log_clusters[at];
        int width = 0;
        for (; at < glyphs.num_glyphs && glyphs.log_clusters[at] == start; ++at)
            width += glyphs.glyphs[at].geometry.width;
        // Nothing is gained by cutting off what is not seen.
        if (character < count && characters[character].is_cursor_position
            && (width != 0 || cut.glyphs == 0))
            line.m_cuts.push_back(cut);
        int end = at < glyphs.num_glyphs ? glyphs.log_clusters[at] : static_cast<int>(text.size());
        character += g_utf8_strlen(text.data() + start, end - start);
        cut.width += width;
    }
    return line;
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
