#include "Quorvel/Views/ChipsRow.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace quorvel {

namespace {

constexpr double kDragScrollSpeed = 400; ///< points a second
constexpr int kMostNumbers = 9;

// What is dragged may be anywhere on the bar.
constexpr Rect kAnywhere{-1e6, -1e6, 2e6, 2e6};

}

/// Where pins and chips are seen.
class ChipsRow::Items final : public View {
public:
    /// One of them is dragged out, above everything else.
    void setFree(bool isFree) { m_isFree = isFree; }

private:
    bool clipsChildren() const override { return true; }
    bool isLifted() const override { return m_isFree; }
    Rect paintFrame() const override { return m_isFree ? kAnywhere : frame(); }

    bool m_isFree = false;
};

ChipsRow::ChipsRow(
    const Palette& palette, const BarMetrics& metrics, const Text& text, Dispatch& dispatch)
    : m_palette(palette)
    , m_metrics(metrics)
    , m_text(text)
    , m_dispatch(dispatch)
    , m_items(addChild(std::make_unique<Items>()))
    , m_scroll(*this, palette, dispatch)
    , m_pulse(dispatch,
          [this](double strength) {
              for (auto& id : m_asking)
                  m_chips.at(id)->setPulse(strength);
          })
    , m_motion(dispatch)
{
    m_scroll.onScrolled = [this] { placeAll(); };
}

ChipsRow::~ChipsRow() = default;

// MARK: What it shows

void ChipsRow::setItems(const std::vector<DisplayItem>& items)
{
    bool hasNew = updateChips(items);
    bool isOther = m_slots.setItems(items, isHeld());
    if (hasNew || isOther)
        layout();
}

bool ChipsRow::updateChips(const std::vector<DisplayItem>& items)
{
    std::set<std::string> present;
    std::set<std::string> asking;
    bool hasNew = false;
    for (auto& item : items) {
        auto id = displayItemID(item);
        auto known = m_chips.find(id);
        hasNew |= known == m_chips.end();
        auto& chip = known == m_chips.end() ? makeChip(id) : *known->second;
        chip.setItem(item);
        if (wantsAttention(item))
            asking.insert(id);
        present.insert(std::move(id));
    }
    if (m_drag && m_dragKind == DragKind::chip && !present.contains(m_drag->draggedID()))
        abandonDrag();
    std::erase_if(m_chips, [&](auto& entry) {
        if (present.contains(entry.first))
            return false;
        m_items.removeChild(*entry.second);
        return true;
    });
    updatePulse(std::move(asking));
    return hasNew;
}

void ChipsRow::setPins(const std::vector<PinData>& pins)
{
    m_wantedPins = pins;
    if (!isHeld())
        return updatePins();
    // They neither come nor go, but what they say of themselves is today's.
    for (auto& [id, view] : m_pins) {
        auto wanted = std::ranges::find(pins, id, &PinData::bundleID);
        if (wanted != pins.end())
            view->setPin(*wanted);
        else
            view->setLaunching(false);
    }
}

void ChipsRow::updatePins()
{
    std::vector<std::string> order;
    for (auto& pin : m_wantedPins) {
        auto known = m_pins.find(pin.bundleID);
        (known == m_pins.end() ? makePin(pin.bundleID) : *known->second).setPin(pin);
        order.push_back(pin.bundleID);
    }
    std::erase_if(m_pins, [&](auto& entry) {
        if (std::ranges::find(order, entry.first) != order.end())
            return false;
        m_items.removeChild(*entry.second);
        return true;
    });
    if (std::exchange(m_pinOrder, order) != order)
        layout();
}

void ChipsRow::updatePulse(std::set<std::string> asking)
{
    bool hasNew = !std::includes(m_asking.begin(), m_asking.end(), asking.begin(), asking.end());
    m_asking = std::move(asking);
    if (m_asking.empty())
        m_pulse.stop();
    else if (hasNew)
        m_pulse.start(m_reducesMotion);
}

