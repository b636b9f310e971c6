#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Quorvel/Core/BarSize.h"
#include "Quorvel/Core/BarViewModel.h"
#include "Quorvel/Platform/Application.h"
#include "Quorvel/Views/ChipView.h"
#include "Quorvel/Views/Kit/View.h"
#include "Quorvel/Views/ThumbnailHover.h"
#include "Quorvel/Views/ThumbnailPresenter.h"

namespace quorvel {

class BarBackground;
class ChipsRow;
class MenuButton;
class PinStore;
class PinView;
class ReorderDrag;
class ShowDesktopButton;
class SpaceSwitcher;
class ThumbnailService;
class UserSettings;
struct ChipMenuContext;

/// The content of one bar: menu button, pins and chips of its space, space switcher, show-desktop
/// button; and what rests, clicks and drags on them mean. Main thread.
class BarContentView final : public View {
public:
    struct Inputs {
        BarViewModel& viewModel;
        PinStore& pinStore;
        UserSettings& settings;
        ThumbnailService& thumbnailService;
        const Platform& platform;
        PanelSurface& surface;
        SpaceID spaceID{};
        DisplayNumber display{};
        /// Absent while one bar stands for every screen.
        std::optional<std::size_t> screenIndex;
        BarMetrics metrics;
    };

    /// How long files must rest on a chip before its window comes to the front.
    static constexpr Duration kSpringDelay = seconds(0.5);
    /// How long an application that was started is shown as starting.
    static constexpr Duration kLaunchPatience = seconds(10);

    explicit BarContentView(Inputs);
    ~BarContentView() override;

    std::function<void()> onMenuTapped;
    std::function<void(SpaceID)> onSpaceSwitchRequested;
    /// A group's windows go together.
    std::function<void(const std::vector<WindowID>&, SpaceID to)> onMoveWindowToSpaceRequested;
    std::function<void(bool isHovered)> onChipsAreaHoverChanged;
    /// Just before a popup is shown.
    std::function<void()> onThumbnailWillShow;
    /// Opens a menu beside a rectangle (points of the bar, origin top left).
    std::function<void(Menu, const Rect&, std::function<void(MenuEnding)> onClosed)>
        onMenuRequested;

    // In points of the bar, origin top left.
    Rect menuButtonFrame() const;
    Rect showDesktopButtonFrame() const;
    Rect spaceListButtonFrame() const;
    /// By chip identifier, in the order of the row.
    std::vector<std::pair<std::string, Rect>> chipFrames() const;
    /// By bundle identifier.
    std::vector<std::pair<std::string, Rect>> pinFrames() const;
    std::vector<std::pair<SpaceID, Rect>> spaceCellFrames() const;
    /// Null while none is open.
    const ThumbnailPopup* thumbnailPopup() const { return m_popups.popup(); }

    void handlePrimaryChipTap(WindowID, bool isFocused);
    /// Another application's group: its representative. The focused group: its next window.
    void handleGroupedChipTap(const GroupedChipData&);
    void activateWindowDeferred(WindowID);
    void prefetchThumbnails(const HoverTarget&);
    void dismissThumbnailPopupImmediate();
    void openActivityMonitor();
    void triggerShowDesktop();
    void showBarMenu(const Rect& anchor);
    /// Towards the trailing end.
    void scrollSideways(double distance, ScrollUnit);
    View* preferredKeyView() override;
    bool isRightToLeft() const;

    bool takesPointer() const override { return true; }
    void showContextMenu() override;
    std::string accessibleID() const override { return "bar"; }
    AccessibleState accessibleState() const override;

private:
    void layout() override;
    void connectRow();
    void itemsDidChange();
    void pinsDidChange();
    std::vector<std::string> wantedPins() const;
    bool arePinsCurrent() const;
    void spacesDidChange();
    void settingsDidChange();
    void appearanceDidChange();
    void updateBackground();

    void chipClicked(const ChipView&, ChipView::Click);
    void chipHovered(const ChipView&, bool isHovered);
    HoverTarget hoverTarget(const DisplayItem&) const;
    void filesOverChip(const ChipView&, bool areOver);
    void chipDragged(const ChipView&, Point pointer);
    bool chipDropped(const ChipView&, Point pointer);
    void pinTapped(const std::string& bundleID);
    void markLaunching(const std::string& bundleID);
    bool isRunning(const std::string& bundleID) const;
    /// Whether one that was started has its window.
    bool hasLaunched() const;
    void pinMoved(const std::string& bundleID, const ReorderDrag&);
    void openMenu(Menu, const Rect& anchor);
    void noteChoice(Menu&);
    void showSpaceList();
    ChipMenuContext menuContext();

    struct PopupContents {
        std::vector<ChipData> windows;
        Rect chip; ///< points, bottom-left origin
    };
    /// As things are now; absent if the chip has gone.
    std::optional<PopupContents> popupContents(const std::string& chipID) const;
    void showThumbnailPopup(const std::string& chipID);
    void updateThumbnailPopup();
    std::vector<ChipData> chips(const std::vector<WindowID>&) const;
    Rect onScreen(const Rect& inBar) const;
    Rect freePart() const;

    /// Runs on the next turn of the main loop, unless the model has gone by then.
    void onNextTurn(std::function<void(BarViewModel&)>);

    Inputs m_inputs;
    BarBackground* m_background = nullptr;
    MenuButton* m_menuButton = nullptr;
    SpaceSwitcher* m_spaceSwitcher = nullptr;
    ShowDesktopButton* m_showDesktopButton = nullptr;
    ChipsRow* m_row = nullptr;
    std::vector<std::string> m_pins; ///< bundle identifiers, as they were looked up
    std::map<std::string, WorkItem> m_launching; ///< by bundle identifier
    ThumbnailHover m_hover;
    ThumbnailPresenter m_popups;
    WorkItem m_springTimer;
    bool m_hasChosen = false; ///< from the menu that was opened last
    std::vector<Subscription> m_subscriptions;
    WeakOwner<BarContentView> m_weak{*this};
};

}
