#include "Quorvel/Views/AppListCoordinator.h"

#include <algorithm>
#include <utility>

#include "Quorvel/Core/AppIcons.h"
#include "Quorvel/Core/PinStore.h"
#include "Quorvel/Platform/Surfaces.h"
#include "Quorvel/Views/AppListTableRowView.h"

namespace quorvel {

namespace {

struct AppListCoordinatorStyle {
    static constexpr double scrollEdge = 20; ///< points, at the upper and lower end of the list
    static constexpr double scrollSpeed = 300; ///< points a second
};

}

AppListTableView::Coordinator::Coordinator(const Inputs& inputs)
    : m_inputs(inputs)
    , m_icons(inputs.icons.didArrive.subscribe([this](auto& id) { iconDidArrive(id); }))
{
}

AppListTableView::Coordinator::~Coordinator() = default;

void AppListTableView::Coordinator::setTableView(ListView& list)
{
    m_tableView = &list;
}

void AppListTableView::Coordinator::setRightToLeft(bool isRightToLeft)
{
    if (std::exchange(m_isRightToLeft, isRightToLeft) == isRightToLeft)
        return;
    m_tableView->setRightToLeft(isRightToLeft);
    refill();
}

// MARK: The rows

void AppListTableView::Coordinator::setItems(std::vector<AppListItem> items, Change change)
{
    bool looksAsBefore = std::ranges::equal(
        m_items, items, [](auto& before, auto& now) { return before.looksLike(now); });
    auto kept = change == Change::catalogue ? rowOfSelectedIn(items) : std::nullopt;
    if (!looksAsBefore)
        abandonDrag();
    m_items = std::move(items);
    bool leadsToTop = change == Change::query || (!looksAsBefore && !kept);
    if (!looksAsBefore)
        m_tableView->reload(leadsToTop ? std::optional{0.0} : std::nullopt);
    else if (leadsToTop)
        m_tableView->scrollTo(0);
    if (leadsToTop)
        m_tableView->select(m_tableView->selectableBeside({}, 1));
    else if (!looksAsBefore)
        m_tableView->select(kept);
}

std::optional<ListView::Row> AppListTableView::Coordinator::rowOfSelectedIn(
    const std::vector<AppListItem>& items) const
{
    auto row = m_tableView->selectedRow();
    if (!row)
        return {};
    auto& selected = *m_items[*row].app();
    auto found = std::ranges::find_if(items, [&](auto& item) {
        return item.app() && item.app()->section == selected.section
            && item.app()->app.id() == selected.app.id();
    });
    if (found == items.end())
        return {};
    return static_cast<Row>(found - items.begin());
}

int AppListTableView::Coordinator::rowKind(std::size_t row) const
{
    return static_cast<int>(m_items[row].content.index());
}

std::unique_ptr<ListRowView> AppListTableView::Coordinator::makeRowView(int kind)
{
    auto item = std::ranges::find_if(m_items,
        [&](auto& candidate) { return static_cast<int>(candidate.content.index()) == kind; });
    auto view = std::make_unique<AppListTableRowView>(m_inputs.palette, *item);
    view->onTapped = [this](auto& row) { onLaunch(AppInfo{row.item().app()->app}); };
    view->onMenu = [this](auto& row, auto& anchor) {
        selectAndReveal(*m_tableView, rowOf(row));
        onMenu(AppInfo{row.item().app()->app}, anchor);
    };
    view->drag.onDrag = [this, row = view.get()](
                            DragPhase phase, const DragMove& move) { dragged(*row, phase, move); };
    return view;
}

void AppListTableView::Coordinator::fillRowView(ListRowView& view, std::size_t row)
{
    auto& rowView = static_cast<AppListTableRowView&>(view);
    auto& item = m_items[row];
    rowView.setItem(item, position(row));
    rowView.setRightToLeft(m_isRightToLeft);
    rowView.setSuppressSelectionHighlight(m_activePinnedDragAppID.has_value());
    if (item.app())
        rowView.setIcon(m_inputs.icons.icon(item.app()->app, m_inputs.surface.scale()));
}

/// Among the applications: the others are not counted when they are read.
std::optional<AccessiblePosition> AppListTableView::Coordinator::position(Row row) const
{
    if (!m_items[row].app())
        return {};
    auto pins = pinCount();
    std::size_t above = m_items[row].isPin() || pins == 0 ? firstPinRow() : firstPinRow() + 1;
    std::size_t others = pins == 0 ? firstPinRow() : firstPinRow() + 1;
    return AccessiblePosition{row - above, m_items.size() - others};
}

std::optional<ListView::Row> AppListTableView::Coordinator::rowOf(const ListRowView& view) const
{
    for (auto row : m_tableView->rowsWithViews()) {
        if (m_tableView->rowView(row) == &view)
            return row;
    }
    return {};
}

void AppListTableView::Coordinator::iconDidArrive(const std::string& id)
{
    for (auto row : m_tableView->rowsWithViews()) {
        auto* app = m_items[row].app();
        if (app && (id.empty() || app->app.id() == id))
            fillRowView(*m_tableView->rowView(row), row);
    }
}

void AppListTableView::Coordinator::refill()
{
    for (auto row : m_tableView->rowsWithViews())
        fillRowView(*m_tableView->rowView(row), row);
}

// MARK: The selection

const AppInfo* AppListTableView::Coordinator::selectedApp() const
{
    auto row = m_tableView->selectedRow();
    return row ? &m_items[*row].app()->app : nullptr;
}

void AppListTableView::Coordinator::openSelected()
{
    if (auto* app = selectedApp())
        onLaunch(AppInfo{*app});
}

// MARK: Dragging pins

ListView::Row AppListTableView::Coordinator::firstPinRow() const
{
    auto first = std::ranges::find_if(m_items, [](auto& item) { return item.app() != nullptr; });
    return static_cast<Row>(first - m_items.begin());
}

std::size_t AppListTableView::Coordinator::pinCount() const
{
    auto first = m_items.begin() + static_cast<std::ptrdiff_t>(firstPinRow());
    auto end = std::find_if_not(first, m_items.end(), [](auto& item) { return item.isPin(); });
    return static_cast<std::size_t>(end - first);
}

std::optional<ListView::Row> AppListTableView::Coordinator::pinRow(const std::string& id) const
{
    auto first = firstPinRow();
    for (auto row = first; row < first + pinCount(); ++row) {
        if (m_items[row].app()->app.id() == id)
            return row;
    }
    return {};
}

std::vector<std::string> AppListTableView::Coordinator::visiblePins(
    const std::vector<std::string>& order) const
{
    std::vector<std::string> visible;
    std::ranges::copy_if(
        order, std::back_inserter(visible), [this](auto& id) { return pinRow(id).has_value(); });
    return visible;
}

void AppListTableView::Coordinator::dragged(
    AppListTableRowView& row, DragPhase phase, const DragMove& move)
{
    auto list = m_tableView->frameInRoot();
    m_dragPointer = move.pointer.translated(-list.x, -list.y);
    if (phase != DragPhase::moved)
        return endDrag(phase);
    if (m_activePinnedDragAppID || beginDrag(row, move.translation))
        moveDrag();
}

bool AppListTableView::Coordinator::beginDrag(AppListTableRowView& view, Point translation)
{
    auto& id = view.drag.data.text;
    auto row = pinRow(id);
    if (!row)
        return false;
    m_activePinnedDragAppID = id;
    m_activePinnedDragBaseIDs = m_inputs.pinStore.pinnedAppIDs(PinDestination::launcher);
    m_activePinnedDragPreviewIDs = m_activePinnedDragBaseIDs;
    m_grip = m_dragPointer.y - translation.y - m_tableView->rowFrame(*row).y;
    m_tableView->setFrameInterval(m_inputs.surface.frameInterval());
    suppressSelectionHighlight(true);
    return true;
}

void AppListTableView::Coordinator::moveDrag()
{
    auto index = insertionIndex();
    preview(index ? baseWithDraggedAt(*index) : m_activePinnedDragBaseIDs);
    auto row = *pinRow(*m_activePinnedDragAppID);
    double lowest = std::max(0.0, m_tableView->bounds().height - m_items[row].rowHeight());
    m_tableView->lift(row, std::clamp(m_dragPointer.y - m_grip, 0.0, lowest));
    scrollForDrag();
}

/// Where among the other pins it would land; absent if the pointer is not over the pins.
std::optional<std::size_t> AppListTableView::Coordinator::insertionIndex() const
{
    auto first = firstPinRow();
    auto count = pinCount();
    auto row = m_tableView->rowAt(m_dragPointer.y);
    if (!row || !m_tableView->bounds().contains(m_dragPointer) || *row > first + count)
        return {};
    if (*row < first) // the heading
        return 0;
    if (*row == first + count) // the line below them
        return count - 1;
    bool isBelowMiddle = m_dragPointer.y > m_tableView->rowFrame(*row).centre().y;
    auto gap = *row - first + (isBelowMiddle ? 1 : 0);
    auto dragged = *pinRow(*m_activePinnedDragAppID) - first;
    return gap > dragged ? gap - 1 : gap;
}

/// The index counts the pins that are seen; those of applications that are gone keep their places.
std::vector<std::string> AppListTableView::Coordinator::baseWithDraggedAt(std::size_t index) const
{
    auto order = m_activePinnedDragBaseIDs;
    auto others = visiblePins(order);
    for (auto* list : {&order, &others})
        std::erase(*list, *m_activePinnedDragAppID);
    if (others.empty())
        return m_activePinnedDragBaseIDs;
    auto place = index < others.size() ? std::ranges::find(order, others[index])
                                       : std::ranges::find(order, others.back()) + 1;
    order.insert(place, *m_activePinnedDragAppID);
    return order;
}

void AppListTableView::Coordinator::preview(const std::vector<std::string>& order)
{
    m_activePinnedDragPreviewIDs = order;
    auto visible = visiblePins(order);
    auto place = std::ranges::find(visible, *m_activePinnedDragAppID) - visible.begin();
    auto from = *pinRow(*m_activePinnedDragAppID);
    auto to = firstPinRow() + static_cast<Row>(place);
    if (from == to)
        return;
    auto at = [this](Row row) { return m_items.begin() + static_cast<std::ptrdiff_t>(row); };
    if (from < to)
        std::rotate(at(from), at(from + 1), at(to + 1));
    else
        std::rotate(at(to), at(from), at(from + 1));
    m_tableView->moveRow(from, to, kMakeRoom);
}

void AppListTableView::Coordinator::endDrag(DragPhase phase)
{
    if (!m_activePinnedDragAppID)
        return;
    bool isDropped = phase == DragPhase::dropped && insertionIndex();
    if (!isDropped)
        preview(m_activePinnedDragBaseIDs);
    auto order = std::move(m_activePinnedDragPreviewIDs);
    auto id = *m_activePinnedDragAppID;
    clearDrag();
    m_tableView->dropLifted(kFallIntoPlace);
    if (!isDropped)
        return;
    auto next = std::ranges::find(order, id) + 1;
    m_inputs.pinStore.movePinnedApp(
        id, next == order.end() ? std::nullopt : std::optional{*next}, PinDestination::launcher);
}

/// The rows are about to become others.
void AppListTableView::Coordinator::abandonDrag()
{
    if (!m_activePinnedDragAppID)
        return;
    auto row = pinRow(*m_activePinnedDragAppID);
    clearDrag();
    if (auto* view = row ? m_tableView->rowView(*row) : nullptr)
        view->rowWillChange();
}

void AppListTableView::Coordinator::clearDrag()
{
    m_activePinnedDragAppID.reset();
    m_activePinnedDragBaseIDs.clear();
    m_activePinnedDragPreviewIDs.clear();
    m_dragScroll = {};
    suppressSelectionHighlight(false);
}

/// Pins beyond an end of the list come into sight while the row is held there.
void AppListTableView::Coordinator::scrollForDrag()
{
    double height = m_tableView->bounds().height;
    bool isAtTop
        = m_dragPointer.y < AppListCoordinatorStyle::scrollEdge && m_tableView->offset() > 0;
    double below = m_tableView->rowFrame(firstPinRow() + pinCount()).maxY() - height;
    bool isAtBottom = m_dragPointer.y > height - AppListCoordinatorStyle::scrollEdge && below > 0;
    if (!isAtTop && !isAtBottom) {
        m_dragScroll = {};
        return;
    }
    if (m_dragScroll.isPending())
        return;
    auto interval = m_inputs.surface.frameInterval();
    m_dragScroll = m_inputs.dispatch.main().after(interval, [this, interval, isAtTop, below] {
        m_dragScroll = {};
        double step = AppListCoordinatorStyle::scrollSpeed
            * std::chrono::duration<double>(interval).count();
        m_tableView->scrollTo(m_tableView->offset() + (isAtTop ? -step : std::min(step, below)));
        moveDrag();
    });
}

void AppListTableView::Coordinator::suppressSelectionHighlight(bool isSuppressed)
{
    for (auto row : m_tableView->rowsWithViews())
        static_cast<AppListTableRowView*>(m_tableView->rowView(row))
            ->setSuppressSelectionHighlight(isSuppressed);
}

}
