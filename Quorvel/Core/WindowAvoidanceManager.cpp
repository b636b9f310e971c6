#include "Quorvel/Core/WindowAvoidanceManager.h"

#include <algorithm>
#include <iterator>

#include "Quorvel/Skylight/AXCalls.h"
#include "Quorvel/Skylight/WindowStore.h"

namespace quorvel {

/// Asks applications to shorten their windows, on the queue. What fails is left as it is: the user
/// sees a window under the bar.
class WindowAvoidanceManager::Resizer {
public:
    explicit Resizer(Accessibility& accessibility)
        : m_calls(accessibility)
        , m_axGetWindow(accessibility.windowIDResolver())
    {
    }

    /// Those whose application has been asked, and has given some answer.
    std::vector<Resize> resize(const std::vector<Resize>& windows)
    {
        std::vector<Resize> asked;
        if (!m_axGetWindow)
            return asked;
        const AXCalls::Scan scan{m_calls};
        std::ranges::copy_if(windows, std::back_inserter(asked),
            [this](auto& window) { return resizeWindowViaAX(window); });
        return asked;
    }

private:
    bool resizeWindowViaAX(const Resize& resize)
    {
        bool isAsked = false;
        const auto elements = m_calls.windows(resize.pid);
        if (!elements)
            return isAsked;
        for (auto& element : *elements) {
            WindowID id{};
            if (m_axGetWindow(element, id) == AXError::success && id == resize.windowID)
                isAsked |= resizeElement(element, resize);
        }
        return isAsked;
    }

    /// The window may be elsewhere by now, with news of that still to come: one that has just been
    /// maximised would be too short by as much as it has moved up.
    bool resizeElement(const AXElement& element, const Resize& resize)
    {
        const auto size = m_calls.read<Size>(resize.pid, element, ax::size);
        if (!size)
            return false;
        const auto place = m_calls.read<Point>(resize.pid, element, ax::position);
        const double top = place ? place->y : resize.frame.y;
        const double height = resize.frame.y + resize.newHeight - top;
        if (height < kLowestHeight || size->height <= height)
            return false;
        return m_calls.setAttribute(resize.pid, element, ax::size, Size{size->width, height})
            != AXError::cannotComplete;
    }

