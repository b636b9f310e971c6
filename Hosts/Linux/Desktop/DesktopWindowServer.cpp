#include "Hosts/Linux/Desktop/DesktopWindowServer.h"

#include <algorithm>
#include <set>

#include "Hosts/Linux/Desktop/DesktopRequests.h"
#include "Hosts/Linux/Desktop/DesktopTracker.h"
#include "Hosts/Linux/PanelEnvironment.h"

namespace quorvel::xdg {

namespace {

constexpr std::string_view kDisplayIdentifier = "Main";
constexpr std::int64_t kOrdinarySpace = 0;

ManagedSpace managed(SpaceID space)
{
    return {raw(space), raw(space), kOrdinarySpace};
}

CGWindowInfo infoOf(const DesktopModel& model, const WindowRecord& window)
{
    CGWindowInfo info;
    info.windowNumber = window.id;
    info.ownerPID = window.owner;
    info.layer = window.layer;
    info.bounds = window.frame;
    info.alpha = static_cast<float>(window.alpha);
    info.windowName = window.title;
    if (auto* application = model.application(window.owner))
        info.ownerName = application->name;
    return info;
}

}

DesktopWindowServer::DesktopWindowServer(SharedModel& model, DesktopTracker& tracker,
    DesktopRequests& requests, PanelEnvironment& environment,
    std::optional<std::string> windowSession)
    : m_model(model)
    , m_requests(requests)
    , m_environment(environment)
    , m_windowSession(std::move(windowSession))
{
    m_spacesChanged = tracker.spacesDidChange.subscribe([this] { spacesDidChange.emit(); });
    m_spacesOfWindowsChanged
        = tracker.spacesOfWindowsDidChange.subscribe([this] { spacesOfWindowsDidChange.emit(); });
    m_showingDesktopChanged = environment.isShowingDesktop.subscribe(
        [this](bool isShowing) { isShowingDesktop.set(isShowing); });
    m_spaceWanted
        = environment.spaceWanted.subscribe([this](SpaceID space) { m_requests.switchTo(space); });
}

Listing DesktopWindowServer::enumerateWindows(
    std::uint32_t options, const WindowVisitor& visitor) const
{
    enumerate({}, options, visitor);
    return Listing::complete;
}

Listing DesktopWindowServer::enumerateWindows(
    ProcessID owner, std::uint32_t options, const WindowVisitor& visitor) const
{
    enumerate(owner, options, visitor);
    return Listing::complete;
}

void DesktopWindowServer::enumerate(
    std::optional<ProcessID> owner, std::uint32_t options, const WindowVisitor& visitor) const
{
    bool excludesDesktop = (options & kWindowListExcludeDesktopElements) != 0;
    m_model.read([&](const DesktopModel& model) {
        auto visit = [&](const WindowRecord& window) {
            bool isWanted = (!owner || window.owner == *owner)
                && (!excludesDesktop || !window.isDesktopElement);
            if (isWanted)
                visitor(infoOf(model, window));
        };
        std::set<WindowID> stacked;
        std::vector<const WindowRecord*> stackedWindows;
        for (auto id : model.frontToBack) {
            auto* window = model.window(id);
            if (window && stacked.insert(id).second)
                stackedWindows.push_back(window);
        }
        // A window that the manager has not put in its order yet is a new one, and on top.
        for (auto entry = model.windows.rbegin(); entry != model.windows.rend(); ++entry) {
            if (!stacked.contains(entry->first))
                visit(entry->second);
        }
        for (auto* window : stackedWindows)
            visit(*window);
    });
}

std::optional<std::uint32_t> DesktopWindowServer::nativeWindowNumber(WindowID id) const
{
    return m_model.read([&](const DesktopModel& model) -> std::optional<std::uint32_t> {
        auto* window = model.window(id);
        return window ? std::optional{window->native} : std::nullopt;
    });
}

std::optional<std::string> DesktopWindowServer::windowRole(WindowID id) const
{
    return m_model.read([&](const DesktopModel& model) -> std::optional<std::string> {
        auto* window = model.window(id);
        return window && !window->role.empty() ? std::optional{window->role} : std::nullopt;
    });
}

std::optional<std::vector<ManagedDisplay>> DesktopWindowServer::managedDisplaySpaces() const
{
    return m_model.read([](const DesktopModel& model) {
        std::vector<ManagedDisplay> displays;
        // Without a window manager there is nothing to put a bar on.
        if (model.spaceNames.empty())
            return std::optional{displays};
        ManagedDisplay display;
        display.identifier = std::string{kDisplayIdentifier};
        for (auto space : model.spaces())
            display.spaces.push_back(managed(space));
        display.currentSpace = managed(model.activeSpace);
        displays.push_back(std::move(display));
        return std::optional{displays};
    });
}

std::optional<std::vector<WindowID>> DesktopWindowServer::windowsOfSpaces(
    const std::vector<SpaceID>& spaces, std::uint32_t) const
{
    return m_model.read([&](const DesktopModel& model) {
        std::vector<WindowID> windows;
        for (auto& [id, window] : model.windows) {
            bool isOnOne
                = std::ranges::any_of(spaces, [&](SpaceID space) { return window.isOn(space); });
            if (isOnOne)
                windows.push_back(id);
        }
        return std::optional{windows};
    });
}

std::optional<std::vector<SpaceID>> DesktopWindowServer::spacesOfWindows(
    std::uint32_t, const std::vector<WindowID>& windows) const
{
    return m_model.read([&](const DesktopModel& model) {
        std::vector<SpaceID> spaces;
        for (auto id : windows) {
            auto* window = model.window(id);
            if (!window)
                continue;
            for (auto space : model.spacesOf(*window)) {
                if (std::ranges::count(spaces, space) == 0)
                    spaces.push_back(space);
            }
        }
        return std::optional{spaces};
    });
}

SpaceID DesktopWindowServer::activeSpace() const
{
    return m_model.read([](const DesktopModel& model) { return model.activeSpace; });
}

std::optional<std::string> DesktopWindowServer::spaceName(SpaceID space) const
{
    return m_model.read([&](const DesktopModel& model) -> std::optional<std::string> {
        auto index = raw(space) - 1; // space 0 wraps and is beyond every count
        if (index >= model.spaceNames.size() || model.spaceNames[index].empty())
            return std::nullopt;
        return model.spaceNames[index];
    });
}

void DesktopWindowServer::addWindowsToSpaces(
    const std::vector<WindowID>& windows, const std::vector<SpaceID>& spaces)
{
    changeSpaces(windows, spaces, [](std::vector<SpaceID>& wanted, SpaceID space) {
        std::erase(wanted, space);
        wanted.push_back(space);
    });
}

void DesktopWindowServer::removeWindowsFromSpaces(
    const std::vector<WindowID>& windows, const std::vector<SpaceID>& spaces)
{
    changeSpaces(windows, spaces,
        [](std::vector<SpaceID>& wanted, SpaceID space) { std::erase(wanted, space); });
}

void DesktopWindowServer::changeSpaces(
    const std::vector<WindowID>& windows, const std::vector<SpaceID>& spaces, const Change& change)
{
    m_model.write([&](DesktopModel& model) {
        for (auto id : windows) {
            auto* window = model.window(id);
            if (!window)
                continue;
            auto wanted = model.spacesOf(*window);
            for (auto space : spaces) {
                if (raw(space) >= 1 && raw(space) <= model.spaceNames.size())
                    change(wanted, space);
            }
            model.wantedSpaces[id] = std::move(wanted);
        }
    });
    m_requests.sendToWantedSpaces();
}

bool DesktopWindowServer::setEdgeReservation(SpaceID space, ScreenEdge, double height)
{
    auto reservations = m_environment.edgeReservations.value();
    if (height > 0)
        reservations[space] = height;
    else
        reservations.erase(space);
    m_environment.edgeReservations.set(std::move(reservations));
    return true;
}

bool DesktopWindowServer::setDockRectangle(const DockRectangle& dock)
{
    auto heights = m_environment.dockHeights.value();
    heights[dock.display] = dock.rect.height;
    m_environment.dockHeights.set(std::move(heights));
    return m_environment.canReserve(dock.display);
}

void DesktopWindowServer::clearDockRectangle(DisplayNumber display)
{
    auto heights = m_environment.dockHeights.value();
    heights.erase(display);
    m_environment.dockHeights.set(std::move(heights));
}

void DesktopWindowServer::toggleShowingDesktop()
{
    m_requests.toggleShowingDesktop();
}

}
