#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Quorvel/Core/Bar.h"
#include "Quorvel/Core/BarViewModel.h"
#include "Quorvel/Platform/Application.h"
#include "Quorvel/Views/ChipPopups.h"
#include "Quorvel/Views/ChipView.h"
#include "Quorvel/Views/Kit/Palette.h"
#include "Quorvel/Views/Kit/View.h"
#include "Quorvel/Views/PinView.h"

namespace quorvel {

class BarBackground;
class BarNote;
class ChipsRow;
class MenuButton;
class ReorderDrag;
class ShowDesktopButton;
class SpaceSwitcher;
struct ChipMenuContext;
struct SpaceCellData;

/// The content of one bar: menu button, pins and chips of its space, space switcher, show-desktop
/// button; and the effects of hovering, clicking and dragging on them. Main thread.
class BarContentView final : public View {
public:
    /// What it refers to outlives the view.
    struct Inputs : BarContents {
        const Platform& platform;
        PanelSurface& surface;
        SpaceID spaceID{};
        DisplayNumber display{};
    };

    /// How long files must rest on a chip before its window comes to the front.
    static constexpr Duration kSpringDelay = seconds(0.5);

    explicit BarContentView(Inputs);
    ~BarContentView() override;

    /// A bar that is not seen only notes what changes, and catches up when it is shown again.
    void setShown(bool);

    std::function<void(bool isHovered)> onChipsAreaHoverChanged;
    /// The answer of `isBusy` may have changed.
    std::function<void()> onBusyChanged;
    /// What its views show may be other than before.
    std::function<void()> onShownChanged;
    /// What a drop at this place (points of the bar, origin top left) would do; empty: nothing to
    /// tell.
    std::function<void(std::string text, const Rect& place)> onDropTold;
    /// Opens a menu beside a rectangle (points of the bar, origin top left).
    std::function<void(Menu, const Rect&, std::function<void(MenuEnding)> onClosed)>
        onMenuRequested;

    // In points of the bar, origin top left.
    Rect menuButtonFrame() const;
    Rect showDesktopButtonFrame() const;
    Rect spaceListButtonFrame() const;
    /// By chip identifier, in row order.
    std::vector<std::pair<std::string, Rect>> chipFrames() const;
    /// By bundle identifier.
    std::vector<std::pair<std::string, Rect>> pinFrames() const;
    std::vector<std::pair<SpaceID, Rect>> spaceCellFrames() const;
    /// Null while none is open.
    const ThumbnailPopup* thumbnailPopup() const { return m_popups.popup(); }
    /// A menu or a popup is open, or a note is to be read.
    bool isBusy() const;

    void activateWindowDeferred(WindowID);
    void dismissThumbnailPopupImmediate() { m_popups.dismiss(); }
    void triggerShowDesktop();
    /// Towards the trailing end.
    void scrollSideways(double distance, ScrollUnit);
    void useItem(std::size_t place, ItemUse);
    /// While the keyboard walks the bar, keys with numbers use its items; with Shift they ask
    /// for another window.
    void setShowsNumbers(bool);
    void keyboardDidLeave();
    void setLauncherOpen(bool);
    bool isRightToLeft() const;

private:
    /// What it shows, each part with a source of its own; in the order of catching up.
    enum class Part { appearance, settings, layout, spaces, pins, pinStates, items };

    bool takesPointer() const override { return true; }
    bool keyPressed(const KeyEvent&) override;
    View* preferredKeyView() override;
    void showContextMenu() override;
    std::string accessibleID() const override { return "bar"; }
    AccessibleState accessibleState() const override;
    void layout() override;

    void openActivityMonitor();
    void showBarMenu(const Rect& anchor);
    void connectButtons();
    void connectRow();
    void connectPins();
    void connectPopups();
    void subscribe();
    void partDidChange(Part);
    void itemsDidChange();
    void pinsDidChange();
    void pinStatesDidChange();
    /// Of pinned applications, and of others that are being started: those without a window here.
    std::vector<std::string> wantedPins() const;
    bool arePinsCurrent() const;
    void spacesDidChange();
    void settingsDidChange();
    void appearanceDidChange();
    void updateBackground();

