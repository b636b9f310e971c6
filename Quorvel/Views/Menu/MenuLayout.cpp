#include "Quorvel/Views/Menu/MenuLayout.h"

#include <algorithm>
#include <cmath>

#include "Quorvel/Platform/Text.h"

namespace quorvel {

MenuLayout::MenuLayout(const Menu& menu, const MenuKeyTexts& keys, const Text& text)
{
    using M = MenuMetrics;
    TextStyle style;
    style.size = M::fontSize;
    double widest = 0;
    for (auto& item : menu) {
        widest = std::max(widest, text.measure(item.title, style).width);
        if (item.isChecked || item.kind != MenuItemKind::action)
            m_markWidth = M::markWidth;
        if (!item.submenu.empty())
            m_arrowWidth = M::arrowWidth;
    }
    for (auto& each : keys)
        m_keysWidth = std::max(m_keysWidth, std::ceil(text.measure(each, style).width));
    double around = 2 * (M::padding + M::textInset) + m_markWidth + m_arrowWidth + m_keysWidth
        + (m_keysWidth > 0 ? M::keysGap : 0);
    m_size.width = std::clamp(std::ceil(widest) + around, M::minimumWidth, M::maximumWidth);

    double y = M::padding;
    for (auto& item : menu) {
        double height = item.isSeparator() ? M::separatorHeight : M::rowHeight;
        m_rows.push_back({M::padding, y, m_size.width - 2 * M::padding, height});
        m_canBeChosen.push_back(item.canBeChosen());
        y += height;
    }
    m_size.height = y + M::padding;
}

MenuRowParts MenuLayout::partsOf(const Rect& row, bool isRightToLeft) const
{
    auto inner = row.inset(MenuMetrics::textInset, 0);
    double left = inner.x + (isRightToLeft ? m_arrowWidth : m_markWidth);
    double width = std::max(0.0, inner.width - m_markWidth - m_arrowWidth);
    double keysWidth = std::min(m_keysWidth, width);
    double titleWidth
        = std::max(0.0, width - keysWidth - (keysWidth > 0 ? MenuMetrics::keysGap : 0));
    Rect title{left + (isRightToLeft ? width - titleWidth : 0), row.y, titleWidth, row.height};
    Rect keys{left + (isRightToLeft ? 0 : width - keysWidth), row.y, keysWidth, row.height};
    double side = MenuMetrics::symbolSize;
    double y = row.centre().y - side / 2;
    Rect first{inner.x, y, side, side};
    Rect last{inner.maxX() - side, y, side, side};
    return isRightToLeft ? MenuRowParts{last, title, keys, first}
                         : MenuRowParts{first, title, keys, last};
}

std::optional<std::size_t> MenuLayout::rowAt(double y) const
{
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        if (m_canBeChosen[i] && y >= m_rows[i].y && y < m_rows[i].maxY())
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

std::optional<std::size_t> currentChoice(const Menu& menu)
{
    auto found = std::ranges::find_if(
        menu, [](auto& item) { return item.kind == MenuItemKind::choice && item.isChecked; });
    if (found == menu.end())
        return std::nullopt;
    return static_cast<std::size_t>(found - menu.begin());
}

}
