#include "Quorvel/Views/Menu/MenuRow.h"

#include <cmath>
#include <utility>

#include "Quorvel/Platform/Translation.h"

namespace quorvel {

namespace {

AccessibleRole roleOf(const MenuItem& item)
{
    if (item.isSeparator())
        return AccessibleRole::separator;
    switch (item.kind) {
    case MenuItemKind::toggle:
        return AccessibleRole::checkMenuItem;
    case MenuItemKind::choice:
        return AccessibleRole::radioMenuItem;
    case MenuItemKind::action:
        break;
    }
    return AccessibleRole::menuItem;
}

}

MenuRow::MenuRow(const MenuItem& item, const std::string& keys, std::size_t index,
    const MenuLayout& layout, const MenuLook& look)
    : m_item(item)
    , m_keys(keys)
    , m_index(index)
    , m_layout(layout)
    , m_look(look)
{
}

void MenuRow::setHighlighted(bool isHighlighted)
{
    if (std::exchange(m_isHighlighted, isHighlighted) != isHighlighted)
        invalidate();
}

AccessibleState MenuRow::accessibleState() const
{
    AccessibleState state;
    state.role = roleOf(m_item);
    state.name = m_item.title;
    state.isSelected = state.hasKeyFocus = m_isHighlighted;
    state.isEnabled = m_item.isEnabled;
    state.isChecked = m_item.isChecked;
    state.opensMenu = !m_item.submenu.empty();
    if (m_item.canBeChosen())
        state.actions.push_back(state.opensMenu ? tr("Open") : tr("Choose"));
    return state;
}

bool MenuRow::performAccessibleAction(std::size_t action)
{
    if (action > 0 || !m_item.canBeChosen() || !onChosen)
        return false;
    onChosen();
    return true;
}

void MenuRow::paint(Canvas& canvas) const
{
    auto& colors = m_look.palette;
    if (m_item.isSeparator()) {
        auto line = bounds().inset(MenuMetrics::textInset / 2, 0);
        return canvas.fill(
            {line.x, std::floor(line.centre().y), line.width, 1}, colors.menuSeparator);
    }
    if (m_isHighlighted)
        canvas.fillRounded(bounds(), MenuMetrics::rowRadius, colors.highlight);
    auto color = !m_item.isEnabled ? colors.disabledText
        : m_isHighlighted          ? colors.highlightedText
                                   : colors.text;
    auto parts = m_layout.partsOf(bounds(), m_look.isRightToLeft);
    canvas.drawText(m_item.title, parts.title, {.size = MenuMetrics::fontSize, .color = color});
    if (!m_keys.empty())
        canvas.drawText(m_keys, parts.keys,
            {.size = MenuMetrics::fontSize,
                .color = m_isHighlighted ? colors.highlightedText : colors.disabledText,
                .alignment = TextAlignment::trailing});
    if (m_item.isChecked)
        canvas.drawSymbol(Symbol::checkmark, parts.mark, color);
    if (!m_item.submenu.empty())
        canvas.drawSymbol(
            m_look.isRightToLeft ? Symbol::chevronLeft : Symbol::chevronRight, parts.arrow, color);
}

}