    /// Says what went wrong, if the bar can be seen.
    void showNote(std::string text);
    void chipClicked(const ChipView&);
    void openChipMenu(const ChipView&);
    /// Closes its window; of a group, the one that stands for it.
    void closeChip(const ChipView&);
    void keepPopupAway(const ChipView&);
    void handlePrimaryChipTap(WindowID, bool isFocused);
    /// For another application's group, its representative; for the focused group, its next window.
    void handleGroupedChipTap(const GroupedChipData&);
    /// A window comes forward for files that rest on its chip; they are dropped in the window,
    /// where their place is.
    void filesOverChip(const ChipView&, bool areOver);
    /// True if the window would go to another space.
    bool chipDragged(const ChipView&, Point pointer);
    void setDropTarget(const SpaceCellData*);
    bool chipDropped(const ChipView&, Point pointer);
    /// Goes to a window of the application, wherever it is; starts it where there is none.
    void pinTapped(const std::string& bundleID);
    void unpin(const PinData&);
    void pinChip(const ChipView&, std::optional<std::string> before);
    void pinMoved(const std::string& bundleID, const ReorderDrag&);
    /// The chip or pin that it is of is given by its identifier.
    void openMenu(Menu, const Rect& anchor, std::optional<std::string> item,
        ThumbnailHover::OpenMenu = ThumbnailHover::OpenMenu::elsewhere);
    void menuDidClose(MenuEnding);
    void showMenuOf(std::optional<std::string> item);
    void tellBusy() const;
    /// What a menu or a popup belongs to looks so while that is open.
    void openItemsDidChange();
    /// A menu or a popup belongs to a place in the row, and the keyboard to another chip.
    void updateFollowing();
    /// Of a card; points, bottom-left origin.
    void openWindowMenu(WindowID, const Rect& onScreen, std::uint64_t modifiers);
    /// Up leads from a chip to the cards of its popup, Escape back.
    bool popupKeyPressed(const KeyEvent&);
    void returnKeysToChip();
    /// A menu, so that keyboard, outside clicks and the native look come with it.
    void showSpaceList();
    /// The modifiers are those with which the menu is asked for.
    ChipMenuContext menuContext(std::uint64_t modifiers = 0);

    ChipPopups::Inputs popupInputs();
    Rect onScreen(const Rect& inBar) const;
    Rect freePart() const;

    /// Runs in the next turn of the main loop, unless the model has gone by then.
    void onNextTurn(std::function<void(BarViewModel&)>);

    Inputs m_inputs;
    Palette m_palette; ///< the views below point at it
    BarBackground* m_background = nullptr;
    MenuButton* m_menuButton = nullptr;
    SpaceSwitcher* m_spaceSwitcher = nullptr;
    ShowDesktopButton* m_showDesktopButton = nullptr;
    ChipsRow* m_row = nullptr;
    BarNote* m_note = nullptr;
    bool m_isShown = true;
    bool m_isWalked = false; ///< by the keyboard
    std::set<Part> m_stale; ///< while it is not
    std::string m_tappedPin; ///< since the pointer came to the row
    std::vector<PinData> m_pins; ///< names and icons as they were looked up
    ChipPopups m_popups;
    int m_openMenus = 0; ///< one that replaces another is open before that one has told its end
    std::optional<SpaceID> m_dropTarget; ///< of a drag
    std::optional<std::string> m_itemOfMenu; ///< the chip or pin that the menu is of
    WorkItem m_springTimer;
    WorkItem m_screensChange;
    std::vector<Subscription> m_subscriptions;
    WeakOwner<BarContentView> m_weak{*this};
};

}