ChipView& ChipsRow::makeChip(const std::string& id)
{
    auto& chip = m_items.addChild(std::make_unique<ChipView>(m_palette, m_metrics, m_text));
    chip.setRightToLeft(m_isRightToLeft);
    chip.setTitle(m_title);
    chip.setOpen(m_open.contains(id));
    chip.onClick = [this](const ChipView& clicked, ChipView::Click click) {
        if (onChip.clicked)
            onChip.clicked(clicked, click);
    };
    chip.onHover = [this](const ChipView& hovered, bool isHovered) {
        if (onChip.hovered && !m_drag)
            onChip.hovered(hovered, isHovered);
    };
    chip.onFilesOver = [this](const ChipView& target, bool areOver) {
        if (onChip.filesOver)
            onChip.filesOver(target, areOver);
    };
    chip.drag.onDrag = dragOf(chip, id, DragKind::chip);
    m_chips.emplace(id, &chip);
    return chip;
}

PinView& ChipsRow::makePin(const std::string& bundleID)
{
    auto& pin = m_items.addChild(std::make_unique<PinView>(m_palette, m_metrics));
    pin.setRightToLeft(m_isRightToLeft);
    pin.onTapped = [this, &pin] {
        if (onPin.clicked)
            onPin.clicked(pin);
    };
    pin.onSecondaryTapped = [this, &pin] {
        if (onPin.menuRequested)
            onPin.menuRequested(pin);
    };
    pin.onFilesDropped = [this](const PinView& target, std::vector<std::string> paths) {
        if (onPin.filesDropped)
            onPin.filesDropped(target, std::move(paths));
    };
    pin.drag.onDrag = dragOf(pin, bundleID, DragKind::pin);
    m_pins.emplace(bundleID, &pin);
    return pin;
}

void ChipsRow::setTitle(ChipView::Title title)
{
    if (std::exchange(m_title, title) == title)
        return;
    for (auto& [id, chip] : m_chips)
        chip->setTitle(title);
    layout();
}

void ChipsRow::setRightToLeft(bool isRightToLeft)
{
    if (std::exchange(m_isRightToLeft, isRightToLeft) == isRightToLeft)
        return;
    for (auto& [id, chip] : m_chips)
        chip->setRightToLeft(isRightToLeft);
    for (auto& [id, pin] : m_pins)
        pin->setRightToLeft(isRightToLeft);
    m_scroll.setRightToLeft(isRightToLeft);
    layout();
}

void ChipsRow::setReducesMotion(bool reducesMotion)
{
    m_reducesMotion = reducesMotion;
    m_scroll.setReducesMotion(reducesMotion);
}

void ChipsRow::setFrameInterval(Duration interval)
{
    m_frameInterval = interval;
    m_scroll.setFrameInterval(interval);
}

// MARK: The pointer

void ChipsRow::pointerEntered()
{
    m_isHovered = true;
    if (onHoverChanged)
        onHoverChanged(true);
}

void ChipsRow::pointerExited()
{
    m_isHovered = false;
    settle();
    if (onHoverChanged)
        onHoverChanged(false);
}

void ChipsRow::settle()
{
    if (isHeld())
        return;
    updatePins();
    m_slots.settle();
    layout();
}

View* ChipsRow::focusedChip() const
{
    auto found = std::ranges::find_if(
        m_chips, [](auto& entry) { return isFocused(entry.second->item()); });
    return found == m_chips.end() ? nullptr : found->second;
}

ChipView* ChipsRow::chip(const std::string& id) const
{
    auto found = m_chips.find(id);
    return found == m_chips.end() ? nullptr : found->second;
}

ChipView* ChipsRow::keyFocusedChip() const
{
    auto found
        = std::ranges::find_if(m_chips, [](auto& entry) { return entry.second->hasKeyFocus(); });
    return found == m_chips.end() ? nullptr : found->second;
}

void ChipsRow::setOpenItems(std::set<std::string> ids)
{
    m_open = std::move(ids);
    for (auto& [id, chip] : m_chips)
        chip->setOpen(m_open.contains(id));
    for (auto& [id, pin] : m_pins)
        pin->setOpen(m_open.contains(id));
}

