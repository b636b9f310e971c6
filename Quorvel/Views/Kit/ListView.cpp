#include "Quorvel/Views/Kit/ListView.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "Quorvel/Views/Kit/OverlayScroller.h"

namespace quorvel {

namespace {

struct ListViewStyle {
    static constexpr double wheelShare = 0.4; ///< of what is left of the way, in each frame
    static constexpr double wheelEnd = 0.5; ///< points
};

}

ListView::ListView(ListRows& rows, const Palette& palette, Dispatch& dispatch)
    : m_rows(rows)
    , m_dispatch(dispatch)
    , m_scroller(&addChild(std::make_unique<OverlayScroller>(palette, dispatch)))
    , m_gliding(dispatch)
{
    m_scroller->onScrolled = [this](double offset) { scrollTo(offset); };
}

ListView::~ListView() = default;

void ListView::setRightToLeft(bool isRightToLeft)
{
    m_isRightToLeft = isRightToLeft;
    placeScroller();
}

void ListView::setReducesMotion(bool reducesMotion)
{
    m_reducesMotion = reducesMotion;
    m_scroller->setReducesMotion(reducesMotion);
}

void ListView::setFrameInterval(Duration interval)
{
    m_frameInterval = interval;
    m_scroller->setFrameInterval(interval);
}

// MARK: Which rows there are

void ListView::measure()
{
    auto count = m_rows.rowCount();
    m_tops.assign(1, 0);
    m_tops.reserve(count + 1);
    for (Row row = 0; row < count; ++row)
        m_tops.push_back(m_tops.back() + m_rows.rowHeight(row));
}

void ListView::reload(std::optional<double> offset)
{
    m_gliding.stop();
    m_shifts.clear();
    if (m_lifted && m_shown.contains(*m_lifted))
        m_shown[*m_lifted].view->setLifted(false);
    m_lifted.reset();
    measure();
    if (offset) {
        m_wheel = {};
        m_isGestureOurs = false;
    }
    m_offset = std::clamp(offset.value_or(m_offset), 0.0, mostOffset());
    auto inSight = rowsInSight();
    for (auto row : rowsWithViews()) {
        auto [view, kind] = m_shown[row];
        if (std::ranges::binary_search(inSight, row) && m_rows.rowKind(row) == kind)
            m_rows.fillRowView(*view, row);
        else
            spare(row);
    }
    if (m_selected && (*m_selected >= m_rows.rowCount() || !m_rows.isSelectable(*m_selected)))
        select({});
    layout();
}

void ListView::moveRow(Row from, Row to, Duration length)
{
    auto former = [&](Row row) {
        if (row == to)
            return from;
        bool hasMovedUp = row >= from && row < to;
        bool hasMovedDown = row <= from && row > to;
        return hasMovedUp ? row + 1 : hasMovedDown ? row - 1 : row;
    };
    std::map<Row, double> seenAt;
    for (Row row = 0; row + 1 < m_tops.size(); ++row) {
        if (m_shifts.contains(row) || (row >= std::min(from, to) && row <= std::max(from, to)))
            seenAt[row] = shownTop(row);
    }
    measure();
    std::map<Row, Shown> shown;
    Shifts shifts;
    std::optional<Row> selected;
    std::optional<Row> lifted;
    for (Row row = 0; row + 1 < m_tops.size(); ++row) {
        auto before = former(row);
        if (auto found = m_shown.find(before); found != m_shown.end())
            shown[row] = found->second;
        if (m_selected == before)
            selected = row;
        if (m_lifted == before)
            lifted = row;
        else if (auto found = seenAt.find(before); found != seenAt.end())
            shifts[row] = found->second - m_tops[row];
    }
    m_shown = std::move(shown);
    m_selected = selected;
    m_lifted = lifted;
    // Each row may say which one it is.
    for (Row row = std::min(from, to); row <= std::max(from, to); ++row) {
        if (auto* view = rowView(row))
            m_rows.fillRowView(*view, row);
    }
    glide(std::move(shifts), length);
    tellChanged();
}

void ListView::glide(Shifts from, Duration length)
{
    m_shifts = from;
    m_gliding.start(m_reducesMotion ? Duration::zero() : length, m_frameInterval,
        [this, from = std::move(from)](double share) {
            for (auto& [row, shift] : from)
                m_shifts[row] = shift * (1 - share);
            if (share == 1)
                m_shifts.clear();
            placeRows();
        });
}

void ListView::lift(Row row, double y)
{
    m_lifted = row;
    m_liftedY = y;
    m_shifts.erase(row);
    placeRows();
    if (auto* view = rowView(row)) {
        view->setLifted(true);
        raiseChild(*view);
        raiseChild(*m_scroller);
    }
}

void ListView::dropLifted(Duration length)
{
    if (!m_lifted)
        return;
    auto row = *std::exchange(m_lifted, {});
    auto shifts = m_shifts;
    shifts[row] = m_liftedY + m_offset - m_tops[row];
    if (auto* view = rowView(row))
        view->setLifted(false);
    glide(std::move(shifts), length);
}

// MARK: The selection

void ListView::select(std::optional<Row> row)
{
    if (row == m_selected)
        return;
    if (auto* before = m_selected ? rowView(*m_selected) : nullptr)
        before->setSelected(false);
    m_selected = row;
    if (auto* view = row ? rowView(*row) : nullptr)
        view->setSelected(true);
    tellChanged();
}

std::optional<ListView::Row> ListView::selectableBeside(std::optional<Row> from, int side) const
{
    auto count = static_cast<std::ptrdiff_t>(m_rows.rowCount());
    auto row = from ? static_cast<std::ptrdiff_t>(*from) : side > 0 ? -1 : count;
    for (row += side; row >= 0 && row < count; row += side) {
        if (m_rows.isSelectable(static_cast<Row>(row)))
            return static_cast<Row>(row);
    }
    return {};
}

std::optional<ListView::Row> ListView::selectableAPageFrom(std::optional<Row> from, int side) const
{
    auto chosen = selectableBeside(from, side);
    if (!from || !chosen)
        return chosen;
    while (auto next = selectableBeside(chosen, side)) {
        // What was the last row in sight becomes the first one.
        if (std::abs(m_tops[*next] - m_tops[*from]) + m_rows.rowHeight(*next) > bounds().height)
            break;
        chosen = next;
    }
    return chosen;
}

// MARK: Scrolling

double ListView::mostOffset() const
{
    return std::max(0.0, m_tops.back() - bounds().height);
}

void ListView::scrollTo(double offset)
{
    m_wheel = {};
    m_isGestureOurs = false;
    setOffset(offset);
}

void ListView::setOffset(double offset)
{
    offset = std::clamp(offset, 0.0, mostOffset());
    if (std::exchange(m_offset, offset) == offset)
        return;
    placeRows();
    placeScroller();
    m_scroller->flash();
}

void ListView::revealRow(Row row)
{
    auto first = row;
    while (first > 0 && !m_rows.isSelectable(first - 1))
        --first;
    double top = m_tops[first];
    double bottom = m_tops[row + 1];
    if (bottom > m_offset + bounds().height)
        scrollTo(bottom - bounds().height);
    if (top < m_offset)
        scrollTo(std::max(top, bottom - bounds().height));
}

void ListView::flashScroller()
{
    m_scroller->flash();
}

bool ListView::scrolled(const ScrollEvent& event)
{
    bool isGesture = event.phase != ScrollPhase::none || event.isMomentum;
    if (event.phase == ScrollPhase::began)
        m_isGestureOurs = true;
    // The fingers were elsewhere, or the rows they moved have gone since.
    if (isGesture && !m_isGestureOurs)
        return false;
    if (event.axis() == ScrollAxis::horizontal || event.deltaY == 0)
        return isGesture;
    if (event.unit == ScrollUnit::points) {
        m_wheel = {};
        setOffset(m_offset - event.deltaY);
    } else {
        wheelTo((m_wheel.isPending() ? m_wheelTarget : m_offset) - event.deltaY * kNotch);
    }
    return true;
}

void ListView::wheelTo(double offset)
{
    m_isGestureOurs = false;
    m_wheelTarget = std::clamp(std::round(offset), 0.0, mostOffset());
    // A turn that is under way only leads farther.
    if (!m_wheel.isPending())
        turnWheel();
}

void ListView::turnWheel()
{
    m_wheelTarget = std::min(m_wheelTarget, mostOffset());
    double left = m_wheelTarget - m_offset;
    bool isLast = m_reducesMotion
        || std::abs(left) * (1 - ListViewStyle::wheelShare) < ListViewStyle::wheelEnd;
    m_wheel = {};
    setOffset(isLast ? m_wheelTarget : m_offset + left * ListViewStyle::wheelShare);
    if (!isLast)
        m_wheel = m_dispatch.main().after(m_frameInterval, [this] { turnWheel(); });
}

// MARK: Places

void ListView::layout()
{
    m_offset = std::clamp(m_offset, 0.0, mostOffset());
    placeRows();
    placeScroller();
}

void ListView::placeScroller()
{
    double width = OverlayScroller::kWidth;
    m_scroller->setStrip({m_isRightToLeft ? 0 : bounds().width - width, 0, width, bounds().height});
    m_scroller->setContent(m_tops.back(), m_offset);
}

Rect ListView::rowFrame(Row row) const
{
    // Text is sharp on whole points, whatever the scale.
    double y = m_lifted == row ? m_liftedY : std::round(shownTop(row) - m_offset);
    return {0, y, bounds().width, m_tops[row + 1] - m_tops[row]};
}

double ListView::shownTop(Row row) const
{
    auto shift = m_shifts.find(row);
    return m_tops[row] + (shift == m_shifts.end() ? 0 : shift->second);
}

std::optional<ListView::Row> ListView::rowAt(double y) const
{
    double top = y + m_offset;
    if (top < 0 || top >= m_tops.back())
        return {};
    return rowBelow(top);
}

/// The last row that begins at this height or above it.
ListView::Row ListView::rowBelow(double top) const
{
    auto next = std::upper_bound(m_tops.begin(), m_tops.end(), top);
    return static_cast<Row>(std::max<std::ptrdiff_t>(0, next - m_tops.begin() - 1));
}

std::vector<ListView::Row> ListView::rowsInSight() const
{
    std::vector<Row> rows;
    if (bounds().isEmpty())
        return rows;
    for (auto row = rowBelow(m_offset);
        row + 1 < m_tops.size() && m_tops[row] < m_offset + bounds().height; ++row)
        rows.push_back(row);
    for (auto& [row, shift] : m_shifts) {
        if (rowFrame(row).intersects(bounds()))
            rows.push_back(row);
    }
    if (m_lifted)
        rows.push_back(*m_lifted);
    std::ranges::sort(rows);
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

void ListView::placeRows()
{
    auto rows = rowsInSight();
    auto before = rowsWithViews();
    for (auto row : before) {
        if (!std::ranges::binary_search(rows, row))
            spare(row);
    }
    for (auto row : rows) {
        if (!m_shown.contains(row))
            show(row);
        m_shown[row].view->setFrame(rowFrame(row));
    }
    if (auto* surface = host())
        surface->viewsDidMove();
    if (rows != before)
        tellChanged();
}

void ListView::tellChanged()
{
    if (onChanged)
        onChanged();
}

// MARK: Views

ListRowView* ListView::rowView(Row row) const
{
    auto found = m_shown.find(row);
    return found == m_shown.end() ? nullptr : found->second.view;
}

std::vector<ListView::Row> ListView::rowsWithViews() const
{
    std::vector<Row> rows;
    rows.reserve(m_shown.size());
    for (auto& [row, shown] : m_shown)
        rows.push_back(row);
    return rows;
}

void ListView::show(Row row)
{
    int kind = m_rows.rowKind(row);
    auto& spares = m_spare[kind];
    ListRowView* view = nullptr;
    if (spares.empty()) {
        view = &addChild(m_rows.makeRowView(kind));
        raiseChild(*m_scroller);
    } else {
        view = spares.back();
        spares.pop_back();
    }
    m_shown[row] = {view, kind};
    view->setSelected(m_selected == row);
    m_rows.fillRowView(*view, row);
}

void ListView::spare(Row row)
{
    auto found = m_shown.find(row);
    auto [view, kind] = found->second;
    m_shown.erase(found);
    view->setFrame({});
    view->setSelected(false);
    view->rowWillChange();
    m_spare[kind].push_back(view);
}

AccessibleState ListView::accessibleState() const
{
    AccessibleState state;
    state.role = AccessibleRole::list;
    state.name = m_name;
    return state;
}

std::vector<AccessibleElement*> ListView::accessibleChildren()
{
    std::vector<AccessibleElement*> elements;
    for (auto& [row, shown] : m_shown) {
        if (shown.view->isAccessible())
            elements.push_back(shown.view);
    }
    return elements;
}

void selectAndReveal(ListView& list, std::optional<ListView::Row> row)
{
    if (!row)
        return;
    list.select(row);
    list.revealRow(*row);
}

}
