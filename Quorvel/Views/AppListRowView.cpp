#include "Quorvel/Views/AppListRowView.h"

#include <cmath>
#include <utility>

#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel {

namespace {

struct AppListRowViewStyle {
    static constexpr double inset = 10; ///< of icon, title and line
    static constexpr double iconSize = 24;
    static constexpr double iconGap = 10; ///< between icon and name
    static constexpr double nameSize = 12;
    static constexpr double titleSize = 11;
};

}

void AppListRowView::setName(const std::string& name)
{
    if (name == m_name)
        return;
    m_name = name;
    invalidate();
}

void AppListRowView::setIcon(Image icon)
{
    if (icon == m_icon)
        return;
    m_icon = std::move(icon);
    invalidate();
}

void AppListRowView::setHighlighted(bool isHighlighted)
{
    if (std::exchange(m_isHighlighted, isHighlighted) != isHighlighted)
        invalidate();
}

void AppListRowView::setRightToLeft(bool isRightToLeft)
{
    if (std::exchange(m_isRightToLeft, isRightToLeft) != isRightToLeft)
        invalidate();
}

void AppListRowView::paint(Canvas& canvas) const
{
    auto inner = bounds().inset(AppListRowViewStyle::inset, 0);
    double side = AppListRowViewStyle::iconSize;
    Rect icon{m_isRightToLeft ? inner.maxX() - side : inner.x,
        std::round(inner.centre().y - side / 2), side, side};
    double taken = side + AppListRowViewStyle::iconGap;
    Rect name{
        m_isRightToLeft ? inner.x : inner.x + taken, inner.y, inner.width - taken, inner.height};
    if (m_icon)
        canvas.drawImage(m_icon, icon);
    canvas.drawText(m_name, name,
        {.size = AppListRowViewStyle::nameSize,
            .color = m_isHighlighted ? m_palette.highlightedText : m_palette.text});
}

void AppListHeaderView::setTitle(const std::string& title)
{
    if (title == m_title)
        return;
    m_title = title;
    invalidate();
}

void AppListHeaderView::paint(Canvas& canvas) const
{
    canvas.drawText(m_title, bounds().inset(AppListRowViewStyle::inset, 0),
        {.size = AppListRowViewStyle::titleSize,
            .weight = FontWeight::semibold,
            .color = m_palette.quietText});
}

void AppListDividerView::paint(Canvas& canvas) const
{
    auto inner = bounds().inset(AppListRowViewStyle::inset, 0);
    canvas.fill({inner.x, std::floor(inner.centre().y), inner.width, 1}, m_palette.line);
}

}
