#include "Quorvel/Views/BarContentView.h"

#include <algorithm>

#include "Quorvel/Core/LaunchMarks.h"
#include "Quorvel/Core/PinStates.h"
#include "Quorvel/Core/PinStore.h"
#include "Quorvel/Core/ThumbnailService.h"
#include "Quorvel/Core/UserSettings.h"
#include "Quorvel/Platform/Displays.h"
#include "Quorvel/Platform/SettingsWindow.h"
#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Platform/WindowServer.h"
#include "Quorvel/Platform/Workspace.h"
#include "Quorvel/Views/ActivityMonitor.h"
#include "Quorvel/Views/BarBackground.h"
#include "Quorvel/Views/BarMenu.h"
#include "Quorvel/Views/BarNote.h"
#include "Quorvel/Views/ChipMenu.h"
#include "Quorvel/Views/ChipsRow.h"
#include "Quorvel/Views/MenuButton.h"
#include "Quorvel/Views/ShowDesktopButton.h"
#include "Quorvel/Views/SpaceCells.h"
#include "Quorvel/Views/SpaceSwitcher.h"
#include "Quorvel/Views/ThumbnailPopup.h"

namespace quorvel {

namespace {

struct BarContentViewStyle {
    static constexpr double dividerHeight = 0.7; ///< share of the menu button's height
    static constexpr double dividerWidth = 1;
    static constexpr double mostForSpaces = 0.35; ///< share of the bar's width
};

std::string countText(int windows)
{
    return trCount("{} window", "{} windows", static_cast<std::size_t>(windows));
}

}

BarContentView::BarContentView(Inputs inputs)
    : m_inputs(std::move(inputs))
    , m_palette(Palette::of(m_inputs.platform.application.appearance().value()))
    , m_popups(popupInputs())
{
    auto& metrics = m_inputs.metrics;
    m_background = &addChild(std::make_unique<BarBackground>(m_palette));
    m_menuButton = &addChild(std::make_unique<MenuButton>(m_palette, metrics));
    m_spaceSwitcher = &addChild(std::make_unique<SpaceSwitcher>(m_palette, metrics));
    m_showDesktopButton = &addChild(std::make_unique<ShowDesktopButton>(m_palette, metrics));
    // What is dragged out of the row lies above the rest.
    m_row = &addChild(std::make_unique<ChipsRow>(
        m_palette, metrics, m_inputs.platform.text, m_inputs.platform.dispatch));
    m_row->setFrameInterval(m_inputs.surface.frameInterval());
    m_note = &addChild(std::make_unique<BarNote>(
        m_palette, m_inputs.platform.text, m_inputs.platform.dispatch.main()));
    m_note->onShownChanged = [this] { tellBusy(); };

    connectButtons();
    connectRow();
    connectPopups();
    subscribe();
    for (auto part : {Part::appearance, Part::settings, Part::spaces, Part::pins, Part::items})
        partDidChange(part);
}

BarContentView::~BarContentView() = default;

void BarContentView::connectButtons()
{
    m_menuButton->onPressed = [this] { return m_inputs.onMenuPressed && m_inputs.onMenuPressed(); };
    m_menuButton->onTapped = [this] {
        if (m_inputs.onMenuTapped)
            m_inputs.onMenuTapped();
    };
    m_menuButton->onSecondaryTapped = [this] {
        showBarMenu(m_menuButton->frameInRoot());
        m_menuButton->setMenuOpen(true);
    };
    m_showDesktopButton->onTapped = [this] { triggerShowDesktop(); };
    m_spaceSwitcher->onSpaceSwitchRequested = [this](SpaceID space) {
        if (m_inputs.onSpaceSwitchRequested)
            m_inputs.onSpaceSwitchRequested(space);
    };
    m_spaceSwitcher->onListRequested = [this] { showSpaceList(); };
}

ChipPopups::Inputs BarContentView::popupInputs()
{
    return {m_inputs.viewModel, m_inputs.thumbnailService, m_inputs.platform, m_inputs.spaceID,
        m_inputs.display, m_inputs.screenIndex,
        [this](const std::string& chipID) -> std::optional<Rect> {
            auto frames = chipFrames();
            auto frame = std::ranges::find(frames, chipID, &std::pair<std::string, Rect>::first);
            return frame == frames.end() ? std::nullopt : std::optional{onScreen(frame->second)};
        }};
}

void BarContentView::connectPopups()
{
    m_popups.onWillShow = [this] {
        if (m_inputs.onThumbnailWillShow)
            m_inputs.onThumbnailWillShow();
    };
    m_popups.onChipChanged = [this] {
        openItemsDidChange();
        updateFollowing();
    };
    m_popups.onWindowChosen = [this](WindowID id) { activateWindowDeferred(id); };
    m_popups.onWindowClosed = [this](WindowID id) {
        onNextTurn([id](BarViewModel& viewModel) { viewModel.closeWindow(id); });
    };
    m_popups.onMenuRequested = [this](WindowID id, const Rect& onScreen) {
        openWindowMenu(id, onScreen, m_popups.popup()->menuModifiers());
    };
}

void BarContentView::subscribe()
{
    auto keep
        = [this](Subscription subscription) { m_subscriptions.push_back(std::move(subscription)); };
    auto changes = [this](Part part) { return [this, part](auto&...) { partDidChange(part); }; };
    auto& platform = m_inputs.platform;
    keep(platform.application.appearance().subscribe(changes(Part::appearance)));
    keep(platform.surfaces.blurDidChange.subscribe(changes(Part::appearance)));
    keep(m_inputs.settings.data().subscribe(changes(Part::settings)));
    keep(m_inputs.pinStore.pinnedApps().subscribe(changes(Part::pins)));
    keep(platform.workspace.launchDidFail.subscribe(
        [this](auto& launch) { showNote(trFormat("{} could not be opened", launch.name)); }));
    if (platform.settingsWindow)
        keep(platform.settingsWindow->didFail.subscribe(
            [this] { showNote(tr("The settings could not be opened")); }));
    keep(platform.workspace.iconDidChange.subscribe([this](auto& id) {
        if (id.empty() || std::ranges::find(m_pins, id, &PinData::bundleID) != m_pins.end())
            partDidChange(Part::pins);
    }));
    // Other panels may keep a side of the screen for themselves from now on, and windows be on
    // other screens: those are counted anew once the bar has been placed.
    keep(platform.displays.parametersDidChange.subscribe([this] {
        partDidChange(Part::layout);
        m_screensChange = m_inputs.platform.dispatch.main().after(
            Duration::zero(), [this] { partDidChange(Part::items); });
    }));
    keep(m_inputs.viewModel.spaces.subscribe(changes(Part::spaces)));
    // Their names, of which the model knows nothing.
    keep(platform.windowServer.spacesDidChange.subscribe(changes(Part::spaces)));
    keep(m_inputs.viewModel.summaries.subscribe(changes(Part::spaces)));
    keep(m_inputs.launchMarks.launching().subscribe(changes(Part::pins)));
    keep(m_inputs.pinStates.didChange.subscribe(changes(Part::pinStates)));
    keep(m_inputs.viewModel.barsDidChange.subscribe([this](auto& spaces) {
        if (spaces.contains(m_inputs.spaceID))
            partDidChange(Part::items);
    }));
}

void BarContentView::setShown(bool isShown)
{
    m_isShown = isShown;
    updateFollowing();
    for (auto part : isShown ? std::exchange(m_stale, {}) : std::set<Part>{})
        partDidChange(part);
}

void BarContentView::partDidChange(Part part)
{
    if (!m_isShown)
        return void(m_stale.insert(part));
    switch (part) {
    case Part::appearance:
        appearanceDidChange();
        break;
    case Part::settings:
        settingsDidChange();
        break;
    case Part::layout:
        layout();
        break;
    case Part::spaces:
        spacesDidChange();
        break;
    case Part::pins:
        pinsDidChange();
        break;
    case Part::pinStates:
        pinStatesDidChange();
        break;
    case Part::items:
        itemsDidChange();
        break;
    }
    if (onShownChanged)
        onShownChanged();
}

void BarContentView::connectRow()
{
    m_row->onHoverChanged = [this](bool isHovered) {
        m_tappedPin.clear();
        m_popups.update(); // the row may have closed up
        if (onChipsAreaHoverChanged)
            onChipsAreaHoverChanged(isHovered);
    };
    m_row->onArrowsChanged = [this] {
        m_inputs.surface.accessibleTreeDidChange();
        if (onShownChanged)
            onShownChanged();
    };
    m_row->onChip.clicked = [this](const ChipView& chip) { chipClicked(chip); };
    m_row->onChip.menuRequested = [this](const ChipView& chip) { openChipMenu(chip); };
    m_row->onChip.closeRequested = [this](const ChipView& chip) { closeChip(chip); };
    m_row->onChip.hovered = [this](const ChipView& chip, bool isHovered) {
        // What came in the place of a pin that was clicked is not asked for its picture.
        if (!m_tappedPin.empty() && chip.bundleID() == m_tappedPin) {
            if (isHovered)
                m_popups.suppress(chip.item());
            else
                m_tappedPin.clear();
        }
        if (m_inputs.settings.showsWindowPreviews())
            m_popups.chipHovered(chip.item(), isHovered);
    };
    m_row->onChip.filesOver
        = [this](const ChipView& chip, bool areOver) { filesOverChip(chip, areOver); };
    m_row->onChip.dragged
        = [this](const ChipView& chip, Point pointer) { return chipDragged(chip, pointer); };
    m_row->onChip.dropped
        = [this](const ChipView& chip, Point pointer) { return chipDropped(chip, pointer); };
    m_row->onChip.dragEnded = [this] { setDropTarget(nullptr); };
    m_row->onChip.moved = [this](const std::string& id, const std::optional<std::string>& before) {
        m_inputs.viewModel.moveChip(id, before, m_inputs.spaceID);
    };
    connectPins();
}

// MARK: What it shows

void BarContentView::itemsDidChange()
{
    m_row->setItems(m_inputs.viewModel.displayItems(m_inputs.spaceID, m_inputs.screenIndex));
    m_popups.update();
    if (!arePinsCurrent())
        pinsDidChange();
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
    m_row->setTellsTitles(!settings.showsWindowPreviews());
    if (!settings.showsWindowPreviews())
        m_popups.dismiss();
    updateBackground();
}

void BarContentView::appearanceDidChange()
{
    auto& appearance = m_inputs.platform.application.appearance().value();
    m_spaceSwitcher->setRightToLeft(appearance.isRightToLeft);
    m_row->setReducesMotion(appearance.reduceMotion);
    updateBackground();
    layout();
    invalidate();
}

void BarContentView::updateBackground()
{
    auto& appearance = m_inputs.platform.application.appearance().value();
    auto theme = m_inputs.settings.theme();
    m_palette = Palette::of(appearance, BarBackground::ground(theme, appearance));
    if (m_background->theme() != theme)
        invalidate();
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
    double dividerHeight = metrics.menuButtonHeight * BarContentViewStyle::dividerHeight;
    auto divider = [&](double x) {
        return Rect{x, (whole.height - dividerHeight) / 2, BarContentViewStyle::dividerWidth,
            dividerHeight};
    };
    double left = buttonWidth + BarContentViewStyle::dividerWidth + metrics.scrollHorizontalPadding;
    double right = whole.width - buttonWidth;
    double spaces = m_spaceSwitcher->wantedWidth(whole.width * BarContentViewStyle::mostForSpaces);
    double switcherLeft = right - spaces;
    double trailingDivider = switcherLeft - metrics.scrollHorizontalPadding / 2;
    double rowRight = trailingDivider - metrics.scrollHorizontalPadding;
    m_menuButton->setFrame(place({0, 0, buttonWidth, whole.height}));
    m_showDesktopButton->setFrame(place({right, 0, buttonWidth, whole.height}));
    m_spaceSwitcher->setFrame(place({switcherLeft, 0, spaces, whole.height}));
    m_background->setDividers({place(divider(buttonWidth)), place(divider(trailingDivider))});
    m_row->setRightToLeft(isMirrored);
    auto row = place({left, 0, std::max(0.0, rowRight - left), whole.height});
    m_row->setFrame(row);
    m_note->setRoom(row, isMirrored);
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

// MARK: Buttons and the keyboard

void BarContentView::setLauncherOpen(bool isOpen)
{
    m_menuButton->setLauncherOpen(isOpen);
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

void BarContentView::showNote(std::string text)
{
    if (!m_isShown)
        return;
    m_note->show(std::move(text));
    m_inputs.surface.accessibleTreeDidChange();
}

// MARK: Menus

void BarContentView::openMenu(
    Menu menu, const Rect& anchor, std::optional<std::string> item, ThumbnailHover::OpenMenu kind)
{
    if (!onMenuRequested)
        return;
    ++m_openMenus;
    updateFollowing();
    showMenuOf(std::move(item));
    m_popups.setMenuOpen(kind);
    onMenuRequested(std::move(menu), anchor, [weak = m_weak.reference()](MenuEnding ending) {
        if (auto* view = weak.get())
            view->menuDidClose(ending);
    });
}

void BarContentView::menuDidClose(MenuEnding ending)
{
    if (--m_openMenus > 0)
        return;
    showMenuOf({});
    m_popups.setMenuOpen(ThumbnailHover::OpenMenu::none);
    if (host())
        host()->menuDidClose(ending);
    updateFollowing();
}

void BarContentView::updateFollowing()
{
    m_row->setFollowsFocus(m_isShown && m_openMenus == 0 && !m_popups.chipID() && !m_isWalked);
    tellBusy();
}

bool BarContentView::isBusy() const
{
    return m_openMenus > 0 || m_popups.chipID() || m_note->isShown();
}

void BarContentView::tellBusy() const
{
    if (onBusyChanged)
        onBusyChanged();
}

void BarContentView::showMenuOf(std::optional<std::string> item)
{
    m_itemOfMenu = std::move(item);
    m_menuButton->setMenuOpen(false);
    m_spaceSwitcher->setListOpen(false);
    openItemsDidChange();
}

void BarContentView::openItemsDidChange()
{
    std::set<std::string> open;
    for (auto& id : {m_itemOfMenu, m_popups.chipID()}) {
        if (id)
            open.insert(*id);
    }
    m_row->setOpenItems(std::move(open));
}

ChipMenuContext BarContentView::menuContext(std::uint64_t modifiers)
{
    bool asksAboutWindow = (modifiers & KeyModifier::option) != 0;
    return {m_inputs.viewModel, m_inputs.pinStore, m_inputs.platform.workspace,
        m_inputs.windowStates, m_inputs.pinStates, m_inputs.spaceID, m_spaceSwitcher->spaces(),
        m_inputs.onMoveWindowToSpaceRequested, m_inputs.onWindowsFetched,
        m_inputs.onWindowRequested,
        [weak = m_weak.reference()](const std::string& bundleID) {
            if (auto* view = weak.get())
                view->pinTapped(bundleID);
        },
        asksAboutWindow ? m_inputs.aboutWindow : nullptr};
}

void BarContentView::showBarMenu(const Rect& anchor)
{
    std::optional<MenuItem> monitor;
    if (auto name = ActivityMonitor{m_inputs.platform}.name(m_inputs.viewModel))
        monitor = MenuItem{*name, true, [weak = m_weak.reference()] {
                               if (auto* view = weak.get())
                                   view->openActivityMonitor();
                           }};
    openMenu(
        barMenu(m_inputs.platform.application, m_inputs.onSettingsRequested, std::move(monitor)),
        anchor, {});
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
                if (view && view->m_inputs.onSpaceSwitchRequested)
                    view->m_inputs.onSpaceSwitchRequested(id);
            },
            space.isCurrent, {}, MenuItemKind::choice});
    }
    openMenu(std::move(menu), spaceListButtonFrame(), {});
    m_spaceSwitcher->setListOpen(true);
}