// MARK: Where everything is

void ChipsRow::layout()
{
    double pinWidth = ChipView::iconWidth(m_metrics);
    double x = 0;
    m_places.clear();
    for (auto& id : m_pinOrder) {
        m_places[id] = x;
        x += pinWidth + m_metrics.chipSpacing;
    }
    if (!m_pinOrder.empty() && !m_slots.slots().empty())
        x += m_metrics.chipSpacing;
    if (!m_slots.slots().empty()) {
        auto count = static_cast<double>(m_slots.slots().size());
        double room = std::floor(
            (bounds().width - x + m_metrics.chipSpacing) / count - m_metrics.chipSpacing);
        bool hasTitle = m_title != ChipView::Title::none;
        double most = hasTitle ? ChipView::fullWidth(m_metrics) : pinWidth;
        // A full row under the pointer goes on out of sight: what is aimed at must not move.
        if (!isHeld() || m_chipWidth == 0 || m_chipWidth > most)
            m_chipWidth = std::clamp(room, pinWidth, most);
        for (auto& id : m_slots.slots()) {
            m_places[id] = x;
            x += m_chipWidth + m_metrics.chipSpacing;
        }
    }
    // A row of icons with a title here and there looks torn.
    bool haveTitles = std::ranges::all_of(
        m_chips, [this](auto& entry) { return m_chipWidth >= entry.second->leastTitledWidth(); });
    for (auto& [id, chip] : m_chips)
        chip->setHasRoomForTitle(haveTitles);
    m_scroll.setContent(std::max(0.0, x - m_metrics.chipSpacing),
        std::max(m_chipWidth, pinWidth) + m_metrics.chipSpacing);
    placeAll();
    numberItems();
}

void ChipsRow::placeAll()
{
    m_scroll.placeArrows(isHeld());
    m_items.setFrame(m_scroll.roomForItems());
    auto shownAt = [&](const std::string& id) {
        auto moving = m_shown.find(id);
        return moving == m_shown.end() ? m_places.at(id) : moving->second;
    };
    for (auto& id : m_pinOrder)
        place(*m_pins.at(id), shownAt(id), ChipView::iconWidth(m_metrics));
    for (auto& id : m_slots.slots()) {
        if (auto chip = m_chips.find(id); chip != m_chips.end())
            place(*chip->second, shownAt(id), m_chipWidth);
    }
    if (auto* host_ = host())
        host_->viewsDidMove();
}

void ChipsRow::place(View& view, double slot, double width)
{
    double left = slot - m_scroll.offset();
    double x = m_isRightToLeft ? bounds().width - left - width : left;
    view.setFrame({x - m_items.frame().x, 0, width, bounds().height});
}

void ChipsRow::reveal(const View& view)
{
    m_scroll.reveal(view.frame().translated(m_items.frame().x, 0));
}

std::vector<RowItem*> ChipsRow::itemsInOrder() const
{
    std::vector<RowItem*> items;
    for (auto* order : {&m_pinOrder, &m_slots.slots()}) {
        for (auto& id : *order) {
            if (auto* found = item(id))
                items.push_back(found);
        }
    }
    return items;
}

RowItem* ChipsRow::itemAt(std::size_t place) const
{
    auto items = itemsInOrder();
    return place < items.size() ? items[place] : nullptr;
}

void ChipsRow::setShowsNumbers(bool showsNumbers)
{
    if (std::exchange(m_showsNumbers, showsNumbers) != showsNumbers)
        numberItems();
}

void ChipsRow::numberItems()
{
    int number = 0;
    for (auto* numbered : itemsInOrder()) {
        ++number;
        numbered->setNumber(m_showsNumbers && number <= kMostNumbers ? number : 0);
    }
}

RowItem* ChipsRow::item(const std::string& id) const
{
    if (auto chip = m_chips.find(id); chip != m_chips.end())
        return chip->second;
    auto pin = m_pins.find(id);
    return pin == m_pins.end() ? nullptr : pin->second;
}