    AXCalls m_calls;
    Accessibility::WindowIDResolver m_axGetWindow;
};

WindowAvoidanceManager::WindowAvoidanceManager(const WindowStore& windowStore, Dispatch& dispatch,
    Accessibility& accessibility, WindowServer& windowServer, Displays& displays, Bars bars)
    : m_windowStore(windowStore)
    , m_dispatch(dispatch)
    , m_accessibility(accessibility)
    , m_windowServer(windowServer)
    , m_displays(displays)
    , m_spaceWindows(windowServer, displays)
    , m_bars(std::move(bars))
    , m_resizeQueue(dispatch.makeSerialQueue(
          "com.quorvel.windowAvoidance", QualityOfService::userInteractive))
{
}

WindowAvoidanceManager::~WindowAvoidanceManager() = default;

void WindowAvoidanceManager::windowsDidChange()
{
    forgetMovedWindows();
    auto& windows = m_windowStore.windows();
    auto isSame = [](auto& placed, auto& window) { return placed.isOf(window.second); };
    if (std::ranges::equal(m_placements, windows, isSame))
        return;
    m_placements.clear();
    for (auto& [id, window] : windows)
        m_placements.emplace_back(window);
    scheduleAdjustment(kPause);
}

WindowAvoidanceManager::Placement::Placement(const TrackedWindow& window)
    : windowID(window.windowID)
    , frame(window.frame)
    , isMinimized(window.isMinimized)
    , spaceIDs(window.spaceIDs)
{
}

bool WindowAvoidanceManager::Placement::isOf(const TrackedWindow& window) const
{
    return windowID == window.windowID && frame == window.frame && isMinimized == window.isMinimized
        && spaceIDs == window.spaceIDs;
}

void WindowAvoidanceManager::scheduleAdjustment(Duration debounce)
{
    m_pendingWork = m_dispatch.main().after(debounce, [this] { adjustNow(); });
}

void WindowAvoidanceManager::scheduleAdjustment(SpaceWindows::Answer answer)
{
    m_pendingWork = m_dispatch.main().after(
        Duration::zero(), [this, answer = std::move(answer)] { adjust(answer); });
}

void WindowAvoidanceManager::adjust(const SpaceWindows::Answer& answer)
{
    forgetMovedWindows();
    auto resizes = findOverlaps(answer);
    std::erase_if(resizes, [this](auto& resize) {
        auto asked = m_asked.find(resize.windowID);
        return asked != m_asked.end() && asked->second == resize;
    });
    m_pendingResizes.cancel();
    if (resizes.empty())
        return;
    m_pendingResizes = m_resizeQueue->after(Duration::zero(),
        [&accessibility = m_accessibility, &main = m_dispatch.main(), weak = m_weak.reference(),
            resizes = std::move(resizes)] {
            main.async([weak, asked = Resizer{accessibility}.resize(resizes)] {
                if (auto* self = weak.get())
                    self->noteAsked(asked);
            });
        });
}

void WindowAvoidanceManager::noteAsked(const std::vector<Resize>& resizes)
{
    for (auto& resize : resizes) {
        if (isAsFound(resize))
            m_asked.insert_or_assign(resize.windowID, resize);
    }
}

bool WindowAvoidanceManager::isAsFound(const Resize& resize) const
{
    auto* window = m_windowStore.window(resize.windowID);
    return window && window->frame == resize.frame;
}

void WindowAvoidanceManager::forgetMovedWindows()
{
    std::erase_if(m_asked, [this](auto& entry) { return !isAsFound(entry.second); });
}

std::vector<WindowAvoidanceManager::Resize> WindowAvoidanceManager::findOverlaps(
    const SpaceWindows::Answer& answer) const
{
    std::vector<Resize> overlaps;
    const auto screens = m_displays.screens();
    if (screens.empty())
        return overlaps;
    const double top = m_spaceWindows.primaryScreenMaxY(screens);
    const bool hasSeparateSpaces = m_windowServer.displaysHaveSeparateSpaces();
    std::vector<const TrackedWindow*> all;
    for (auto& [id, window] : m_windowStore.windows())
        all.push_back(&window);

    const auto panels = m_bars.getPanels();
    for (auto space : answer.shown) {
        const auto info = std::ranges::find(answer.spaces, space, &SpaceWindows::Info::spaceID);
        if (!panels.contains(space) || info == answer.spaces.end())
            continue;
        shortenOn(screenOf(*info, screens), top,
            hasSeparateSpaces ? m_windowStore.windows(space) : all, overlaps);
    }
    for (auto index : m_bars.getMirrorScreenIndices()) {
        if (index < screens.size())
            shortenOn(screens[index], top, all, overlaps);
    }
    return overlaps;
}

/// A display that the system does not name is taken by its place in the list.
Screen WindowAvoidanceManager::screenOf(
    const SpaceWindows::Info& space, const std::vector<Screen>& screens) const
{
    if (auto screen = m_spaceWindows.screen(space.displayIdentifier, screens))
        return *screen;
    const auto index = static_cast<std::size_t>(space.displayIndex);
    if (index < screens.size())
        return screens[index];
    return m_spaceWindows.screen("MAIN", screens).value_or(screens.front());
}

void WindowAvoidanceManager::shortenOn(const Screen& screen, double primaryScreenMaxY,
    const std::vector<const TrackedWindow*>& candidates, std::vector<Resize>& overlaps) const
{
    const auto area = screen.frame.flipped(primaryScreenMaxY);
    const double limit
        = area.maxY() - m_bars.getDockRoom(screen) - m_barHeight - resizeCursorClearance;
    for (auto* window : candidates) {
        if (window->isMinimized || !area.contains(window->frame.centre())
            || window->frame.maxY() <= limit)
            continue;
        const double newHeight = limit - window->frame.y;
        if (newHeight >= kLowestHeight)
            overlaps.push_back({window->windowID, window->pid, window->frame, newHeight});
    }
}

}
