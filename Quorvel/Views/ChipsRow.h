#pragma once

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Quorvel/Core/BarSize.h"
#include "Quorvel/Core/DisplayItem.h"
#include "Quorvel/Views/AttentionPulse.h"
#include "Quorvel/Views/ChipView.h"
#include "Quorvel/Views/Kit/Animation.h"
#include "Quorvel/Views/Kit/View.h"
#include "Quorvel/Views/PinView.h"
#include "Quorvel/Views/ReorderDrag.h"
#include "Quorvel/Views/RowScroll.h"
#include "Quorvel/Views/RowSlots.h"

namespace quorvel {

/// The row of pins and chips. Targets hold still while the pointer is over the row: a chip that
/// goes leaves an empty slot, a new one is added at the end, or takes the place of its
/// application's pin, and pins neither come nor go; an application whose windows become a group, or
/// a single one, keeps its slot. The row closes up when the pointer leaves; until then a row
/// without room for a new chip continues out of sight.
///
/// Chips shrink down to their icons, which are told apart more easily than titles of three letters;
/// then the row scrolls, with an arrow beside them at each end where there is more. It keeps the
/// chip of the focused window in sight from when the window got the focus until the user scrolls,
/// but never moves by itself while it is held still. Chips and pins can each be reordered among
/// their own kind.
class ChipsRow final : public View {
public:
    /// How long the others take to make room, and the dropped one to settle into its place.
    static constexpr Duration kMakeRoom = seconds(0.16);
    static constexpr Duration kFallIntoPlace = seconds(0.12);

    struct ChipEvents {
        std::function<void(const ChipView&)> clicked;
        std::function<void(const ChipView&)> menuRequested;
        std::function<void(const ChipView&)> closeRequested;
        std::function<void(const ChipView&, bool isHovered)> hovered;
        std::function<void(const ChipView&, bool areOver)> filesOver;
        /// A drag began or moved; the pointer is in the root's coordinates. True: it is over
        /// something else than the row that would take it.
        std::function<bool(const ChipView&, Point)> dragged;
        /// Dropped there. True: it was dropped on something else, and its order stays.
        std::function<bool(const ChipView&, Point)> dropped;
        std::function<void()> dragEnded;
        std::function<void(const std::string& id, std::optional<std::string> before)> moved;
        /// Whether it would become a pin, or its pin move, if it were dropped among the pins.
        std::function<bool(const ChipView&)> canPin;
        /// Dropped before that pin, or behind the last one.
        std::function<void(const ChipView&, std::optional<std::string> beforePin)> pinned;
    };
    struct PinEvents {
        std::function<void(const PinView&)> clicked;
        std::function<void(const PinView&)> menuRequested;
        std::function<void(const PinView&, std::vector<std::string> paths)> filesDropped;
        /// The identifiers in this drag are bundle identifiers.
        std::function<void(const std::string& bundleID, const ReorderDrag&)> moved;
        /// Dropped above the bar.
        std::function<void(const PinView&)> removed;
    };

    /// All it is given outlives it; whoever changes the palette has all of it painted anew.
    ChipsRow(const Palette&, const BarMetrics&, const Text&, Dispatch&);
    ~ChipsRow() override;

    void setItems(const std::vector<DisplayItem>&);
    void setPins(const std::vector<PinData>&);
    void setTitle(ChipView::Title);
    /// Chips tell a pointer that rests on them a title that they cut.
    void setTellsTitles(bool);
    void setReducesMotion(bool);
    void setFrameInterval(Duration);
    void setRightToLeft(bool);
    /// Whether the row may scroll by itself now. Not where nobody sees it, nor while the user is at
    /// something that belongs to a place in the row.
    void setFollowsFocus(bool);

    /// By this many points towards the end of the row.
    void scrollBy(double distance, ScrollUnit unit) { m_scroll.scrollBy(distance, unit); }
    /// Pins and chips to which a menu or a popup belongs.
    void setOpenItems(std::set<std::string> ids);
    /// Pins and chips, from 0; null if there are fewer.
    RowItem* itemAt(std::size_t place) const;
    /// The keys 1 to 9, on the items at those places.
    void setShowsNumbers(bool);
    /// Null if no window here has the focus.
    View* focusedChip() const;
    /// Null if there is none of this identifier.
    ChipView* chip(const std::string& id) const;
    /// The one that the keyboard walk has reached, if it has reached a chip.
    ChipView* keyFocusedChip() const;

    std::function<void(bool isHovered)> onHoverChanged;
    /// The arrows tell of another end, or of none, where something wants attention.
    std::function<void()> onArrowsChanged;
    ChipEvents onChip;
    PinEvents onPin;

    /// By identifier, in row order; the visible part of each, empty where none is.
    std::vector<std::pair<std::string, Rect>> chipFrames() const;
    std::vector<std::pair<std::string, Rect>> pinFrames() const;

private:
    class Items;
    enum class DragKind { chip, pin };

