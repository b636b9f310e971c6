#include "Hosts/X11/Desktop/RaisedWindow.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Desktop/Clients.h"
#include "Hosts/X11/Desktop/ManagerMessage.h"
#include "Hosts/X11/Desktop/RequestBatch.h"
#include "Hosts/X11/Desktop/RootState.h"

namespace quorvel::xdg::x11 {

RaisedWindow::RaisedWindow(Connection& connection, Clients& clients, const RootState& root,
    const std::vector<xcb_window_t>& left)
    : m_connection(connection)
    , m_clients(clients)
    , m_root(root)
{
    if (left.size() == 2)
        stopKeepingAbove(left[0], left[1]);
}

void RaisedWindow::set(std::optional<WindowID> window)
{
    if (m_raised ? m_raised->window == window : !window)
        return;
    if (m_raised)
        putBack(*m_raised);
    else
        look();
    m_raised.reset();
    if (auto* client = window ? m_clients.find(*window) : nullptr) {
        m_raised = Raised{*window, windowsAbove(*client)};
        raise(*client, *m_raised);
    }
    xcb_flush(m_connection.raw());
}

/// The order is asked for once: what a manager has been asked to change, it has not changed yet.
void RaisedWindow::look()
{
    if (m_clients.needsAncestry())
        m_clients.readAncestry();
    auto& atoms = m_connection.atoms();
    RequestBatch batch{m_connection.raw()};
    batch.children(m_connection.root(),
        [this](auto windows) { m_bottomToTop.assign(windows.begin(), windows.end()); });
    batch.property(m_connection.root(), atoms.netSupported, limits::features,
        [this, &atoms](const RawProperty& raw) {
            auto supported = decodeAtoms(raw);
            m_managerRestacks
                = std::ranges::find(supported, atoms.netRestackWindow) != supported.end();
        });
    batch.finish();
}

bool RaisedWindow::isSeen(const Client& client) const
{
    bool isHere = !client.desktop || *client.desktop == kEveryDesktop
        || *client.desktop == m_root.currentDesktop();
    return isHere && !client.state.isHidden && client.type != WindowType::dock
        && client.type != WindowType::desktop;
}

std::vector<xcb_window_t> RaisedWindow::windowsAbove(const Client& client)
{
    std::vector<xcb_window_t> above;
    auto place = std::ranges::find(m_bottomToTop, client.topLevel);
    for (; place != m_bottomToTop.end(); ++place) {
        auto* other = m_clients.findIn(*place);
        if (other && other != &client && isSeen(*other))
            above.push_back(*place);
    }
    return above;
}

const Client* RaisedWindow::nearest(const Raised& raised)
{
    for (auto window : raised.above) {
        auto* other = m_clients.findIn(window);
        if (other && isSeen(*other))
            return other;
    }
    return nullptr;
}

/// Whoever has the focus would lose it on the way back.
bool RaisedWindow::canBeKeptAbove(const Client& client) const
{
    return !client.state.isKeptAbove && client.window != m_root.activeWindow();
}

void RaisedWindow::raise(const Client& client, Raised& raised)
{
    auto* other = nearest(raised);
    if (!other)
        return;
    if (m_managerRestacks)
        return restackAbove(client, *m_clients.findIn(raised.above.back()));
    raised.isKeptAbove = canBeKeptAbove(client);
    if (raised.isKeptAbove)
        keepAbove(client.window, other->window);
}

void RaisedWindow::putBack(const Raised& raised)
{
    auto* client = m_clients.find(raised.window);
    if (!client)
        return;
    if (raised.isKeptAbove) {
        auto* other = nearest(raised);
        stopKeepingAbove(client->window, other ? other->window : xcb_window_t{XCB_WINDOW_NONE});
    }
    if (!m_managerRestacks)
        return;
    // openbox lowers to the bottom what is to go below another one, so the others are raised again.
    const Client* below = client;
    for (auto window : raised.above) {
        auto* other = m_clients.findIn(window);
        if (!other || !isSeen(*other))
            continue;
        restackAbove(*other, *below);
        below = other;
    }
}

void RaisedWindow::restackAbove(const Client& client, const Client& sibling)
{
    sendToManager(m_connection, client.window, m_connection.atoms().netRestackWindow,
        {kSourcePager, sibling.window, XCB_STACK_MODE_ABOVE});
}

void RaisedWindow::keepAbove(xcb_window_t window, xcb_window_t sibling)
{
    auto& atoms = m_connection.atoms();
    const std::array note{window, sibling};
    xcb_change_property(m_connection.raw(), XCB_PROP_MODE_REPLACE, m_connection.root(),
        atoms.quorvelRaised, XCB_ATOM_WINDOW, 32, note.size(), note.data());
    sendToManager(m_connection, window, atoms.netWmState,
        {kAddState, atoms.netWmStateAbove, 0, kSourcePager});
}

/// Between windows with frames the server knows of no order, so the request goes to the manager.
void RaisedWindow::stopKeepingAbove(xcb_window_t window, xcb_window_t sibling)
{
    auto* raw = m_connection.raw();
    auto root = m_connection.root();
    auto& atoms = m_connection.atoms();
    sendToManager(m_connection, window, atoms.netWmState,
        {kRemoveState, atoms.netWmStateAbove, 0, kSourcePager});
    xcb_configure_request_event_t request{};
    request.response_type = XCB_CONFIGURE_REQUEST;
    request.stack_mode = XCB_STACK_MODE_BELOW;
    request.parent = root;
    request.window = window;
    request.sibling = sibling;
    request.value_mask = XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE;
    std::array<char, 32> event{};
    std::memcpy(event.data(), &request, sizeof request);
    xcb_send_event(raw, 0, root, XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT, event.data());
    xcb_delete_property(raw, root, atoms.quorvelRaised);
}

}
