#include "Quorvel/Core/WindowMoves.h"

#include <algorithm>

#include "Quorvel/Core/BarViewModel.h"
#include "Quorvel/Core/SpaceNavigation.h"
#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Platform/Workspace.h"
#include "Quorvel/Skylight/WindowStore.h"

namespace quorvel {

namespace {

/// Right of the title bar's buttons and below the edge that resizes.
constexpr Point kGrip{78, 8};
/// Further than a hand trembles: less is a click, not a drag.
constexpr double kNudge = 6;
/// Under the menu bar, and clear of the next display.
constexpr double kDropInset = 40;

Point gripOf(const TrackedWindow& window)
{
    return window.frame.origin().translated(
        std::min(kGrip.x, window.frame.width / 2), std::min(kGrip.y, window.frame.height / 2));
}

Point clamped(Point point, const Rect& area)
{
    return {std::clamp(point.x, area.x, area.maxX()), std::clamp(point.y, area.y, area.maxY())};
}

}

WindowMoves::WindowMoves(const Platform& platform, WindowStore& windowStore,
    BarViewModel& viewModel, SpaceNavigation& navigation)
    : m_dispatch(platform.dispatch)
    , m_windowServer(platform.windowServer)
    , m_displays(platform.displays)
    , m_workspace(platform.workspace)
    , m_spaceWindows(platform.windowServer, platform.displays)
    , m_windowStore(windowStore)
    , m_viewModel(viewModel)
    , m_navigation(navigation)
{
}

WindowMoves::~WindowMoves()
{
    abandon();
}

void WindowMoves::moveWindowToSpaceByDragging(WindowID window, SpaceID from, SpaceID to)
{
    moveWindowsToSpace({window}, from, to);
}

void WindowMoves::moveWindowsToSpace(const std::vector<WindowID>& windows, SpaceID from, SpaceID to)
{
    beginMoves({{windows.begin(), windows.end()}, from, to, false, {}});
}

void WindowMoves::fetchWindows(const std::vector<WindowID>& windows, SpaceID from, SpaceID to)
{
    beginMoves({{windows.begin(), windows.end()}, from, to, true, {}});
}

void WindowMoves::bringWindow(WindowID window, SpaceID from, SpaceID to)
{
    beginMoves({{window}, from, to, true, window});
}

void WindowMoves::beginMoves(Waiting moves)
{
    auto target = info(moves.to);
    if (moves.from == moves.to || !info(moves.from) || !target
        || target->spaceType == kFullscreenSpaceType)
        return;
    abandon();
    m_waiting = std::move(moves);
    moveNext();
}

void WindowMoves::moveNext()
{
    while (!m_waiting.windows.empty()) {
        auto window = m_waiting.windows.front();
        bool isRefused = m_windowStore.window(window) && !moveDirectly(window, m_waiting.to);
        bool isInReach = m_navigation.isCurrent(m_waiting.from);
        bool isToBeCarried = isRefused && canCarry(m_waiting.from, m_waiting.to);
        if (isToBeCarried && !isInReach && m_waiting.isFromAfar) {
            m_pendingWindowMoveDragTimeoutWork
                = m_dispatch.main().after(kMoveTimeout, [this] { abandon(); });
            return m_navigation.switchToSpace(m_waiting.from, {});
        }
        m_waiting.windows.pop_front();
        if (isToBeCarried && isInReach && begin(window, m_waiting.from, m_waiting.to)) {
            m_waiting.isFromAfar = true; // it takes the display along
            return;
        }
    }
    m_windowStore.refreshSpaces();
    focusWhatCame();
}

/// The store may hear of it later.
void WindowMoves::focusWhatCame()
{
    auto window = std::exchange(m_waiting.toFocus, std::nullopt);
    if (!window || !m_windowStore.window(*window))
        return;
    auto spaces = m_windowServer.spacesOfWindows(kAllSpacesMask, {*window});
    if (spaces && std::ranges::find(*spaces, m_waiting.to) != spaces->end())
        m_viewModel.activateWindow(*window, BarViewModel::FocusBeforeActivation::no);
}

/// Along one display, a key has to lead to the space while the button is held.
bool WindowMoves::canCarry(SpaceID from, SpaceID to)
{
    auto source = info(from);
    auto target = info(to);
    return source && target && m_windowServer.canPostPointerEvents()
        && (source->displayIndex != target->displayIndex || m_navigation.desktopSwitchShortcut(to));
}

bool WindowMoves::begin(WindowID window, SpaceID from, SpaceID to)
{
    auto source = info(from);
    auto target = info(to);
    if (!source || !target)
        return false;
    m_previousApp = m_workspace.frontmostApplication();
    m_pointerBefore = m_displays.pointerLocation();
    return source->displayIndex == target->displayIndex ? beginWindowMoveDrag(window, from, to)
                                                        : beginSilicaWindowMove(window, from, to);
}

/// The window server says nothing of a refusal; only the window's spaces tell.
bool WindowMoves::moveDirectly(WindowID window, SpaceID target) const
{
    m_spaceWindows.moveWindowExclusively(window, target);
    auto spaces = m_windowServer.spacesOfWindows(kAllSpacesMask, {window});
    return spaces && *spaces == std::vector{target};
}

void WindowMoves::raise(WindowID window, Work next)
{
    m_viewModel.activateWindow(window, BarViewModel::FocusBeforeActivation::yes);
    m_raiseWork = m_dispatch.main().after(kRaisePause, std::move(next));
}

// MARK: Carried to another space of its display

bool WindowMoves::beginWindowMoveDrag(WindowID id, SpaceID source, SpaceID target)
{
    if (!m_navigation.desktopSwitchShortcut(target))
        return false; // a panel that became key would take the window out of the hand
    auto grip = gripOf(*m_windowStore.window(id));
    m_pendingWindowMoveDrag
        = PendingWindowMoveDrag{id, source, target, grip, grip.translated(kNudge, 0)};
    raise(id, [this] { holdAndSwitch(); });
    return true;
}

void WindowMoves::holdAndSwitch()
{
    auto& drag = *m_pendingWindowMoveDrag;
    if (!m_navigation.isCurrent(drag.sourceSpaceID) || !isOnTop(drag.windowID, drag.mouseDownPoint))
        return abandon();
    post(PointerPost::pressed, drag.mouseDownPoint);
    post(PointerPost::dragged, drag.dropPoint);
    m_pendingWindowMoveDragTimeoutWork = m_dispatch.main().after(
        kMoveTimeout, [this] { finishPendingWindowMoveDrag(m_previousApp); });
    m_navigation.switchToSpace(drag.targetSpaceID, m_previousApp);
}

void WindowMoves::finishPendingWindowMoveDrag(std::optional<ProcessID> previousApp)
{
    auto drag = *std::exchange(m_pendingWindowMoveDrag, std::nullopt);
    m_pendingWindowMoveDragTimeoutWork.cancel();
    post(PointerPost::released, drag.dropPoint);
    settle(drag.windowID, previousApp);
}

// MARK: Dragged to another display

bool WindowMoves::beginSilicaWindowMove(WindowID id, SpaceID source, SpaceID target)
{
    auto from = displayOf(source);
    auto to = displayOf(target);
    if (!from || !to)
        return false;
    auto grip = gripOf(*m_windowStore.window(id));
    auto drop = clamped(grip.translated(to->x - from->x, to->y - from->y),
        to->inset(std::min(kDropInset, to->width / 2), std::min(kDropInset, to->height / 2)));
    m_pendingSilicaWindowMove = PendingSilicaWindowMove{id, target, grip, drop};
    m_pendingWindowMoveDragTimeoutWork
        = m_dispatch.main().after(kMoveTimeout, [this] { abandon(); });
    if (m_navigation.isCurrent(target))
        raise(id, [this, id] { finishSilicaWindowMove(id, m_previousApp); });
    else
        m_navigation.switchToSpace(target, m_previousApp);
    return true;
}

void WindowMoves::finishSilicaWindowMove(WindowID id, std::optional<ProcessID> previousApp)
{
    auto move = *std::exchange(m_pendingSilicaWindowMove, std::nullopt);
    if (!isOnTop(id, move.mouseDownPoint))
        return abandon();
    m_pendingWindowMoveDragTimeoutWork.cancel();
    auto& from = move.mouseDownPoint;
    auto& to = move.dropPoint;
    post(PointerPost::pressed, from);
    post(PointerPost::dragged, from.translated(kNudge, 0));
    post(PointerPost::dragged, {(from.x + to.x) / 2, (from.y + to.y) / 2});
    post(PointerPost::dragged, to);
    post(PointerPost::released, to);
    settle(id, previousApp);
}

// MARK: Both

void WindowMoves::spaceDidChange(const std::vector<SpaceID>& shown)
{
    if (m_pendingWindowMoveDrag && m_heldAt
        && isShown(m_pendingWindowMoveDrag->targetSpaceID, shown))
        finishPendingWindowMoveDrag(m_previousApp);
    if (m_pendingSilicaWindowMove && isShown(m_pendingSilicaWindowMove->targetSpaceID, shown)
        && !m_raiseWork.isPending()) {
        auto id = m_pendingSilicaWindowMove->windowID;
        raise(id, [this, id] { finishSilicaWindowMove(id, m_previousApp); });
    }
    if (!m_pendingWindowMoveDrag && !m_pendingSilicaWindowMove && !m_waiting.windows.empty()
        && isShown(m_waiting.from, shown))
        moveNext();
}

/// The moved window keeps the focus; if it has closed meanwhile, whoever had it before.
void WindowMoves::settle(WindowID window, std::optional<ProcessID> previousApp)
{
    post(PointerPost::moved, m_pointerBefore);
    m_windowStore.refreshSpaces();
    if (m_windowStore.window(window))
        m_viewModel.activateWindow(window, BarViewModel::FocusBeforeActivation::no);
    else if (previousApp && !m_workspace.activateCooperatively(*previousApp))
        m_workspace.activateDirectly(*previousApp);
    if (!m_waiting.windows.empty())
        moveNext();
}

void WindowMoves::abandon()
{
    if (m_heldAt) {
        post(PointerPost::released, *m_heldAt);
        post(PointerPost::moved, m_pointerBefore);
    }
    m_waiting = {};
    m_pendingWindowMoveDrag.reset();
    m_pendingSilicaWindowMove.reset();
    m_pendingWindowMoveDragTimeoutWork.cancel();
    m_raiseWork.cancel();
}

/// A press on whatever lies above the window would move, or do, something else.
bool WindowMoves::isOnTop(WindowID window, Point at) const
{
    std::optional<WindowID> top;
    auto current = m_spaceWindows.getActiveSpaceIDs();
    m_windowServer.enumerateWindows(
        kWindowListExcludeDesktopElements, [&](const CGWindowInfo& entry) {
            bool isThere = entry.bounds && entry.bounds->contains(at) && entry.windowNumber;
            auto* tracked = isThere ? m_windowStore.window(*entry.windowNumber) : nullptr;
            bool isSeen = tracked && !tracked->isMinimized
                && std::ranges::find_first_of(tracked->spaceIDs, current)
                    != tracked->spaceIDs.end();
            if (!top && isSeen)
                top = entry.windowNumber;
        });
    return top == window;
}

void WindowMoves::post(PointerPost post, Point at)
{
    if (post == PointerPost::pressed || post == PointerPost::dragged)
        m_heldAt = at;
    else if (post == PointerPost::released)
        m_heldAt.reset();
    m_windowServer.postPointerEvent(post, at);
}

std::optional<SpaceWindows::Info> WindowMoves::info(SpaceID space) const
{
    for (auto& candidate : m_viewModel.spaces.value()) {
        if (candidate.spaceID == space)
            return candidate;
    }
    return {};
}

/// Global top-left origin, as the pointer's place.
std::optional<Rect> WindowMoves::displayOf(SpaceID space) const
{
    auto known = info(space);
    auto screens = m_displays.screens();
    auto screen = known ? m_spaceWindows.screen(known->displayIdentifier, screens) : std::nullopt;
    if (!screen)
        return {};
    return screen->frame.flipped(m_spaceWindows.primaryScreenMaxY(screens));
}

}