Rect ChipsRow::paintFrame() const
{
    return m_drag ? kAnywhere : frame();
}

Rect ChipsRow::visibleFrame(const View& view) const
{
    auto visible = view.frame().intersected(m_items.bounds());
    auto place = m_items.frameInRoot();
    return visible.isEmpty() ? Rect{} : visible.translated(place.x, place.y);
}

std::vector<std::pair<std::string, Rect>> ChipsRow::chipFrames() const
{
    std::vector<std::pair<std::string, Rect>> frames;
    for (auto& id : m_slots.slots()) {
        if (auto chip = m_chips.find(id); chip != m_chips.end())
            frames.emplace_back(id, visibleFrame(*chip->second));
    }
    return frames;
}

std::vector<std::pair<std::string, Rect>> ChipsRow::pinFrames() const
{
    std::vector<std::pair<std::string, Rect>> frames;
    for (auto& id : m_pinOrder)
        frames.emplace_back(id, visibleFrame(*m_pins.at(id)));
    return frames;
}

// MARK: Dragging

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
    for (auto& other : kind == DragKind::chip ? m_slots.slots() : m_pinOrder) {
        if (auto* sibling = item(other)) {
            frames[other] = {m_places.at(other), 0, sibling->frame().width, bounds().height};
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
    lifted.setLifted(true);
}

void ChipsRow::moveDrag(RowItem& lifted, const DragMove& move)
{
    int before = m_drag->insertionIndex();
    m_dragMove = move;
    auto& [x, y] = move.translation;
    m_drag->setTranslation(
        {(m_isRightToLeft ? -x : x) + m_scroll.offset() - m_scrollBeforeDrag, y});
    auto& id = m_drag->draggedID();
    m_shown[id] = m_drag->draggedX();
    if (m_drag->insertionIndex() != before)
        animateTo(m_drag->slotsOfOthers(), kMakeRoom);
    lifted.invalidateLifted();
    place(lifted, m_shown[id], lifted.frame().width);
    lifted.invalidateLifted();
    if (m_dragKind == DragKind::chip && onChip.dragged)
        onChip.dragged(*m_chips.at(id), move.pointer);
    scrollForDrag(lifted);
}

void ChipsRow::scrollForDrag(RowItem& lifted)
{
    double leading = m_drag->draggedX() - m_scroll.offset();
    bool isAtStart = leading < 0 && m_scroll.offset() > 0;
    bool isAtEnd
        = leading + lifted.frame().width > bounds().width && m_scroll.offset() < m_scroll.maximum();
    if (!isAtStart && !isAtEnd) {
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
    lifted.invalidateLifted(); // while it may still paint outside the row
    auto drag = *std::exchange(m_drag, std::nullopt);
    m_dragScroll = {};
    lifted.setLifted(false);
    m_items.setFree(false);
    auto* chip = m_dragKind == DragKind::chip ? m_chips.at(drag.draggedID()) : nullptr;
    bool isDropped = phase == DragPhase::dropped;
    if (isDropped && chip && onChip.dropped && onChip.dropped(*chip, m_dragMove.pointer))
        isDropped = false; // on something else
    if (isDropped && chip) {
        m_slots.arrange(drag.previewOrder());
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
    layout();
    std::map<std::string, double> targets;
    for (auto& [id, x] : m_shown) {
        if (m_places.contains(id))
            targets[id] = m_places.at(id);
    }
    animateTo(std::move(targets), kFallIntoPlace);
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
        dragged->invalidateLifted();
    bool wasChip = m_dragKind == DragKind::chip;
    m_drag.reset();
    m_items.setFree(false);
    m_dragScroll = {};
    m_motion.stop();
    m_shown.clear();
    placeAll();
    if (wasChip && onChip.dragEnded)
        onChip.dragEnded();
}

void ChipsRow::animateTo(std::map<std::string, double> targets, Duration length)
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
