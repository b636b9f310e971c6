#include "Hosts/X11/Surface/MenuLayout.h"

#include <algorithm>

#include "Quorvel/Platform/Canvas.h"

namespace quorvel::x11 {

MenuLayout::MenuLayout(const Menu& menu, const Text& text, const MenuStyle& style)
{
    double widest = 0;
    TextStyle font;
    font.size = style.fontSize;
    for (auto& item : menu)
        widest = std::max(widest, text.measure(item.title, font).width);
    double inset = style.padding + style.textInset;
    m_size.width = std::clamp(widest + 2 * inset, style.minimumWidth, style.maximumWidth);

    double y = style.padding;
    for (auto& item : menu) {
        double height = item.title.empty() ? style.separatorHeight : style.rowHeight;
        m_rows.push_back({style.padding, y, m_size.width - 2 * style.padding, height});
        m_canBeChosen.push_back(!item.title.empty() && item.isEnabled);
        y += height;
    }
    m_size.height = y + style.padding;
}

std::optional<std::size_t> MenuLayout::rowAt(Point point) const
{
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        if (m_canBeChosen[i] && m_rows[i].contains(point))
            return i;
    }
    return std::nullopt;
}

std::optional<std::size_t> MenuLayout::rowBeside(std::optional<std::size_t> row, int step) const
{
    auto count = static_cast<int>(m_rows.size());
    int start = row ? static_cast<int>(*row) : (step > 0 ? -1 : count);
    for (int i = 1; i <= count; ++i) {
        int candidate = ((start + step * i) % count + count) % count;
        if (m_canBeChosen[static_cast<std::size_t>(candidate)])
            return static_cast<std::size_t>(candidate);
    }
    return std::nullopt;
}

Rect placeMenu(Size size, const Rect& anchor, const Rect& bounds, bool isRightToLeft)
{
    double roomAbove = anchor.y - bounds.y;
    double roomBelow = bounds.maxY() - anchor.maxY();
    bool opensUp = roomAbove >= size.height || roomAbove >= roomBelow;
    double y = opensUp ? anchor.y - size.height : anchor.maxY();
    double x = isRightToLeft ? anchor.maxX() - size.width : anchor.x;
    return {std::max(bounds.x, std::min(x, bounds.maxX() - size.width)),
        std::max(bounds.y, std::min(y, bounds.maxY() - size.height)), size.width, size.height};
}

}
