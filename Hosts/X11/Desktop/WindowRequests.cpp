#include "Hosts/X11/Desktop/WindowRequests.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Desktop/Clients.h"
#include "Hosts/X11/Desktop/ManagerMessage.h"
#include "Hosts/X11/Desktop/RootState.h"
#include "Hosts/X11/Monitors.h"

namespace quorvel::xdg::x11 {

namespace {

constexpr std::uint32_t kIconicState = 3;
constexpr xcb_timestamp_t kFarActivationCounts = 1000; ///< milliseconds
constexpr std::uint32_t kNorthWestGravity = 1;
constexpr std::uint32_t kVerticalPlace = 1u << 9;
constexpr std::uint32_t kWidthAndHeight = 1u << 10 | 1u << 11;
constexpr double kLargestSide = 32767;

std::uint32_t side(double pixels)
{
    return static_cast<std::uint32_t>(std::clamp(std::round(pixels), 1.0, kLargestSide));
}

}

WindowRequests::WindowRequests(Connection& connection, Monitors& monitors, Clients& clients,
    const RootState& root, SharedModel& model)
    : m_connection(connection)
    , m_monitors(monitors)
    , m_clients(clients)
    , m_root(root)
    , m_model(model)
    , m_time(connection)
{
}

void WindowRequests::activate(WindowID window)
{
    m_wishes.activation = window;
    m_wishes.minimized.erase(window);
    if (onActivationAsked)
        onActivationAsked(window);
    wish();
}

void WindowRequests::toggleShowingDesktop()
{
    // What was asked for counts until the manager has said that it is so, or the second of two
    // quick clicks would ask for the same, and the third would take the first one's answer for its
    // own.
    const auto reads = [this](bool value) { return m_root.showingDesktopReads(value); };
    const bool isAsked
        = m_askedDesktop && m_askedDesktop->reads == reads(m_askedDesktop->isShowing);
    const bool isShowing = isAsked ? m_askedDesktop->isShowing : m_root.isShowingDesktop();
    m_askedDesktop = {!isShowing, reads(!isShowing)};
    sendToManager(m_connection, m_connection.root(), m_connection.atoms().netShowingDesktop,
        {isShowing ? 0u : 1u});
    xcb_flush(m_connection.raw());
}

void WindowRequests::focusWasLost()
{
    // xfwm4 takes the focus from all windows when it switches, later than the time of the request
    // that follows, which it then cannot fulfil for a window that was minimised.
    const auto last = std::exchange(m_farActivation, std::nullopt);
    if (!last)
        return;
    m_time.ask([this, last = *last](xcb_timestamp_t time) {
        auto* client = m_clients.find(last.window);
        const bool isShown = client && !client->state.isHidden && !m_isAsking
            && client->desktop == m_root.currentDesktop();
        if (!isShown || time - last.time > kFarActivationCounts)
            return;
        sendToManager(m_connection, client->window, m_connection.atoms().netActiveWindow,
            {kSourcePager, time, XCB_WINDOW_NONE});
        xcb_flush(m_connection.raw());
    });
}

void WindowRequests::activateApplication(ProcessID pid)
{
    m_wishes.applicationActivation = pid;
    wish();
}

void WindowRequests::minimize(WindowID window)
{
    m_wishes.minimized[window] = true;
    if (m_wishes.activation == window)
        m_wishes.activation.reset();
    if (onActivationAsked)
        onActivationAsked(std::nullopt);
    wish();
}

void WindowRequests::close(WindowID window)
{
    m_wishes.closed.push_back(window);
    wish();
}

void WindowRequests::setSwitch(WindowID window, WindowSwitch one, bool isOn)
{
    m_wishes.switches[{window, one}] = isOn;
    wish();
}

void WindowRequests::resize(WindowID window, Size size)
{
    m_wishes.sizes[window] = size;
    wish();
}

void WindowRequests::switchTo(SpaceID space)
{
    m_wishes.space = space;
    wish();
}

void WindowRequests::sendToWantedSpaces()
{
    m_wishes.hasSpaces = true;
    wish();
}

void WindowRequests::wish()
{
    // The server's answer comes in a later turn, when all that belongs together has been wished.
    if (std::exchange(m_isAsking, true))
        return;
    m_time.ask([this](xcb_timestamp_t time) { send(time); });
}

void WindowRequests::send(xcb_timestamp_t time)
{
    m_isAsking = false;
    m_farActivation.reset();
    auto wishes = std::exchange(m_wishes, {});
    auto sent = wishes.hasSpaces ? sendSpaces() : Sent{};
    if (wishes.space)
        sendSwitch(time, *wishes.space);
    for (auto& [window, size] : wishes.sizes)
        sendSize(window, size);
    for (auto& [target, isOn] : wishes.switches)
        sendSwitch(target.first, target.second, isOn);
    for (auto& [window, isWanted] : wishes.minimized) {
        if (auto* client = m_clients.find(window); client && isWanted)
            sendToManager(
                m_connection, client->window, m_connection.atoms().wmChangeState, {kIconicState});
    }
    for (auto window : wishes.closed) {
        if (auto* client = m_clients.find(window))
            sendToManager(m_connection, client->window, m_connection.atoms().netCloseWindow,
                {time, kSourcePager});
    }

    auto activation = wishes.activation;
    if (!activation && wishes.applicationActivation)
        activation = windowToActivate(*wishes.applicationActivation);
    if (activation)
        sendActivation(time, *activation, sent);
    xcb_flush(m_connection.raw());
}

void WindowRequests::sendActivation(xcb_timestamp_t time, WindowID window, const Sent& sent)
{
    auto* client = m_clients.find(window);
    if (!client)
        return;
    // Alone, the activation of a window of another desktop is refused by some managers, and others
    // drag the window here.
    auto& atoms = m_connection.atoms();
    auto comesTo = sent.find(window);
    auto desktop
        = comesTo != sent.end() ? comesTo->second : client->desktop.value_or(kEveryDesktop);
    bool isElsewhere = desktop != kEveryDesktop && desktop < m_root.desktopCount()
        && desktop != m_root.currentDesktop();
    if (isElsewhere) {
        sendToManager(m_connection, m_connection.root(), atoms.netCurrentDesktop, {desktop, time});
        m_farActivation = {window, time};
    }
    sendToManager(
        m_connection, client->window, atoms.netActiveWindow, {kSourcePager, time, XCB_WINDOW_NONE});
}

void WindowRequests::sendSwitch(xcb_timestamp_t time, SpaceID space)
{
    auto desktop = raw(space) - 1; // space 0 wraps and is beyond every count
    if (desktop >= m_root.desktopCount())
        return;
    sendToManager(m_connection, m_connection.root(), m_connection.atoms().netCurrentDesktop,
        {static_cast<std::uint32_t>(desktop), time});
}

void WindowRequests::sendSize(WindowID window, Size points)
{
    auto* client = m_clients.find(window);
    if (!client)
        return;
    auto frame = client->frame();
    auto pixels = m_monitors.coordinates().toPixels(Rect::from({}, points)).size();
    double width = pixels.width - (frame.width - client->place.width);
    double height = pixels.height - (frame.height - client->place.height);
    auto& atoms = m_connection.atoms();
    auto flags = kNorthWestGravity | kWidthAndHeight | kSourcePager << 12;
    std::uint32_t y = 0;
    if (client->state.isMaximizedVertically) {
        // Its height is the manager's while it is maximised; without that it would go back to where
        // it was before.
        sendToManager(m_connection, client->window, atoms.netWmState,
            {kRemoveState, atoms.netWmStateMaximizedVert, 0, kSourcePager});
        flags |= kVerticalPlace;
        y = static_cast<std::uint32_t>(
            static_cast<std::int32_t>(client->place.y - client->frameExtents.top));
    }
    sendToManager(m_connection, client->window, atoms.netMoveResizeWindow,
        {flags, 0, y, side(width), side(height)});
}

void WindowRequests::sendSwitch(WindowID window, WindowSwitch one, bool isOn)
{
    auto* client = m_clients.find(window);
    if (!client)
        return;
    auto& atoms = m_connection.atoms();
    if (one == WindowSwitch::onEverySpace) {
        auto desktop = isOn ? kEveryDesktop : m_root.currentDesktop();
        return sendToManager(
            m_connection, client->window, atoms.netWmDesktop, {desktop, kSourcePager});
    }
    auto all = switchAtoms(atoms);
    auto& [first, second] = std::ranges::find(all, one, &SwitchAtoms::which)->feature;
    sendToManager(m_connection, client->window, atoms.netWmState,
        {isOn ? kAddState : kRemoveState, first, first == second ? 0 : second, kSourcePager});
}

WindowRequests::Sent WindowRequests::sendSpaces()
{
    Sent sent;
    auto wanted
        = m_model.write([](DesktopModel& model) { return std::exchange(model.wantedSpaces, {}); });
    for (auto& [window, spaces] : wanted) {
        auto* client = m_clients.find(window);
        if (!client || spaces.empty())
            continue;
        // A manager knows one desktop or all; of several, the one that was added last.
        bool isEvery = spaces.size() > 1 && spaces.size() >= m_root.desktopCount();
        auto desktop = isEvery ? kEveryDesktop : static_cast<std::uint32_t>(raw(spaces.back()) - 1);
        if (client->desktop != desktop)
            sendToManager(m_connection, client->window, m_connection.atoms().netWmDesktop,
                {desktop, kSourcePager});
        sent[window] = desktop;
    }
    return sent;
}

std::optional<WindowID> WindowRequests::windowToActivate(ProcessID pid) const
{
    return m_model.read([&](const DesktopModel& model) {
        std::vector<WindowID> candidates;
        for (auto id : model.windowsOf(pid)) {
            auto* window = model.window(id);
            if (window->layer == 0 && window->isOn(model.activeSpace))
                candidates.push_back(id);
        }
        auto last = model.lastActive(candidates);
        bool isNoneKnown = !last && !candidates.empty();
        return isNoneKnown ? std::optional{candidates.front()} : last;
    });
}

}
