#include "Hosts/X11/Surface/MenuLayout.h"

#include <algorithm>

#include "Quorvel/Platform/Canvas.h"

namespace quorvel::xdg::x11 {

namespace {

bool canBeChosen(const MenuItem& item)
{
    return !item.title.empty() && item.isEnabled;
}

double inside(double start, double length, double from, double to)
{
    return std::max(from, std::min(start, to - length));
}

}

MenuLayout::MenuLayout(const Menu& menu, const Text& text, const MenuStyle& style) : m_style(style)
{
    double widest = 0;
    TextStyle font;
    font.size = style.fontSize;
    for (auto& item : menu) {
        widest = std::max(widest, text.measure(item.title, font).width);
        m_markWidth = item.isChecked ? style.markWidth : m_markWidth;
        m_arrowWidth = item.submenu.empty() ? m_arrowWidth : style.arrowWidth;
    }
    double around = 2 * (style.padding + style.textInset) + m_markWidth + m_arrowWidth;
    m_size.width = std::clamp(widest + around, style.minimumWidth, style.maximumWidth);

    double y = style.padding;
    for (auto& item : menu) {
        double height = item.title.empty() ? style.separatorHeight : style.rowHeight;
        m_rows.push_back({style.padding, y, m_size.width - 2 * style.padding, height});
        m_canBeChosen.push_back(canBeChosen(item));
        y += height;
    }
    m_size.height = y + style.padding;
}

MenuRowParts MenuLayout::partsOf(std::size_t row, bool isRightToLeft) const
{
    auto& frame = m_rows[row];
    auto inner = frame.inset(m_style.textInset, 0);
    double left = inner.x + (isRightToLeft ? m_arrowWidth : m_markWidth);
    Rect title{left, frame.y, inner.width - m_markWidth - m_arrowWidth, frame.height};
    double side = m_style.symbolSize;
    double y = frame.centre().y - side / 2;
    Rect first{inner.x, y, side, side};
    Rect last{inner.maxX() - side, y, side, side};
    return isRightToLeft ? MenuRowParts{last, title, first} : MenuRowParts{first, title, last};
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
    double height = std::min(size.height, std::max(opensUp ? roomAbove : roomBelow, 0.0));
    double y = opensUp ? anchor.y - height : anchor.maxY();
    double x = isRightToLeft ? anchor.maxX() - size.width : anchor.x;
    return {inside(x, size.width, bounds.x, bounds.maxX()),
        inside(y, height, bounds.y, bounds.maxY()), size.width, height};
}

Rect placeSubmenu(
    Size size, const Rect& row, double padding, const Rect& bounds, bool isRightToLeft)
{
    double left = row.x - size.width;
    double right = row.maxX();
    bool fitsLeft = left >= bounds.x;
    bool fitsRight = right + size.width <= bounds.maxX();
    bool opensLeft = isRightToLeft ? fitsLeft || !fitsRight : fitsLeft && !fitsRight;
    double height = std::min(size.height, bounds.height);
    return {inside(opensLeft ? left : right, size.width, bounds.x, bounds.maxX()),
        inside(row.y - padding, height, bounds.y, bounds.maxY()), size.width, height};
}

bool headsFor(Point from, Point to, const Rect& target)
{
    double edge = target.x >= from.x ? target.x : target.maxX();
    double whole = edge - from.x;
    double part = whole == 0 ? 0 : (to.x - from.x) / whole;
    if (part <= 0 || part > 1)
        return false;
    // Between the lines to the two corners of the near edge.
    double top = from.y + (target.y - from.y) * part;
    double bottom = from.y + (target.maxY() - from.y) * part;
    return to.y >= top && to.y <= bottom;
}

}
