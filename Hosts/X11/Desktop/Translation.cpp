#include "Hosts/X11/Desktop/Translation.h"

#include <algorithm>
#include <climits>

#include <fmt/format.h>
#include <unistd.h>

namespace quorvel::xdg::x11 {

namespace {

/// Above and below what users work in; any number but 0 keeps a window off the bar.
constexpr std::int32_t kDockLayer = 20;
constexpr std::int32_t kDesktopLayer = -20;

bool coversItsMonitor(const Rect& frame, const std::vector<Monitor>& monitors)
{
    return std::ranges::any_of(
        monitors, [&](const Monitor& monitor) { return frame.contains(monitor.pixels); });
}

const std::string& thisMachine()
{
    static const std::string machine = [] {
        char name[HOST_NAME_MAX + 1] = {};
        return std::string{gethostname(name, HOST_NAME_MAX) == 0 ? name : ""};
    }();
    return machine;
}

std::optional<std::uint32_t> processOf(const Client& client)
{
    auto isPossible = [](std::uint32_t pid) { return pid > 0 && pid <= INT_MAX; };
    if (client.serverProcess && isPossible(*client.serverProcess))
        return client.serverProcess;
    bool isLocal = client.machine && !thisMachine().empty() && *client.machine == thisMachine();
    if (isLocal && client.claimedProcess && isPossible(*client.claimedProcess))
        return client.claimedProcess;
    return std::nullopt;
}

/// A manager shortens what is maximised itself, once it has read the bar's strut; where there can
/// be none, it is ours to do.
bool isLeftToUs(const Client& client, const std::vector<Monitor>& monitors)
{
    auto centre = client.frame().centre();
    return std::ranges::any_of(monitors, [&](const Monitor& monitor) {
        return monitor.pixels.contains(centre) && hasMonitorBelow(monitor.pixels, monitors);
    });
}

bool canResize(const Client& client, const std::vector<Monitor>& monitors)
{
    if (client.state.isFullScreen)
        return false;
    return client.state.isMaximizedVertically ? isLeftToUs(client, monitors)
                                              : !coversItsMonitor(client.frame(), monitors);
}

/// Together these three are what session managers have always known windows again by.
std::string roleOf(const Client& client)
{
    auto& [instance, name] = client.windowClass;
    if (instance.empty() && name.empty() && !client.role)
        return {};
    return fmt::format("{}.{}/{}", instance, name, client.role.value_or(""));
}

std::int32_t layerOf(const Client& client)
{
    if (client.type == WindowType::dock)
        return kDockLayer;
    return isDesktopElement(client) ? kDesktopLayer : 0;
}

WindowSwitches offeredSwitches(const Client& client, const TranslationContext& context)
{
    WindowSwitches offered;
    for (auto one : {WindowSwitch::maximized, WindowSwitch::fullScreen, WindowSwitch::keptAbove,
             WindowSwitch::onEverySpace}) {
        bool isForbidden = context.switches.namedInActions.contains(one) && client.allowed
            && !client.allowed->contains(one);
        bool isPointless = one == WindowSwitch::onEverySpace && context.desktopCount < 2;
        offered.set(one, context.switches.supported.contains(one) && !isForbidden && !isPointless);
    }
    return offered;
}

WindowSwitches switchesOf(const Client& client)
{
    auto& state = client.state;
    WindowSwitches on;
    on.set(WindowSwitch::maximized, state.isMaximizedVertically && state.isMaximizedHorizontally);
    on.set(WindowSwitch::fullScreen, state.isFullScreen);
    on.set(WindowSwitch::keptAbove, state.isKeptAbove);
    on.set(WindowSwitch::onEverySpace, client.desktop == kEveryDesktop);
    return on;
}

}

bool isStandardWindow(const Client& client, bool hasParent)
{
    if (client.state.skipsTaskbar)
        return false;
    if (client.type == WindowType::normal)
        return true;
    bool isDialogLike = !client.type || client.type == WindowType::dialog;
    return isDialogLike && !hasParent;
}

bool isDesktopElement(const Client& client)
{
    return client.type == WindowType::desktop;
}

bool speaksForParent(const Client& client, bool hasParent)
{
    if (!hasParent)
        return false;
    return !client.type || client.type == WindowType::dialog || client.type == WindowType::utility
        || client.type == WindowType::splash;
}

std::optional<SpaceID> spaceOf(const Client& client, const TranslationContext& context)
{
    if (!context.hasDesktops)
        return SpaceID{1};
    auto desktop = client.desktop.value_or(context.currentDesktop);
    if (desktop == kEveryDesktop)
        return std::nullopt;
    return SpaceID{std::uint64_t{std::min(desktop, context.desktopCount - 1)} + 1};
}

WindowOrigin originOf(const Client& client, std::uint32_t clientMask)
{
    return {processOf(client), client.window & ~clientMask, client.applicationID,
        client.windowClass.name, client.windowClass.instance};
}

WindowRecord recordOf(const Client& client, bool hasParent, const TranslationContext& context)
{
    auto frame = client.frame();
    auto& state = client.state;
    WindowRecord record;
    record.id = client.id;
    record.native = client.window;
    record.title = client.title();
    record.role = roleOf(client);
    record.isStandard = isStandardWindow(client, hasParent);
    record.isModal = state.isModal;
    record.isMinimized = client.isMinimized;
    record.isDesktopElement = isDesktopElement(client);
    record.isFullScreen = state.isFullScreen;
    record.canResize = canResize(client, context.monitors);
    record.asksForAttention = state.demandsAttention || client.hints.isUrgent;
    record.layer = layerOf(client);
    record.alpha = client.opacity;
    record.frame = context.coordinates.toPoints(frame);
    record.space = spaceOf(client, context);
    record.offered = offeredSwitches(client, context);
    record.on = switchesOf(client);
    return record;
}

}
