#include "Quorvel/Views/ChipsRow.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "Quorvel/Views/ChipsRowItems.h"
#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel {

namespace {

constexpr int kMostNumbers = 9;
constexpr double kPinMarkWidth = 2;
/// After a menu has closed, it takes a moment until the pointer is heard of again.
constexpr Duration kBeforeFollowing = seconds(0.1);

}

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
              for (auto& id : m_asking) {
                  if (auto* asking = item(id))
                      asking->setPulse(strength);
              }
          })
    , m_motion(dispatch)
{
    m_scroll.onScrolled = [this] { placeAll(); };
    m_scroll.onUserScrolls = [this] { m_wantsFocusInSight = false; };
}

ChipsRow::~ChipsRow() = default;

// MARK: What it shows

void ChipsRow::setItems(const std::vector<DisplayItem>& items)
{
    bool isOther = updateChips(items);
    isOther |= updateStandIns(items);
    std::set<std::string> placed;
    for (auto& [pin, chip] : m_standIns)
        placed.insert(chip);
    isOther |= m_slots.setItems(items, isHeld(), placed);
    bool isFocusOther = updateFocus(items);
    if (isOther)
        arrange();
    else if (isFocusOther)
        followFocus();
}

bool ChipsRow::updateStandIns(const std::vector<DisplayItem>& items)
{
    if (!isHeld())
        return !std::exchange(m_standIns, {}).empty();
    auto before = m_standIns;
    std::erase_if(m_standIns, [this](auto& entry) { return !m_chips.contains(entry.second); });
    for (auto& item : items) {
        auto id = displayItemID(item);
        auto pin = m_chips.at(id)->bundleID();
        if (!m_slots.contains(id) && std::ranges::find(m_pinOrder, pin) != m_pinOrder.end())
            m_standIns.try_emplace(std::move(pin), std::move(id));
    }
    return m_standIns != before;
}

const std::string& ChipsRow::shownFor(const std::string& pin) const
{
    auto standIn = m_standIns.find(pin);
    return standIn == m_standIns.end() ? pin : standIn->second;
}

