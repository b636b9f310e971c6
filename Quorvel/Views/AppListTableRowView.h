#pragma once

#include <functional>
#include <optional>

#include "Quorvel/Views/AppListItem.h"
#include "Quorvel/Views/Kit/DragSource.h"
#include "Quorvel/Views/SelectableRowView.h"

namespace quorvel {

struct Palette;

/// A row of the launcher's list: the background, and above it what the row has to show. Rows with
/// an application can be clicked, have a menu, and those that are pins can be dragged.
class AppListTableRowView final : public SelectableRowView {
public:
    /// For items of this kind. The palette outlives it.
    AppListTableRowView(const Palette&, const AppListItem& kind);

    const AppListItem& item() const { return m_item; }
    void setItem(const AppListItem&, std::optional<AccessiblePosition>);
    void setIcon(Image);
    void setRightToLeft(bool);
    /// While rows are dragged, none looks selected.
    void setSuppressSelectionHighlight(bool);

    DragSource drag;
    std::function<void(const AppListTableRowView&)> onTapped;
    /// Beside this rectangle, in the root's coordinates.
    std::function<void(const AppListTableRowView&, const Rect& anchor)> onMenu;

    bool takesPointer() const override { return m_item.app() != nullptr; }
    void released(PointerButton, bool isInside) override;
    DragSource* dragSource() override { return m_item.isPin() ? &drag : nullptr; }
    void rowWillChange() override;
    void showContextMenu() override;
    void showContextMenuAt(Point) override;

    bool isAccessible() const override;
    std::string accessibleID() const override;
    AccessibleState accessibleState() const override;
    bool performAccessibleAction(std::size_t) override;

private:
    void selectionDidChange() override { updateHighlight(); }
    void layout() override;
    bool looksSelected() const override { return isSelected() && !m_suppressSelectionHighlight; }
    void updateHighlight();

    AppListItem m_item;
    std::optional<AccessiblePosition> m_position;
    View* m_content = nullptr; ///< of the item's kind; null for a space
    bool m_suppressSelectionHighlight = false;
};

}
