#include "Quorvel/Core/LauncherPresenter.h"

#include <algorithm>
#include <utility>

#include "Quorvel/Core/Bar.h"
#include "Quorvel/Platform/Application.h"
#include "Quorvel/Platform/Translation.h"

namespace quorvel {

LauncherPresenter::LauncherPresenter(
    const Platform& platform, BarFactory& factory, const Sources& sources)
    : m_platform(platform)
    , m_factory(factory)
    , m_sources(sources)
{
}

LauncherPresenter::~LauncherPresenter() = default;

std::unique_ptr<LauncherPanel> LauncherPresenter::makePanel(const Bar& anchor, LauncherKind kind)
{
    auto onDismiss = [this](auto dismissal) { dismissed(dismissal); };
    PanelOptions options{.display = anchor.display(), .title = {}, .kind = PanelKind::launcher};
    if (kind == LauncherKind::applications) {
        options.title = tr("Applications");
        return m_factory.makeLauncher(options,
            {.appLauncher = m_sources.appLauncher,
                .pinStore = m_sources.pinStore,
                .settings = m_sources.settings,
                .onDismiss = std::move(onDismiss)});
    }
    options.title = tr("Find a Window");
    return m_factory.makeWindowFinder(options,
        {.windowFinder = m_sources.windowFinder,
            .thumbnailService = m_sources.thumbnailService,
            .settings = m_sources.settings,
            .onDismiss = std::move(onDismiss),
            .space = anchor.spaceID(),
            .onWindowChosen = onWindowChosen,
            .onWindowBrought = [bring = onWindowBrought, to = anchor.spaceID()](
                                   WindowID window, SpaceID from) { bring(window, from, to); }});
}

void LauncherPresenter::show(const Bar& anchor, LauncherKind kind)
{
    auto frame = frameFor(anchor, kind);
    close();
    if (!frame)
        return;
    m_isClosedByPrimaryPress = false;
    m_anchor = anchorOf(anchor);
    m_kind = kind;
    m_panel = makePanel(anchor, kind);
    if (onOpenChanged)
        onOpenChanged(true);
    m_panel->open(*frame);
}

void LauncherPresenter::showForHeldShortcut(const Bar& anchor, LauncherKind kind)
{
    // Before anything is drawn: the user is about to let go of it.
    auto* hotkeys = m_platform.hotkeys;
    auto held = hotkeys ? hotkeys->registerHeld(kHeldShortcutID) : nullptr;
    show(anchor, kind);
    if (!m_panel || !held)
        return;
    m_heldShortcut = std::move(held);
    m_eventHandler
        = hotkeys->installHandler([this](const HotkeyID& id) { return handleHotkey(id); });
}

HotkeyStatus LauncherPresenter::handleHotkey(const HotkeyID& pressed)
{
    if (pressed != kHeldShortcutID)
        return HotkeyStatus::notHandled;
    m_platform.dispatch.main().async([weak = m_weak.reference()] {
        if (auto* presenter = weak.get())
            presenter->close();
    });
    return HotkeyStatus::handled;
}

void LauncherPresenter::close()
{
    if (!m_panel)
        return;
    m_eventHandler = {};
    m_heldShortcut = nullptr;
    // Whoever closes it may have been called by it, so it goes in a turn of its own.
    m_closed.push_back(std::move(m_panel));
    m_closed.back()->close();
    m_platform.dispatch.main().async([weak = m_weak.reference()] {
        if (auto* presenter = weak.get())
            presenter->m_closed.clear();
    });
    if (onOpenChanged)
        onOpenChanged(false);
}

void LauncherPresenter::dismissed(LauncherDismissal dismissal)
{
    // The button opens the applications, even while there are windows in their place.
    m_isClosedByPrimaryPress
        = dismissal == LauncherDismissal::primaryPress && m_kind == LauncherKind::applications;
    m_closingPressEnds
        = m_platform.dispatch.main().after(kHeldBack, [this] { m_isClosedByPrimaryPress = false; });
    close();
}

// MARK: The button

bool LauncherPresenter::buttonPressed(const Bar& bar)
{
    bool hasClosed = std::exchange(m_isClosedByPrimaryPress, false);
    if (anchorOf(bar) != m_anchor)
        return false;
    // Where the system does not report presses it is still open.
    bool isOpen = panel(LauncherKind::applications) != nullptr;
    close();
    return isOpen || hasClosed;
}

void LauncherPresenter::buttonTapped(const Bar& bar)
{
    if (areApplicationsOpenFrom(bar))
        return close();
    show(bar, LauncherKind::applications);
}

// MARK: Its place

LauncherPresenter::Anchor LauncherPresenter::anchorOf(const Bar& bar)
{
    return {bar.spaceID(), bar.display()};
}

void LauncherPresenter::follow(const std::vector<Bar*>& bars)
{
    if (!m_panel)
        return;
    auto bar
        = std::ranges::find(bars, m_anchor, [](auto* candidate) { return anchorOf(*candidate); });
    auto frame = bar == bars.end() ? std::nullopt : frameFor(**bar, m_kind);
    if (frame)
        m_panel->surface().setFrame(*frame);
    else
        close();
}

std::optional<Rect> LauncherPresenter::frameFor(const Bar& bar, LauncherKind kind) const
{
    auto screens = m_platform.displays.screens();
    if (bar.screenIndex() >= screens.size())
        return {};
    return frameFor(bar.surface().frame(), screens[bar.screenIndex()], sizeOf(kind),
        m_platform.application.appearance().value().isRightToLeft);
}

Rect LauncherPresenter::frameFor(
    const Rect& bar, const Screen& screen, Size size, bool isRightToLeft)
{
    // Bars of the system, or other panels, may have the sides and the top to themselves.
    auto room = screen.visibleFrame.isEmpty() ? screen.frame : screen.visibleFrame;
    double width = std::min(size.width, room.width);
    double wanted = bar.maxY() + kAboveBar;
    double least = std::min(kLeastHeight, room.maxY() - screen.frame.y);
    double height = std::clamp(room.maxY() - wanted, least, std::max(least, size.height));
    double x = isRightToLeft ? bar.maxX() - kFromEdge - width : bar.x + kFromEdge;
    return {std::clamp(x, room.x, room.maxX() - width), std::min(wanted, room.maxY() - height),
        width, height};
}

}
