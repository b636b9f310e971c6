#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Views/AppListTableView.h"
#include "Quorvel/Views/Kit/DragSource.h"

namespace quorvel {

class AppIcons;
class AppListTableRowView;
class PanelSurface;
class PinStore;

/// Which rows the launcher's list has and what happens to them: they are selected, opened, and pins
/// are dragged to another place among the pins. Main thread.
class AppListTableView::Coordinator final : public ListRows {
public:
    struct Inputs {
        PinStore& pinStore;
        AppIcons& icons;
        Dispatch& dispatch;
        const Palette& palette;
        const PanelSurface& surface; ///< which may move to other screens
    };

    static constexpr Duration kMakeRoom = seconds(0.16);
    static constexpr Duration kFallIntoPlace = seconds(0.12);

    explicit Coordinator(const Inputs&);
    ~Coordinator() override;

    /// The list that it drives, which is destroyed first.
    void setTableView(ListView&);
    void setRightToLeft(bool);

    std::function<void(const AppInfo&)> onLaunch;
    /// Beside this rectangle, in the root's coordinates.
    std::function<void(const AppInfo&, const Rect& anchor)> onMenu;

    const std::vector<AppListItem>& items() const { return m_items; }
    /// Why the list has changed.
    enum class Change {
        query, ///< always scrolls to the top
        pins, ///< scrolls to the top unless all rows look as before, as after a drop
        catalogue, ///< scrolls to the top only if the selected application has gone
    };
    /// At the top, the first application is selected.
    void setItems(std::vector<AppListItem>, Change);

    /// Null if there is none.
    const AppInfo* selectedApp() const;
    void openSelected();

    std::size_t rowCount() const override { return m_items.size(); }
    double rowHeight(std::size_t row) const override { return m_items[row].rowHeight(); }
    bool isSelectable(std::size_t row) const override { return m_items[row].app() != nullptr; }
    int rowKind(std::size_t row) const override;
    std::unique_ptr<ListRowView> makeRowView(int kind) override;
    void fillRowView(ListRowView&, std::size_t row) override;

private:
    using Row = std::size_t;

    std::optional<Row> rowOf(const ListRowView&) const;
    std::optional<AccessiblePosition> position(Row) const;
    void iconDidArrive(const std::string& id);
    std::optional<Row> rowOfSelectedIn(const std::vector<AppListItem>&) const;
    void refill();

    /// Where the pins begin, or else where they would.
    Row firstPinRow() const;
    std::size_t pinCount() const;
    std::optional<Row> pinRow(const std::string& id) const;
    std::vector<std::string> visiblePins(const std::vector<std::string>& order) const;

    void dragged(AppListTableRowView&, DragPhase, const DragMove&);
    bool beginDrag(AppListTableRowView&, Point translation);
    void moveDrag();
    std::optional<std::size_t> insertionIndex() const;
    std::vector<std::string> baseWithDraggedAt(std::size_t index) const;
    void preview(const std::vector<std::string>& order);
    void scrollForDrag();
    void endDrag(DragPhase);
    void abandonDrag();
    void clearDrag();
    void suppressSelectionHighlight(bool);

    Inputs m_inputs;
    ListView* m_tableView = nullptr;
    std::vector<AppListItem> m_items;
    bool m_isRightToLeft = false;
    std::optional<std::string> m_activePinnedDragAppID; ///< of the pin that is dragged
    std::vector<std::string> m_activePinnedDragBaseIDs; ///< when the drag began
    std::vector<std::string> m_activePinnedDragPreviewIDs; ///< as they would be after a drop
    Point m_dragPointer; ///< in the list
    double m_grip = 0; ///< from the top of the row to where it is held
    WorkItem m_dragScroll;
    Subscription m_icons;
};

}