bool ChipsRow::updateChips(const std::vector<DisplayItem>& items)
{
    std::set<std::string> present;
    bool hasNew = false;
    for (auto& item : items) {
        auto id = displayItemID(item);
        auto known = m_chips.find(id);
        hasNew |= known == m_chips.end();
        auto& chip = known == m_chips.end() ? makeChip(id) : *known->second;
        chip.setItem(item);
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
    updatePulse();
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
    updatePulse();
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
    updatePulse();
    if (std::exchange(m_pinOrder, order) != order)
        arrange();
}

void ChipsRow::updatePulse()
{
    std::set<std::string> asking;
    for (auto& [id, chip] : m_chips) {
        if (chip->asksForAttention())
            asking.insert(id);
    }
    for (auto& [id, pin] : m_pins) {
        if (pin->asksForAttention())
            asking.insert(id);
    }
    bool hasNew = !std::includes(m_asking.begin(), m_asking.end(), asking.begin(), asking.end());
    m_asking = std::move(asking);
    if (m_asking.empty())
        m_pulse.stop();
    else if (hasNew)
        m_pulse.start(m_reducesMotion);
    tellAttention();
}

ChipView& ChipsRow::makeChip(const std::string& id)
{
    auto& chip = m_items.addChild(std::make_unique<ChipView>(m_palette, m_metrics, m_text));
    chip.setRightToLeft(m_isRightToLeft);
    chip.setTitle(m_title);
    chip.setTellsTitle(m_tellsTitles);
    chip.setOpen(m_open.contains(id));
    chip.onTapped = [this, &chip] {
        if (onChip.clicked)
            onChip.clicked(chip);
    };
    chip.onSecondaryTapped = [this, &chip] {
        if (onChip.menuRequested)
            onChip.menuRequested(chip);
    };
    chip.onMiddleTapped = [this, &chip] {
        if (onChip.closeRequested)
            onChip.closeRequested(chip);
    };
    chip.onHover = [this](const ChipView& hovered, bool isHovered) {
        if (onChip.hovered && !m_drag)
            onChip.hovered(hovered, isHovered);
    };
    chip.onFilesOver = [this, &chip](bool areOver) {
        filesAreOver(areOver);
        if (onChip.filesOver)
            onChip.filesOver(chip, areOver);
    };
    chip.drag.onDrag = dragOf(chip, id, DragKind::chip);
    m_chips.emplace(id, &chip);
    return chip;
}

PinView& ChipsRow::makePin(const std::string& bundleID)
{
    auto& pin = m_items.addChild(std::make_unique<PinView>(m_palette, m_metrics, m_text));
    pin.setRightToLeft(m_isRightToLeft);
    pin.onTapped = [this, &pin] {
        if (onPin.clicked)
            onPin.clicked(pin);
    };
    pin.onSecondaryTapped = [this, &pin] {
        if (onPin.menuRequested)
            onPin.menuRequested(pin);
    };
    pin.onFilesOver = [this](bool areOver) { filesAreOver(areOver); };
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
    arrange();
}

void ChipsRow::setTellsTitles(bool tellsTitles)
{
    m_tellsTitles = tellsTitles;
    for (auto& [id, chip] : m_chips)
        chip->setTellsTitle(tellsTitles);
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
    arrange();
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
    m_scroll.stopGlide();
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
    m_standIns.clear();
    updatePins();
    m_slots.settle();
    arrange();
}

// MARK: What has the focus

bool ChipsRow::updateFocus(const std::vector<DisplayItem>& items)
{
    std::optional<WindowID> focused;
    for (auto& item : items) {
        auto* group = std::get_if<GroupedChipData>(&item);
        if (isFocused(item))
            focused = group ? group->windowIDs.front() : std::get<ChipData>(item).id;
    }
    bool isOther = std::exchange(m_focused, focused) != focused;
    m_wantsFocusInSight |= isOther;
    return isOther;
}

void ChipsRow::setFollowsFocus(bool follows)
{
    if (std::exchange(m_followsFocus, follows) == follows)
        return;
    if (follows)
        followFocusSoon();
    else
        m_scroll.stopGlide();
}

/// While files are dragged, nothing is heard of the pointer.
bool ChipsRow::isStill() const
{
    auto hasFilesOver = [](auto& entry) { return entry.second->hasFilesOver(); };
    return !m_followsFocus || isHeld() || m_hasFilesOver || bounds().isEmpty()
        || std::ranges::any_of(m_chips, hasFilesOver) || std::ranges::any_of(m_pins, hasFilesOver);
}

std::optional<ChipsRow::Place> ChipsRow::wantedInSight() const
{
    auto focused = std::ranges::find_if(
        m_chips, [](auto& entry) { return isFocused(entry.second->item()); });
    if (!m_wantsFocusInSight || focused == m_chips.end())
        return {};
    auto place = m_places.find(focused->first);
    if (place == m_places.end())
        return {};
    return Place{place->second, focused->second->frame().width};
}

void ChipsRow::followFocus()
{
    auto wanted = wantedInSight();
    if (wanted && !isStill())
        m_scroll.glideTo(wanted->start, wanted->width);
}

void ChipsRow::followFocusSoon()
{
    m_followSoon = {};
    auto wanted = wantedInSight();
    if (wanted && !m_scroll.isInSight(wanted->start, wanted->width))
        m_followSoon = m_dispatch.main().after(kBeforeFollowing, [this] { followFocus(); });
}

void ChipsRow::filesAreOver(bool areOver)
{
    if (areOver)
        m_scroll.stopGlide();
    else
        followFocusSoon();
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

/// What has another size is not seen on its way.
void ChipsRow::layout()
{
    arrange();
    m_scroll.finishGlide();
}

void ChipsRow::arrange()
{
    double pinWidth = ChipView::iconWidth(m_metrics);
    double x = 0;
    m_places.clear();
    for (auto& id : m_pinOrder) {
        m_places[id] = m_places[shownFor(id)] = x;
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
    for (auto& [pin, chip] : m_standIns)
        m_chips.at(chip)->setHasRoomForTitle(false);
    m_scroll.setContent(std::max(0.0, x - m_metrics.chipSpacing),
        std::max(m_chipWidth, pinWidth) + m_metrics.chipSpacing);
    placeAll();
    numberItems();
    followFocus();
}

void ChipsRow::placeAll()
{
    m_scroll.placeArrows(isHeld());
    m_items.setFrame(m_scroll.roomForItems());
    auto shownAt = [&](const std::string& id) {
        auto moving = m_shown.find(id);
        return moving == m_shown.end() ? m_places.at(id) : moving->second;
    };
    placePins();
    for (auto& id : m_slots.slots()) {
        bool isDragged = m_drag && m_drag->draggedID() == id;
        if (auto chip = m_chips.find(id); chip != m_chips.end())
            place(*chip->second, shownAt(id), isDragged ? draggedWidth() : m_chipWidth);
    }
    tellAttention();
    if (auto* host_ = host())
        host_->viewsDidMove();
}

void ChipsRow::placePins()
{
    for (auto& pin : m_pinOrder) {
        auto& shown = shownFor(pin);
        if (shown != pin)
            m_pins.at(pin)->setFrame({});
        auto moving = m_shown.find(shown);
        if (moving == m_shown.end())
            moving = m_shown.find(pin);
        place(*item(shown), moving == m_shown.end() ? m_places.at(pin) : moving->second,
            ChipView::iconWidth(m_metrics));
    }
}

void ChipsRow::place(View& view, double slot, double width)
{
    double left = slot - m_scroll.offset();
    double x = m_isRightToLeft ? bounds().width - left - width : left;
    view.setFrame({x - m_items.frame().x, 0, width, bounds().height});
}

/// What is seen by half is seen.
void ChipsRow::tellAttention()
{
    bool isLeft = false;
    bool isRight = false;
    for (auto& id : m_asking) {
        auto* asking = item(id);
        if (!asking || (m_drag && m_drag->draggedID() == id))
            continue;
        double middle = asking->frame().centre().x;
        isLeft |= middle < 0;
        isRight |= middle > m_items.bounds().width;
    }
    if (m_scroll.setAttention(isLeft, isRight) && onArrowsChanged)
        onArrowsChanged();
}

void ChipsRow::reveal(const View& view)
{
    m_scroll.reveal(view.frame().translated(m_items.frame().x, 0));
}

std::vector<RowItem*> ChipsRow::itemsInOrder() const
{
    std::vector<RowItem*> items;
    items.reserve(m_pinOrder.size() + m_slots.slots().size());
    for (auto& pin : m_pinOrder)
        items.push_back(item(shownFor(pin)));
    for (auto& id : m_slots.slots()) {
        if (auto* found = item(id))
            items.push_back(found);
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

/// The gap among the pins where the dragged chip would become one.
void ChipsRow::paint(Canvas& canvas) const
{
    if (!m_pinPlace)
        return;
    double slot = static_cast<double>(*m_pinPlace)
        * (ChipView::iconWidth(m_metrics) + m_metrics.chipSpacing);
    double left = std::max(0.0, slot - (m_metrics.chipSpacing + kPinMarkWidth) / 2);
    left += m_items.frame().x - m_scroll.offset();
    Rect mark = bounds().centred({kPinMarkWidth, m_metrics.chipHeight});
    mark.x = m_isRightToLeft ? bounds().width - left - kPinMarkWidth : left;
    canvas.fillRounded(mark, kPinMarkWidth / 2, m_palette.accent);
}

Rect ChipsRow::paintFrame() const
{
    return m_drag ? Items::kAnywhere : frame();
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
    for (auto& pin : m_pinOrder) {
        if (auto chip = m_chips.find(shownFor(pin)); chip != m_chips.end())
            frames.emplace_back(chip->first, visibleFrame(*chip->second));
    }
    for (auto& id : m_slots.slots()) {
        if (auto chip = m_chips.find(id); chip != m_chips.end())
            frames.emplace_back(id, visibleFrame(*chip->second));
    }
    return frames;
}

std::vector<std::pair<std::string, Rect>> ChipsRow::pinFrames() const
{
    std::vector<std::pair<std::string, Rect>> frames;
    for (auto& id : m_pinOrder) {
        if (!m_standIns.contains(id))
            frames.emplace_back(id, visibleFrame(*m_pins.at(id)));
    }
    return frames;
}

}