// MARK: Dragging

bool BarContentView::chipDragged(const ChipView& chip, Point pointer)
{
    m_popups.suppress(chip.item());
    dismissThumbnailPopupImmediate();
    auto* cell = m_spaceSwitcher->spaceAt(pointer);
    bool isTarget
        = cell && !cell->isCurrent && !cell->isFullscreen && m_inputs.onMoveWindowToSpaceRequested;
    setDropTarget(isTarget ? cell : nullptr);
    return isTarget;
}

void BarContentView::setDropTarget(const SpaceCellData* cell)
{
    auto target = cell ? std::optional{cell->id} : std::nullopt;
    if (std::exchange(m_dropTarget, target) == target)
        return;
    m_spaceSwitcher->setDropTarget(target);
    if (!onDropTold)
        return;
    if (!cell)
        return onDropTold({}, {});
    for (auto& [space, place] : spaceCellFrames()) {
        if (space == cell->id)
            onDropTold(trFormat("Move to {}", cell->name), place);
    }
}

bool BarContentView::chipDropped(const ChipView& chip, Point pointer)
{
    auto* cell = m_spaceSwitcher->spaceAt(pointer);
    if (!cell)
        return false;
    if (cell->isCurrent || cell->isFullscreen || !m_inputs.onMoveWindowToSpaceRequested)
        return true;
    auto* group = std::get_if<GroupedChipData>(&chip.item());
    m_inputs.onMoveWindowToSpaceRequested(
        group ? group->windowIDs : std::vector{std::get<ChipData>(chip.item()).id}, cell->id);
    return true;
}

}