    void pointerEntered() override;
    void pointerExited() override;
    bool takesFiles() const override { return true; }
    bool acceptsFiles() const override { return false; }
    void filesEntered() override { filesAreOver(m_hasFilesOver = true); }
    void filesExited() override { filesAreOver(m_hasFilesOver = false); }
    void layout() override;
    Rect paintFrame() const override;

    /// True if a chip was made that has no place yet.
    bool updateChips(const std::vector<DisplayItem>&);
    /// While the row is held, the chip of a pin's application stands in the pin's place. True if
    /// that changed something.
    bool updateStandIns(const std::vector<DisplayItem>&);
    /// What is seen in the place of a pin.
    const std::string& shownFor(const std::string& pin) const;
    ChipView& makeChip(const std::string& id);
    PinView& makePin(const std::string& bundleID);
    void updatePins();
    void settle();
    bool isHeld() const { return m_isHovered || m_drag; }
    void updatePulse();
    /// True if another window has the focus.
    bool updateFocus(const std::vector<DisplayItem>&);
    bool isStill() const;
    /// As if not scrolled.
    struct Place {
        double start = 0;
        double width = 0;
    };
    /// The focused chip's, while the row is to keep it in sight.
    std::optional<Place> wantedInSight() const;
    void followFocus();
    /// Unless the user goes on at once.
    void followFocusSoon();
    void filesAreOver(bool);

    void reveal(const View&) override;
    void paint(Canvas&) const override;
    void arrange();
    void placeAll();
    void placePins();
    void place(View&, double slot, double width);
    void tellAttention();
    void numberItems();
    std::vector<RowItem*> itemsInOrder() const;
    RowItem* item(const std::string& id) const;
    Rect visibleFrame(const View&) const;

    /// What the drag of an item calls.
    std::function<void(DragPhase, const DragMove&)> dragOf(
        RowItem&, const std::string& id, DragKind);
    void beginDrag(RowItem&, const std::string& id, DragKind);
    void moveDrag(RowItem&, const DragMove&);
    double draggedWidth() const;
    /// Of the dragged one, if the pointer is to be at its middle.
    double slotUnder(Point inRoot) const;
    /// While the dragged one is held at an end of the row, what is beyond comes into sight.
    void scrollForDrag(RowItem&);
    void endDrag(RowItem&, DragPhase);
    /// True if that was the end of a drag which changes no order of its own kind.
    bool dropElsewhere(const ReorderDrag&);
    /// Where among the pins the dragged chip would become one.
    std::optional<std::size_t> pinPlaceAt(Point inRoot, const ChipView&) const;
    bool isAboveBar(Point inRoot) const;
    void showDragTarget(const DragMove&);
    void chipDragEnded(const ChipView&);
    void abandonDrag();
    void animateTo(const std::map<std::string, double>& targets, Duration);

    const Palette& m_palette;
    BarMetrics m_metrics;
    const Text& m_text;
    Dispatch& m_dispatch;
    Duration m_frameInterval = seconds(1.0 / 60);
    bool m_isRightToLeft = false;
    bool m_isHovered = false;
    bool m_reducesMotion = false;
    bool m_tellsTitles = false;
    bool m_showsNumbers = false;
    ChipView::Title m_title = ChipView::Title::window;
    double m_chipWidth = 0;
    Items& m_items; ///< holds pins and chips; the arrows stand beside it
    RowScroll m_scroll;
    RowSlots m_slots;
    std::map<std::string, ChipView*> m_chips;
    std::vector<PinData> m_wantedPins;
    std::vector<std::string> m_pinOrder; ///< as laid out, by identifier of the view
    std::map<std::string, PinView*> m_pins;
    std::map<std::string, std::string> m_standIns; ///< the chip, by the pin it stands in for
    std::map<std::string, double> m_places; ///< left edge of each slot, as if not scrolled
    std::map<std::string, double> m_shown; ///< current position of chips that are moving
    std::optional<ReorderDrag> m_drag;
    DragKind m_dragKind{};
    DragMove m_dragMove;
    double m_dragWidth = 0; ///< of what is in the hand
    bool m_isOverTarget = false; ///< what is in the hand is no wider than its icon there
    double m_scrollBeforeDrag = 0;
    std::set<std::string> m_open; ///< what they opened is on the screen
    std::optional<std::size_t> m_pinPlace; ///< where the dragged chip would become a pin
    std::set<std::string> m_asking; ///< the items that want attention
    std::optional<WindowID> m_focused;
    bool m_wantsFocusInSight = false;
    bool m_followsFocus = true;
    bool m_hasFilesOver = false; ///< between its items
    AttentionPulse m_pulse;
    Animation m_motion;
    WorkItem m_dragScroll;
    WorkItem m_followSoon;
};

}
