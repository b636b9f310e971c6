#include "Quorvel/Views/BarContentView.h"

#include <algorithm>

#include "Quorvel/Core/PinStore.h"
#include "Quorvel/Core/ThumbnailService.h"
#include "Quorvel/Core/UserSettings.h"
#include "Quorvel/Platform/Displays.h"
#include "Quorvel/Platform/WindowServer.h"
#include "Quorvel/Platform/Workspace.h"
#include "Quorvel/Views/ActivityMonitor.h"
#include "Quorvel/Views/BarBackground.h"
#include "Quorvel/Views/BarMenu.h"
#include "Quorvel/Views/ChipMenu.h"
#include "Quorvel/Views/ChipsRow.h"
#include "Quorvel/Views/MenuButton.h"
#include "Quorvel/Views/ShowDesktopButton.h"
#include "Quorvel/Views/SpaceCells.h"
#include "Quorvel/Views/SpaceSwitcher.h"

namespace quorvel {

namespace {

struct Style {
    static constexpr double dividerHeight = 0.7; ///< share of the menu button's height
    static constexpr double dividerWidth = 1;
    static constexpr double mostForSpaces = 0.35; ///< share of the bar's width
};

std::string countText(int windows)
{
    return std::to_string(windows) + (windows == 1 ? " window" : " windows");
}

}

BarContentView::BarContentView(Inputs inputs)
    : m_inputs(std::move(inputs))
    , m_hover(m_inputs.platform.dispatch, m_inputs.platform.surfaces)
    , m_popups(m_inputs.platform, m_inputs.thumbnailService, m_inputs.display)
{
    auto& metrics = m_inputs.metrics;
    m_background = &addChild(std::make_unique<BarBackground>());
    m_menuButton = &addChild(std::make_unique<MenuButton>(metrics));
    m_spaceSwitcher = &addChild(std::make_unique<SpaceSwitcher>(metrics));
    m_showDesktopButton = &addChild(std::make_unique<ShowDesktopButton>(metrics));
    // Last: what is dragged out of the row lies above the rest.
    m_row = &addChild(
        std::make_unique<ChipsRow>(metrics, m_inputs.platform.text, m_inputs.platform.dispatch));
    m_row->setFrameInterval(m_inputs.surface.frameInterval());

    m_menuButton->onTapped = [this] {
        if (onMenuTapped)
            onMenuTapped();
    };
    m_menuButton->onSecondaryTapped = [this] { showBarMenu(m_menuButton->frameInRoot()); };
    m_showDesktopButton->onTapped = [this] { triggerShowDesktop(); };
    m_spaceSwitcher->onSpaceSwitchRequested = [this](SpaceID space) {
        if (onSpaceSwitchRequested)
            onSpaceSwitchRequested(space);
    };
    m_spaceSwitcher->onListRequested = [this] { showSpaceList(); };
    m_hover.onPrefetch = [this](const HoverTarget& target) { prefetchThumbnails(target); };
    m_hover.onShow = [this](const HoverTarget& target) { showThumbnailPopup(target.chipID); };
    m_hover.onDismiss = [this] { m_popups.hide(); };
    m_popups.onWillShow = [this] {
        if (onThumbnailWillShow)
            onThumbnailWillShow();
    };
    m_popups.onHoverChanged = [this](bool isHovered) { m_hover.setPopupHovered(isHovered); };
    m_popups.onWindowChosen = [this](WindowID id) { activateWindowDeferred(id); };
    m_popups.onWindowClosed = [this](WindowID id) {
        onNextTurn([id](BarViewModel& viewModel) { viewModel.closeWindow(id); });
    };
    connectRow();

    auto& viewModel = m_inputs.viewModel;
    m_subscriptions.push_back(m_inputs.platform.application.appearance().subscribe(
        [this](auto&) { appearanceDidChange(); }));
    m_subscriptions.push_back(
        m_inputs.platform.surfaces.blurDidChange.subscribe([this] { updateBackground(); }));
    m_subscriptions.push_back(
        m_inputs.settings.data().subscribe([this](auto&) { settingsDidChange(); }));
    m_subscriptions.push_back(
        m_inputs.pinStore.pinnedApps().subscribe([this](auto&) { pinsDidChange(); }));
    m_subscriptions.push_back(m_inputs.platform.workspace.iconDidChange.subscribe([this](auto& id) {
        if (id.empty() || std::ranges::find(m_pins, id) != m_pins.end())
            pinsDidChange();
    }));
    // Other panels may keep a side of the screen for themselves from now on.
    m_subscriptions.push_back(
        m_inputs.platform.displays.parametersDidChange.subscribe([this] { layout(); }));
    m_subscriptions.push_back(viewModel.spaces.subscribe([this](auto&) { spacesDidChange(); }));
    m_subscriptions.push_back(viewModel.chipsBySpace.subscribe([this](auto& chips) {
        if (!areCurrent(m_spaceSwitcher->spaces(), chips))
            spacesDidChange();
        if (!arePinsCurrent() || hasLaunched())
            pinsDidChange();
    }));
    m_subscriptions.push_back(m_inputs.platform.windowServer.spacesDidChange.subscribe(
        [this] { spacesDidChange(); })); // their names, of which the model knows nothing
    // Which windows lie on one screen may change without any chip changing.
    m_subscriptions.push_back(m_inputs.screenIndex
            ? viewModel.didRefresh.subscribe([this] { itemsDidChange(); })
            : viewModel.displayItemsBySpace.subscribe([this](auto&) { itemsDidChange(); }));
    appearanceDidChange();
    settingsDidChange();
    spacesDidChange();
    pinsDidChange();
    itemsDidChange();
}

BarContentView::~BarContentView() = default;

void BarContentView::connectRow()
{
    m_row->onHoverChanged = [this](bool isHovered) {
        updateThumbnailPopup(); // the row may have closed up
        if (onChipsAreaHoverChanged)
            onChipsAreaHoverChanged(isHovered);
    };
    m_row->onChipClick
        = [this](const ChipView& chip, ChipView::Click click) { chipClicked(chip, click); };
    m_row->onChipHover
        = [this](const ChipView& chip, bool isHovered) { chipHovered(chip, isHovered); };
    m_row->onChipFilesOver
        = [this](const ChipView& chip, bool areOver) { filesOverChip(chip, areOver); };
    m_row->onChipDragged
        = [this](const ChipView& chip, Point pointer) { chipDragged(chip, pointer); };
    m_row->onChipDropped
        = [this](const ChipView& chip, Point pointer) { return chipDropped(chip, pointer); };
    m_row->onChipDragEnded = [this] { m_spaceSwitcher->setDropTarget({}); };
    m_row->onChipMoved = [this](const std::string& id, std::optional<std::string> before) {
        m_inputs.viewModel.moveChip(id, before, m_inputs.spaceID);
    };
    m_row->onPinClick = [this](const PinView& pin) { pinTapped(pin.pin().bundleID); };
    m_row->onPinMenu = [this](const PinView& pin) {
        openMenu(pinMenu(pin.pin().bundleID, menuContext()), pin.frameInRoot());
    };
    m_row->onPinFiles = [this](const PinView& pin, std::vector<std::string> paths) {
        if (auto url = m_inputs.platform.workspace.applicationURL(pin.pin().bundleID))
            m_inputs.platform.workspace.openFiles(paths, *url);
        markLaunching(pin.pin().bundleID);
    };
    m_row->onPinMoved = [this](const std::string& bundleID, const ReorderDrag& drag) {
        pinMoved(bundleID, drag);
    };
}

// MARK: What it shows

void BarContentView::itemsDidChange()
{
    m_row->setItems(m_inputs.viewModel.displayItems(m_inputs.spaceID, m_inputs.screenIndex));
    updateThumbnailPopup();
    m_inputs.surface.accessibleTreeDidChange();
}

std::vector<std::string> BarContentView::wantedPins() const
{
    auto wanted = m_inputs.pinStore.pinnedAppIDs(PinDestination::bar);
    if (!wanted.empty()) {
        auto withWindows = m_inputs.viewModel.bundleIDsWithWindows(m_inputs.spaceID);
        std::erase_if(wanted, [&](auto& id) { return withWindows.contains(id); });
    }
    return wanted;
}

/// Names and icons are looked up in files: not for each title that changes.
bool BarContentView::arePinsCurrent() const
{
    return wantedPins() == m_pins;
}

void BarContentView::pinsDidChange()
{
    m_pins = wantedPins();
    std::erase_if(m_launching, [&](auto& entry) {
        return std::ranges::find(m_pins, entry.first) == m_pins.end() || isRunning(entry.first);
    });
    std::vector<PinData> pins;
    for (auto& id : m_pins) {
        auto icon = m_inputs.viewModel.icon(id);
        if (!icon)
            icon = m_inputs.platform.workspace.genericApplicationIcon();
        pins.push_back(
            {id, m_inputs.viewModel.appName(id), std::move(icon), m_launching.contains(id)});
    }
    m_row->setPins(pins);
    m_inputs.surface.accessibleTreeDidChange();
}

void BarContentView::spacesDidChange()
{
    auto cells = spaceCells(m_inputs.viewModel, m_inputs.platform.windowServer, m_inputs.spaceID);
    bool isOtherCount = cells.size() != m_spaceSwitcher->spaces().size();
    m_spaceSwitcher->setSpaces(cells);
    if (isOtherCount)
        layout();
    m_inputs.surface.accessibleTreeDidChange();
}

void BarContentView::settingsDidChange()
{
    auto& settings = m_inputs.settings;
    m_row->setTitle(!settings.showChipTitles()  ? ChipView::Title::none
            : settings.showWindowNamesInChips() ? ChipView::Title::window
                                                : ChipView::Title::application);
    updateBackground();
}

void BarContentView::appearanceDidChange()
{
    auto& appearance = m_inputs.platform.application.appearance().value();
    m_menuButton->setDark(appearance.isDark);
    m_spaceSwitcher->setDark(appearance.isDark);
    m_spaceSwitcher->setRightToLeft(appearance.isRightToLeft);
    m_showDesktopButton->setDark(appearance.isDark);
    m_row->setDark(appearance.isDark);
    m_row->setAccent(appearance.accent);
    m_row->setReducesMotion(appearance.reduceMotion);
    updateBackground();
    layout();
    invalidate();
}

void BarContentView::updateBackground()
{
    auto& appearance = m_inputs.platform.application.appearance().value();
    auto theme = m_inputs.settings.theme();
    m_background->setTheme(theme);
    m_background->setAppearance(appearance);
    bool isBlurred = m_inputs.surface.setBlursBehind(BarBackground::blur(theme, appearance));
    m_background->setOpaque(!isBlurred);
}

void BarContentView::layout()
{
    auto& metrics = m_inputs.metrics;
    auto whole = bounds();
    bool isMirrored = isRightToLeft();
    auto place = [&](Rect rect) {
        if (isMirrored)
            rect.x = whole.width - rect.maxX();
        return rect.translated(whole.x, 0);
    };
    m_background->setFrame(whole);
    whole = freePart();
    // Up to the edges, so that the corners of the screen belong to the buttons.
    double buttonWidth = metrics.menuButtonWidth + metrics.barHorizontalPadding;
    double dividerHeight = metrics.menuButtonHeight * Style::dividerHeight;
    auto divider = [&](double x) {
        return Rect{x, (whole.height - dividerHeight) / 2, Style::dividerWidth, dividerHeight};
    };
    double left = buttonWidth + Style::dividerWidth + metrics.scrollHorizontalPadding;
    double right = whole.width - buttonWidth;
    double spaces = m_spaceSwitcher->wantedWidth(whole.width * Style::mostForSpaces);
    double switcherLeft = right - spaces;
    double trailingDivider = switcherLeft - metrics.scrollHorizontalPadding / 2;
    double rowRight = trailingDivider - metrics.scrollHorizontalPadding;
    m_menuButton->setFrame(place({0, 0, buttonWidth, whole.height}));
    m_showDesktopButton->setFrame(place({right, 0, buttonWidth, whole.height}));
    m_spaceSwitcher->setFrame(place({switcherLeft, 0, spaces, whole.height}));
    m_background->setDividers({place(divider(buttonWidth)), place(divider(trailingDivider))});
    m_row->setRightToLeft(isMirrored);
    m_row->setFrame(place({left, 0, std::max(0.0, rowRight - left), whole.height}));
    invalidate();
}

/// Between the panels at the sides of the screen, which may lie above this one.
Rect BarContentView::freePart() const
{
    auto screens = m_inputs.platform.displays.screens();
    auto own = std::ranges::find(screens, std::optional{m_inputs.display}, &Screen::number);
    if (own == screens.end())
        return bounds();
    double before = std::max(0.0, own->visibleFrame.x - own->frame.x);
    double after = std::max(0.0, own->frame.maxX() - own->visibleFrame.maxX());
    if (before + after >= bounds().width)
        return bounds();
    return {before, 0, bounds().width - before - after, bounds().height};
}

// MARK: Where things are

Rect BarContentView::menuButtonFrame() const
{
    return m_menuButton->frameInRoot();
}

Rect BarContentView::showDesktopButtonFrame() const
{
    return m_showDesktopButton->frameInRoot();
}

Rect BarContentView::spaceListButtonFrame() const
{
    return m_spaceSwitcher->listButtonFrame();
}

std::vector<std::pair<std::string, Rect>> BarContentView::chipFrames() const
{
    return m_row->chipFrames();
}

std::vector<std::pair<std::string, Rect>> BarContentView::pinFrames() const
{
    return m_row->pinFrames();
}

std::vector<std::pair<SpaceID, Rect>> BarContentView::spaceCellFrames() const
{
    return m_spaceSwitcher->cellFrames();
}

AccessibleState BarContentView::accessibleState() const
{
    AccessibleState state;
    state.role = AccessibleRole::panel;
    state.name = "Quorvel";
    return state;
}

Rect BarContentView::onScreen(const Rect& inBar) const
{
    auto panel = m_inputs.surface.frame();
    return {panel.x + inBar.x, panel.maxY() - inBar.maxY(), inBar.width, inBar.height};
}

// MARK: Clicks

void BarContentView::onNextTurn(std::function<void(BarViewModel&)> action)
{
    // The view may be made anew before that.
    m_inputs.platform.dispatch.main().async(
        [weak = m_inputs.viewModel.weakReference(), action = std::move(action)] {
            if (auto* viewModel = weak.get())
                action(*viewModel);
        });
}

void BarContentView::chipClicked(const ChipView& chip, ChipView::Click click)
{
    auto* group = std::get_if<GroupedChipData>(&chip.item());
    auto* single = std::get_if<ChipData>(&chip.item());
    if (chip.isHovered())
        m_hover.suppressForCurrentHover(displayItemID(chip.item()));
    if (click == ChipView::Click::secondary) {
        openMenu(chipMenu(chip.item(), menuContext()), chip.frameInRoot());
    } else if (click == ChipView::Click::middle) {
        dismissThumbnailPopupImmediate();
        auto id = single ? single->id : group->windowIDs.front();
        onNextTurn([id](BarViewModel& viewModel) { viewModel.closeWindow(id); });
    } else if (single) {
        handlePrimaryChipTap(single->id, single->isFocused);
    } else {
        handleGroupedChipTap(*group);
    }
}

void BarContentView::handlePrimaryChipTap(WindowID id, bool isFocused)
{
    if (!isFocused)
        return activateWindowDeferred(id);
    dismissThumbnailPopupImmediate();
    onNextTurn([id](BarViewModel& viewModel) { viewModel.minimizeWindow(id); });
}

void BarContentView::handleGroupedChipTap(const GroupedChipData& group)
{
    activateWindowDeferred(m_inputs.viewModel.nextWindow(m_inputs.spaceID, group));
}

void BarContentView::activateWindowDeferred(WindowID id)
{
    dismissThumbnailPopupImmediate();
    onNextTurn([id](BarViewModel& viewModel) {
        viewModel.activateWindow(id, BarViewModel::FocusBeforeActivation::no);
    });
}

void BarContentView::filesOverChip(const ChipView& chip, bool areOver)
{
    m_springTimer = {};
    if (!areOver)
        return;
    auto* group = std::get_if<GroupedChipData>(&chip.item());
    auto id = group ? group->windowIDs.front() : std::get<ChipData>(chip.item()).id;
    m_springTimer = m_inputs.platform.dispatch.main().after(
        kSpringDelay, [this, id] { activateWindowDeferred(id); });
}

void BarContentView::pinTapped(const std::string& bundleID)
{
    dismissThumbnailPopupImmediate();
    onNextTurn([bundleID](BarViewModel& viewModel) { viewModel.launchApp(bundleID); });
    markLaunching(bundleID);
}

/// One that runs already only comes to the front.
void BarContentView::markLaunching(const std::string& bundleID)
{
    if (isRunning(bundleID) || !m_inputs.platform.workspace.applicationURL(bundleID))
        return;
    m_launching[bundleID]
        = m_inputs.platform.dispatch.main().after(kLaunchPatience, [this, bundleID] {
              m_launching.erase(bundleID);
              pinsDidChange();
          });
    pinsDidChange();
}

/// It has a window on some space.
bool BarContentView::isRunning(const std::string& bundleID) const
{
    return std::ranges::any_of(m_inputs.viewModel.chipsBySpace.value(), [&](auto& entry) {
        return std::ranges::find(entry.second, bundleID, &ChipData::bundleIdentifier)
            != entry.second.end();
    });
}

bool BarContentView::hasLaunched() const
{
    return std::ranges::any_of(m_launching, [this](auto& entry) { return isRunning(entry.first); });
}

void BarContentView::triggerShowDesktop()
{
    dismissThumbnailPopupImmediate();
    m_inputs.platform.windowServer.toggleShowingDesktop();
}

void BarContentView::openActivityMonitor()
{
    ActivityMonitor{m_inputs.platform}.open();
}

void BarContentView::showContextMenu()
{
    auto pointer = m_inputs.platform.displays.pointerLocation();
    auto panel = m_inputs.surface.frame();
    showBarMenu({pointer.x - panel.x, 0, 1, panel.height});
}

bool BarContentView::isRightToLeft() const
{
    return m_inputs.platform.application.appearance().value().isRightToLeft;
}

void BarContentView::scrollSideways(double distance, ScrollUnit unit)
{
    m_row->scrollBy(distance, unit);
}

View* BarContentView::preferredKeyView()
{
    return m_row->focusedChip();
}

// MARK: Menus

void BarContentView::openMenu(Menu menu, const Rect& anchor)
{
    if (!onMenuRequested)
        return;
    m_hover.setMenuOpen(true);
    m_hasChosen = false;
    noteChoice(menu);
    onMenuRequested(std::move(menu), anchor,
        [weak = m_weak.reference(), &main = m_inputs.platform.dispatch.main()](MenuEnding) {
            auto* view = weak.get();
            if (!view)
                return;
            view->m_hover.setMenuOpen(false);
            // The action of what was chosen comes after this.
            main.async([weak] {
                if (auto* now = weak.get(); now && now->host())
                    now->host()->menuDidClose(!now->m_hasChosen);
            });
        });
}

void BarContentView::noteChoice(Menu& menu)
{
    for (auto& item : menu) {
        noteChoice(item.submenu);
        if (item.action)
            item.action = [weak = m_weak.reference(), action = std::move(item.action)] {
                if (auto* view = weak.get())
                    view->m_hasChosen = true;
                action();
            };
    }
}

ChipMenuContext BarContentView::menuContext()
{
    return {m_inputs.viewModel, m_inputs.pinStore, m_inputs.platform.workspace, m_inputs.spaceID,
        m_spaceSwitcher->spaces(), onMoveWindowToSpaceRequested,
        [weak = m_weak.reference()](const std::string& bundleID) {
            if (auto* view = weak.get())
                view->pinTapped(bundleID);
        }};
}

void BarContentView::showBarMenu(const Rect& anchor)
{
    std::optional<MenuItem> monitor;
    if (auto name = ActivityMonitor{m_inputs.platform}.name(m_inputs.viewModel))
        monitor = MenuItem{*name, true, [weak = m_weak.reference()] {
                               if (auto* view = weak.get())
                                   view->openActivityMonitor();
                           }};
    openMenu(barMenu(m_inputs.settings, m_inputs.platform.application, std::move(monitor)), anchor);
}

void BarContentView::showSpaceList()
{
    Menu menu;
    for (auto& space : m_spaceSwitcher->spaces()) {
        auto title = space.name + "  \u2013  " + countText(space.windowCount);
        if (space.wantsAttention)
            title += "  \u2022";
        menu.push_back({std::move(title), true,
            [weak = m_weak.reference(), id = space.id] {
                auto* view = weak.get();
                if (view && view->onSpaceSwitchRequested)
                    view->onSpaceSwitchRequested(id);
            },
            space.isCurrent, {}, MenuItemKind::choice});
    }
    openMenu(std::move(menu), spaceListButtonFrame());
}

// MARK: Dragging

void BarContentView::chipDragged(const ChipView& chip, Point pointer)
{
    m_hover.suppressForCurrentHover(displayItemID(chip.item()));
    dismissThumbnailPopupImmediate();
    auto* cell = m_spaceSwitcher->spaceAt(pointer);
    bool isTarget = cell && !cell->isCurrent && !cell->isFullscreen;
    m_spaceSwitcher->setDropTarget(isTarget ? std::optional{cell->id} : std::nullopt);
}

bool BarContentView::chipDropped(const ChipView& chip, Point pointer)
{
    auto* cell = m_spaceSwitcher->spaceAt(pointer);
    if (!cell)
        return false;
    if (cell->isCurrent || cell->isFullscreen || !onMoveWindowToSpaceRequested)
        return true;
    auto* group = std::get_if<GroupedChipData>(&chip.item());
    onMoveWindowToSpaceRequested(
        group ? group->windowIDs : std::vector{std::get<ChipData>(chip.item()).id}, cell->id);
    return true;
}

void BarContentView::pinMoved(const std::string& bundleID, const ReorderDrag& drag)
{
    if (!drag.isElsewhere())
        return; // behind the last one means something else than where it is
    auto pinned = m_inputs.pinStore.pinnedAppIDs(PinDestination::bar);
    auto before = drag.dropTargetID(
        [&](auto& id) { return std::ranges::find(pinned, id) != pinned.end(); });
    if (!before)
        before = nextPinnedAppIDAfterVisibleEnd(bundleID, drag.previewOrder(), pinned);
    m_inputs.pinStore.movePinnedApp(bundleID, before, PinDestination::bar);
}

}
