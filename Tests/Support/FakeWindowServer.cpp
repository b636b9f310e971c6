#include "Tests/Support/FakeWindowServer.h"

#include <algorithm>

#include "Tests/Support/FakeDesktop.h"

namespace quorvel::test {

namespace {

ManagedSpace managed(const FakeSpace& space)
{
    return {.id64 = raw(space.id),
        .managedSpaceID = raw(space.id),
        .type = space.type,
        .uuid = space.uuid};
}

ManagedDisplay managed(const FakeDisplay& display)
{
    ManagedDisplay managedDisplay{
        .identifier = display.identifier, .spaces = {}, .currentSpace = std::nullopt};
    for (auto& space : display.spaces) {
        managedDisplay.spaces.push_back(managed(space));
        if (space.id == display.current)
            managedDisplay.currentSpace = managed(space);
    }
    return managedDisplay;
}

}

CGWindowInfo FakeWindowServer::entry(const FakeWindow& window) const
{
    CGWindowInfo info{.windowNumber = window.id,
        .ownerPID = window.pid,
        .layer = window.layer,
        .bounds = window.frame,
        .alpha = window.alpha,
        .ownerName = {},
        .windowName = window.title};
    if (auto* application = m_desktop.model().application(window.pid))
        info.ownerName = application->info.localizedName;
    if (window.distortEntry)
        window.distortEntry(info);
    return info;
}

Listing FakeWindowServer::enumerateWindows(
    ProcessID owner, std::uint32_t options, const WindowVisitor& visitor) const
{
    return enumerateWindows(options, [&](const CGWindowInfo& window) {
        if (window.ownerPID == owner)
            visitor(window);
    });
}

Listing FakeWindowServer::enumerateWindows(std::uint32_t, const WindowVisitor& visitor) const
{
    auto now = m_desktop.dispatch().now();
    m_listings.push_back(now);
    if (m_failsWindowLists)
        return Listing::failed;
    for (auto& stray : m_strayEntries)
        visitor(stray);
    for (auto id : m_desktop.model().stacking) {
        auto& window = m_desktop.window(id);
        if (window.inServerFrom <= now)
            visitor(entry(window));
    }
    for (auto& ghost : m_desktop.model().ghosts) {
        if (ghost.until > now)
            visitor(entry(ghost.window));
    }
    return Listing::complete;
}

std::optional<std::uint32_t> FakeWindowServer::nativeWindowNumber(WindowID id) const
{
    auto* window = m_desktop.model().window(id);
    return window ? std::optional{window->number.value_or(raw(id))} : std::nullopt;
}

std::optional<std::string> FakeWindowServer::windowRole(WindowID id) const
{
    auto* window = m_desktop.model().window(id);
    return window ? window->windowRole : std::nullopt;
}

std::optional<std::vector<ManagedDisplay>> FakeWindowServer::managedDisplaySpaces() const
{
    ++m_spaceQueries;
    if (m_failsSpaceLists)
        return std::nullopt;
    std::vector<ManagedDisplay> displays;
    for (auto& display : m_desktop.model().displays)
        displays.push_back(managed(display));
    // Without separate spaces there is one list, and it names no display.
    if (!displays.empty() && !m_desktop.model().displaysHaveSeparateSpaces) {
        displays.resize(1);
        displays.front().identifier = std::string{"Main"};
    }
    if (m_distortion)
        m_distortion(displays);
    return displays;
}

std::optional<std::vector<WindowID>> FakeWindowServer::windowsOfSpaces(
    const std::vector<SpaceID>& spaces, std::uint32_t options) const
{
    if (m_failingSpace && std::ranges::count(spaces, *m_failingSpace) > 0)
        return std::nullopt;
    std::vector<WindowID> found;
    bool leavesOutOrderedOut = options & kSpaceWindowOptions;
    for (auto id : m_desktop.model().stacking) {
        auto& window = m_desktop.window(id);
        if (!window.isInSpaceLists || window.inServerFrom > m_desktop.dispatch().now()
            || (leavesOutOrderedOut && window.isMinimized))
            continue;
        if (std::ranges::any_of(
                spaces, [&](SpaceID space) { return window.spaces.contains(space); }))
            found.push_back(id);
    }
    return found;
}

std::optional<std::vector<SpaceID>> FakeWindowServer::spacesOfWindows(
    std::uint32_t, const std::vector<WindowID>& windows) const
{
    if (m_failsSpacesOfWindows)
        return std::nullopt;
    std::set<SpaceID> spaces;
    for (auto id : windows) {
        if (auto* window = m_desktop.model().window(id))
            spaces.insert(window->spaces.begin(), window->spaces.end());
    }
    return std::vector(spaces.begin(), spaces.end());
}

SpaceID FakeWindowServer::activeSpace() const
{
    auto& displays = m_desktop.model().displays;
    return displays.empty() ? SpaceID{} : displays.front().current;
}

std::optional<std::string> FakeWindowServer::spaceName(SpaceID id) const
{
    auto* display = m_desktop.model().displayOfSpace(id);
    if (!display)
        return std::nullopt;
    return std::ranges::find(display->spaces, id, &FakeSpace::id)->name;
}

bool FakeWindowServer::displaysHaveSeparateSpaces() const
{
    return m_desktop.model().displaysHaveSeparateSpaces;
}

void FakeWindowServer::changeSpaces(
    SpaceChange change, const std::vector<WindowID>& windows, const std::vector<SpaceID>& spaces)
{
    for (auto id : windows) {
        auto* window = m_desktop.model().window(id);
        for (auto space : spaces) {
            m_moves.push_back({change, id, space});
            if (!window || m_refusesMoves)
                continue;
            if (change == SpaceChange::add)
                window->spaces.insert(space);
            else
                window->spaces.erase(space);
        }
    }
    if (m_desktop.givesSpaceHints())
        m_desktop.post([this] { spacesOfWindowsDidChange.emit(); });
}

bool FakeWindowServer::setEdgeReservation(SpaceID space, ScreenEdge, double height)
{
    if (height > 0)
        m_edgeReservations[space] = height;
    else
        m_edgeReservations.erase(space);
    return true;
}

bool FakeWindowServer::setDockRectangle(const DockRectangle& rectangle)
{
    ++m_dockRectangleCalls;
    if (!m_refusesDockRectangles)
        m_dockRectangles[rectangle.display] = rectangle.rect;
    return !m_refusesDockRectangles;
}

void FakeWindowServer::clearDockRectangle(DisplayNumber display)
{
    ++m_dockRectangleCalls;
    m_dockRectangles.erase(display);
}

std::optional<SymbolicHotKey> FakeWindowServer::symbolicHotKey(int identifier) const
{
    auto found = m_hotKeys.find(identifier);
    return found == m_hotKeys.end() ? std::nullopt : std::optional{found->second.key.keys};
}

bool FakeWindowServer::isSymbolicHotKeyEnabled(int identifier) const
{
    auto found = m_hotKeys.find(identifier);
    return found != m_hotKeys.end() && found->second.key.isEnabled;
}

bool FakeWindowServer::setSymbolicHotKeyEnabled(int identifier, bool isEnabled)
{
    auto found = m_hotKeys.find(identifier);
    if (found == m_hotKeys.end() || !found->second.key.canBeEnabled)
        return false;
    found->second.key.isEnabled = isEnabled;
    return true;
}

void FakeWindowServer::postKeyEvent(std::uint16_t keyCode, KeyAction action, std::uint64_t flags)
{
    m_postedKeys.push_back({keyCode, action, flags});
    if (action != KeyAction::down)
        return;
    for (auto& [identifier, entry] : m_hotKeys) {
        if (entry.key.isEnabled && entry.key.keys == SymbolicHotKey{keyCode, flags})
            return m_desktop.activateSpace(entry.space);
    }
}

void FakeWindowServer::postPointerEvent(PointerPost post, Point at)
{
    m_postedPointer.emplace_back(post, at);
    if (post == PointerPost::pressed)
        m_isButtonDown = true;
    else if (post == PointerPost::released)
        m_isButtonDown = false;
    m_desktop.handPointer(post, at);
}

}
