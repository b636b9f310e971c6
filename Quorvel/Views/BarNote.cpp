#include "Quorvel/Views/BarNote.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "Quorvel/Platform/Text.h"
#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel {

namespace {

struct BarNoteStyle {
    static constexpr double fontSize = 12;
    static constexpr double inset = 12; ///< before and after the text
    static constexpr double margin = 4; ///< above and below
    static constexpr double radius = 6;
};

}

BarNote::BarNote(const Palette& palette, const Text& text, Queue& main)
    : ButtonView(palette)
    , m_measure(text)
    , m_main(main)
{
    onTapped = [this] { hide(); };
}

void BarNote::show(std::string text)
{
    m_text = std::move(text);
    m_end = m_main.after(kTimeToRead, [this] { hide(); });
    place();
    invalidate();
    if (onShownChanged)
        onShownChanged();
}

void BarNote::hide()
{
    m_text.clear();
    m_end = {};
    place();
    if (auto* surface = host())
        surface->viewsDidMove();
    if (onShownChanged)
        onShownChanged();
}

void BarNote::setRoom(const Rect& room, bool isRightToLeft)
{
    m_room = room;
    m_isRightToLeft = isRightToLeft;
    place();
}

void BarNote::place()
{
    double width = m_text.empty() ? 0 : std::min(m_room.width, widthOfText());
    auto inner = m_room.inset(0, BarNoteStyle::margin);
    setFrame({m_isRightToLeft ? inner.x : inner.maxX() - width, inner.y, width, inner.height});
}

double BarNote::widthOfText() const
{
    TextStyle style;
    style.size = BarNoteStyle::fontSize;
    return std::ceil(m_measure.measure(m_text, style).width) + 2 * BarNoteStyle::inset;
}

void BarNote::paint(Canvas& canvas) const
{
    auto& colors = palette();
    canvas.fillRounded(bounds(), BarNoteStyle::radius, colors.popupGround);
    paintFace(canvas, bounds(), BarNoteStyle::radius);
    canvas.strokeRounded(bounds(), BarNoteStyle::radius, 1, colors.popupEdge);
    canvas.drawText(m_text, bounds().inset(BarNoteStyle::inset, 0),
        {.size = BarNoteStyle::fontSize, .color = colors.text});
}

}
