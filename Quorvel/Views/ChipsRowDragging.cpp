// Chips and pins in the hand.

#include "Quorvel/Views/ChipsRow.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "Quorvel/Views/ChipsRowItems.h"

namespace quorvel {

namespace {

constexpr double kDragScrollSpeed = 400; ///< points a second
/// A pin is taken off the bar by dragging it this far above its upper edge.
constexpr double kAboveBar = 24;

}

std::function<void(DragPhase, const DragMove&)> ChipsRow::dragOf(
    RowItem& item, const std::string& id, DragKind kind)
{
    return [this, &item, id, kind](DragPhase phase, const DragMove& move) {
        if (!m_drag && phase == DragPhase::moved)
            beginDrag(item, id, kind);
        if (!m_drag || m_drag->draggedID() != id)
            return;
        if (phase == DragPhase::moved)
            moveDrag(item, move);
        else
            endDrag(item, phase);
    };
}

void ChipsRow::beginDrag(RowItem& lifted, const std::string& id, DragKind kind)
{
    ReorderDrag::Frames frames;
    std::vector<std::string> visible;
    auto order = kind == DragKind::chip ? m_slots.slots() : m_pinOrder;
    if (std::ranges::find(order, id) == order.end())
        order.insert(order.begin(), id); // it stands in a pin's place
    for (auto& other : order) {
        if (item(other)) {
            // What stands in for a pin lies over it.
            double width = kind == DragKind::pin ? ChipView::iconWidth(m_metrics)
                                                 : item(other)->frame().width;
            frames[other] = {m_places.at(other), 0, width, bounds().height};
            visible.push_back(other);
        }
    }
    m_motion.stop();
    m_scroll.stop();
    m_shown.clear();
    m_dragKind = kind;
    m_scrollBeforeDrag = m_scroll.offset();
    m_drag.emplace(id, std::move(frames), std::move(visible));
    m_items.raiseChild(lifted);
    m_items.setFree(true);
    m_dragWidth = lifted.frame().width;
    lifted.setLift(RowItem::Lift::inHand);
}

void ChipsRow::moveDrag(RowItem& lifted, const DragMove& move)
{
    int before = m_drag->insertionIndex();
    m_dragMove = move;
    auto& [x, y] = move.translation;
    m_drag->setTranslation(
        {(m_isRightToLeft ? -x : x) + m_scroll.offset() - m_scrollBeforeDrag, y});
    auto& id = m_drag->draggedID();
    m_isOverTarget = m_dragKind == DragKind::chip && onChip.dragged
        && onChip.dragged(*m_chips.at(id), move.pointer);
    lifted.setLift(m_isOverTarget ? RowItem::Lift::overTarget : RowItem::Lift::inHand);
    m_shown[id] = m_isOverTarget ? slotUnder(move.pointer) : m_drag->draggedX();
    if (m_drag->insertionIndex() != before)
        animateTo(m_drag->slotsOfOthers(), kMakeRoom);
    place(lifted, m_shown[id], draggedWidth());
    showDragTarget(move);
    scrollForDrag(lifted);
}

double ChipsRow::draggedWidth() const
{
    return m_isOverTarget ? ChipView::iconWidth(m_metrics) : m_dragWidth;
}

double ChipsRow::slotUnder(Point inRoot) const
{
    auto row = frameInRoot();
    double middle = m_isRightToLeft ? row.maxX() - inRoot.x : inRoot.x - row.x;
    return middle - draggedWidth() / 2 + m_scroll.offset();
}

void ChipsRow::scrollForDrag(RowItem& lifted)
{
    double leading = m_drag->draggedX() - m_scroll.offset();
    bool isAtStart = leading < 0 && m_scroll.offset() > 0;
    bool isAtEnd
        = leading + lifted.frame().width > bounds().width && m_scroll.offset() < m_scroll.maximum();
    if (m_isOverTarget || (!isAtStart && !isAtEnd)) {
        m_dragScroll = {};
        return;
    }
    if (m_dragScroll.isPending())
        return;
    m_dragScroll = m_dispatch.main().after(m_frameInterval, [this, &lifted, isAtStart] {
        m_dragScroll = {};
        double step = kDragScrollSpeed * std::chrono::duration<double>(m_frameInterval).count();
        m_scroll.scrollBy(isAtStart ? -step : step);
        moveDrag(lifted, m_dragMove);
    });
}

void ChipsRow::endDrag(RowItem& lifted, DragPhase phase)
{
    auto drag = *std::exchange(m_drag, std::nullopt);
    m_dragScroll = {};
    m_isOverTarget = false;
    m_shown[drag.draggedID()] = drag.draggedX();
    lifted.setLift(RowItem::Lift::none); // while it may still paint outside the row
    m_items.setFree(false);
    auto* chip = m_dragKind == DragKind::chip ? m_chips.at(drag.draggedID()) : nullptr;
    bool isDropped = phase == DragPhase::dropped && !dropElsewhere(drag);
    showDragTarget({});
    if (isDropped && chip) {
        m_slots.arrange(drag.previewOrder());
        std::erase_if(m_standIns, [&](auto& entry) { return entry.second == drag.draggedID(); });
        if (onChip.moved)
            onChip.moved(
                drag.draggedID(), drag.dropTargetID([this](auto& id) { return item(id); }));
    } else if (isDropped) {
        m_pinOrder = drag.previewOrder();
        if (onPin.moved)
            onPin.moved(drag.draggedID(), drag);
    }
    if (chip)
        chipDragEnded(*chip);
    arrange();
    std::map<std::string, double> targets;
    for (auto& [id, x] : m_shown) {
        if (m_places.contains(id))
            targets[id] = m_places.at(id);
    }
    animateTo(targets, kFallIntoPlace);
}

bool ChipsRow::dropElsewhere(const ReorderDrag& drag)
{
    auto& pointer = m_dragMove.pointer;
    if (m_dragKind == DragKind::pin) {
        bool isOff = isAboveBar(pointer) && onPin.removed;
        if (isOff)
            onPin.removed(*m_pins.at(drag.draggedID()));
        return isOff;
    }
    auto& chip = *m_chips.at(drag.draggedID());
    if (onChip.dropped && onChip.dropped(chip, pointer))
        return true;
    auto place = pinPlaceAt(pointer, chip);
    if (!place || !onChip.pinned)
        return false;
    onChip.pinned(
        chip, *place < m_pinOrder.size() ? std::optional{m_pinOrder[*place]} : std::nullopt);
    return true;
}

bool ChipsRow::isAboveBar(Point inRoot) const
{
    return inRoot.y < frameInRoot().y - kAboveBar;
}

std::optional<std::size_t> ChipsRow::pinPlaceAt(Point inRoot, const ChipView& chip) const
{
    auto row = frameInRoot();
    if (m_pinOrder.empty() || !row.contains(inRoot) || !onChip.canPin || !onChip.canPin(chip))
        return {};
    double x = m_isRightToLeft ? row.maxX() - inRoot.x : inRoot.x - row.x;
    double place = (x - m_items.frame().x + m_scroll.offset())
        / (ChipView::iconWidth(m_metrics) + m_metrics.chipSpacing);
    if (place < 0 || place >= static_cast<double>(m_pinOrder.size()))
        return {};
    return static_cast<std::size_t>(std::round(place));
}

/// What a drop here would do besides changing the order.
void ChipsRow::showDragTarget(const DragMove& move)
{
    auto before = m_pinPlace;
    bool isChip = m_drag && m_dragKind == DragKind::chip;
    m_pinPlace = isChip ? pinPlaceAt(move.pointer, *m_chips.at(m_drag->draggedID())) : std::nullopt;
    if (m_pinPlace != before)
        invalidate();
    for (auto& [id, pin] : m_pins) {
        bool isInHand = m_drag && m_dragKind == DragKind::pin && m_drag->draggedID() == id;
        pin->setLeaving(isInHand && isAboveBar(move.pointer));
    }
}

void ChipsRow::chipDragEnded(const ChipView& chip)
{
    if (onChip.dragEnded)
        onChip.dragEnded();
    // What the pointer left during the drag has not been told yet.
    if (!chip.isHovered() && onChip.hovered)
        onChip.hovered(chip, false);
}

/// The dragged one is about to vanish.
void ChipsRow::abandonDrag()
{
    if (auto* dragged = item(m_drag->draggedID()))
        dragged->setLift(RowItem::Lift::none);
    bool wasChip = m_dragKind == DragKind::chip;
    m_drag.reset();
    m_isOverTarget = false;
    showDragTarget({});
    m_items.setFree(false);
    m_dragScroll = {};
    m_motion.stop();
    m_shown.clear();
    placeAll();
    if (wasChip && onChip.dragEnded)
        onChip.dragEnded();
}

void ChipsRow::animateTo(const std::map<std::string, double>& targets, Duration length)
{
    std::map<std::string, std::pair<double, double>> ways;
    for (auto& [id, to] : targets) {
        auto moving = m_shown.find(id);
        ways[id] = {moving == m_shown.end() ? m_places[id] : moving->second, to};
    }
    m_motion.start(m_reducesMotion ? Duration::zero() : length, m_frameInterval,
        [this, ways = std::move(ways)](double share) {
            for (auto& [id, way] : ways)
                m_shown[id] = way.first + (way.second - way.first) * share;
            if (share == 1 && !m_drag)
                m_shown.clear();
            placeAll();
            if (share == 1 && !m_drag)
                settle();
        });
}

}
