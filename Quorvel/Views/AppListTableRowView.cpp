#include "Quorvel/Views/AppListTableRowView.h"

#include <utility>

#include "Quorvel/Core/PinnedAppRecord.h"
#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Views/AppListRowView.h"

namespace quorvel {

AppListTableRowView::AppListTableRowView(const Palette& palette, const AppListItem& kind)
    : SelectableRowView(palette)
    , m_item(kind)
{
    if (m_item.app())
        m_content = &addChild(std::make_unique<AppListRowView>(palette));
    else if (std::holds_alternative<AppListItem::SectionHeader>(m_item.content))
        m_content = &addChild(std::make_unique<AppListHeaderView>(palette));
    else if (std::holds_alternative<AppListItem::Divider>(m_item.content))
        m_content = &addChild(std::make_unique<AppListDividerView>(palette));
}

void AppListTableRowView::setItem(
    const AppListItem& item, std::optional<AccessiblePosition> position)
{
    if (!m_item.looksLike(item))
        rowWillChange();
    m_item = item;
    m_position = position;
    if (auto* app = item.app()) {
        static_cast<AppListRowView*>(m_content)->setName(app->app.name());
        drag.data = {std::string{kPinnedAppPasteboardType}, app->app.id()};
    } else if (auto* header = std::get_if<AppListItem::SectionHeader>(&item.content)) {
        static_cast<AppListHeaderView*>(m_content)->setTitle(header->title);
    }
}

void AppListTableRowView::setIcon(Image icon)
{
    static_cast<AppListRowView*>(m_content)->setIcon(std::move(icon));
}

void AppListTableRowView::setRightToLeft(bool isRightToLeft)
{
    if (m_item.app())
        static_cast<AppListRowView*>(m_content)->setRightToLeft(isRightToLeft);
}

void AppListTableRowView::layout()
{
    if (m_content)
        m_content->setFrame(bounds());
}

// MARK: What it looks like

void AppListTableRowView::setSuppressSelectionHighlight(bool isSuppressed)
{
    if (std::exchange(m_suppressSelectionHighlight, isSuppressed) != isSuppressed)
        updateHighlight();
}

void AppListTableRowView::updateHighlight()
{
    if (m_item.app())
        static_cast<AppListRowView*>(m_content)->setHighlighted(looksSelected());
    invalidate();
}

// MARK: The pointer

void AppListTableRowView::released(PointerButton, bool isInside)
{
    bool wasPressed = isPressed();
    setPressed(false);
    if (wasPressed && isInside && onTapped)
        onTapped(*this);
}

void AppListTableRowView::rowWillChange()
{
    SelectableRowView::rowWillChange();
    drag.cancelled();
}

void AppListTableRowView::showContextMenuAt(Point at)
{
    if (onMenu && m_item.app())
        onMenu(*this, {at.x, at.y, 1, 1});
}

void AppListTableRowView::showContextMenu()
{
    if (onMenu && m_item.app())
        onMenu(*this, frameInRoot());
}

// MARK: For assistive programs

bool AppListTableRowView::isAccessible() const
{
    return m_item.app() || std::holds_alternative<AppListItem::SectionHeader>(m_item.content);
}

std::string AppListTableRowView::accessibleID() const
{
    auto* app = m_item.app();
    if (!app)
        return "header";
    return (m_item.isPin() ? "pinned-" : "app-") + app->app.id();
}

AccessibleState AppListTableRowView::accessibleState() const
{
    AccessibleState state;
    if (auto* header = std::get_if<AppListItem::SectionHeader>(&m_item.content)) {
        state.role = AccessibleRole::heading;
        state.name = header->title;
    } else if (auto* app = m_item.app()) {
        state.role = AccessibleRole::listItem;
        state.name = app->app.name();
        state.isSelected = isSelected();
        state.actions = {tr("Open"), tr("Show Menu")};
        state.menuAction = 1;
        state.position = m_position;
    }
    return state;
}

bool AppListTableRowView::performAccessibleAction(std::size_t action)
{
    if (!m_item.app() || action > 1)
        return false;
    if (action == 1)
        showContextMenu();
    else if (onTapped)
        onTapped(*this);
    return true;
}

}
