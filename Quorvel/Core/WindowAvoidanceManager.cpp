#include "Quorvel/Core/WindowAvoidanceManager.h"

#include <algorithm>

#include "Quorvel/Skylight/AXCalls.h"
#include "Quorvel/Skylight/WindowStore.h"

namespace quorvel {

/// Asks applications to shorten their windows, on the queue. What fails is left as it is: the user
/// sees a window under the bar, and the next change of the desktop tries again.
class WindowAvoidanceManager::Resizer {
public:
    explicit Resizer(Accessibility& accessibility)
        : m_accessibility(accessibility)
        , m_calls(accessibility)
        , m_axGetWindow(accessibility.windowIDResolver())
    {
    }

    void resize(const std::vector<Resize>& windows)
    {
        if (!m_axGetWindow)
            return;
        const AXCalls::Scan scan{m_calls};
        for (auto& window : windows)
            resizeWindowViaAX(window.windowID, window.pid, window.newHeight);
    }

private:
    void resizeWindowViaAX(WindowID windowID, ProcessID pid, double newHeight)
    {
        const auto elements = m_calls.windows(pid);
        if (!elements)
            return;
        for (auto& element : *elements) {
            WindowID id{};
            if (m_axGetWindow(element, id) != AXError::success || id != windowID)
                continue;
            if (auto size = m_calls.read<Size>(pid, element, ax::size))
                m_accessibility.setAttribute(element, ax::size, Size{size->width, newHeight});
        }
    }

    Accessibility& m_accessibility;
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

void WindowAvoidanceManager::scheduleAdjustment(Duration debounce)
{
    m_pendingWork = m_dispatch.main().after(debounce, [this] { adjustNow(); });
}

void WindowAvoidanceManager::adjustNow()
{
    auto resizes = findOverlaps();
    m_pendingResizes.cancel();
    if (resizes.empty())
        return;
    m_pendingResizes = m_resizeQueue->after(
        Duration::zero(), [&accessibility = m_accessibility, resizes = std::move(resizes)] {
            Resizer{accessibility}.resize(resizes);
        });
}

std::vector<WindowAvoidanceManager::Resize> WindowAvoidanceManager::findOverlaps() const
{
    std::vector<Resize> overlaps;
    const auto screens = m_displays.screens();
    if (screens.empty())
        return overlaps;
    const double height = screens.front().frame.height;
    const bool hasSeparateSpaces = m_windowServer.displaysHaveSeparateSpaces();
    std::vector<const TrackedWindow*> all;
    for (auto& [id, window] : m_windowStore.windows())
        all.push_back(&window);

    const auto panels = m_bars.getPanels();
    const auto spaces = m_bars.getSpaces();
    for (auto space : m_spaceWindows.getActiveSpaceIDs()) {
        const auto info = std::ranges::find(spaces, space, &SpaceWindows::Info::spaceID);
        if (!panels.contains(space) || info == spaces.end())
            continue;
        shortenOn(screenOf(*info, screens), height,
            hasSeparateSpaces ? m_windowStore.windows(space) : all, overlaps);
    }
    for (auto index : m_bars.getMirrorScreenIndices()) {
        if (index < screens.size())
            shortenOn(screens[index], height, all, overlaps);
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

void WindowAvoidanceManager::shortenOn(const Screen& screen, double firstScreenHeight,
    const std::vector<const TrackedWindow*>& candidates, std::vector<Resize>& overlaps) const
{
    const auto area = screen.frame.flipped(firstScreenHeight);
    const double limit = area.maxY() - m_barHeight - resizeCursorClearance;
    for (auto* window : candidates) {
        if (window->isMinimized || !area.contains(window->frame.centre())
            || window->frame.maxY() <= limit)
            continue;
        const double newHeight = limit - window->frame.y;
        if (newHeight >= kLowestHeight)
            overlaps.push_back({window->windowID, window->pid, newHeight});
    }
}

}
