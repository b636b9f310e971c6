#include "Hosts/X11/Desktop/X11PeekRequests.h"

#include <set>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Desktop/Clients.h"
#include "Hosts/X11/Reply.h"

namespace quorvel::xdg::x11 {

X11PeekRequests::X11PeekRequests(Connection& connection, FadedWindows& faded, Clients& clients,
    const RootState& root, const std::vector<xcb_window_t>& leftRaised)
    : m_connection(connection)
    , m_faded(faded)
    , m_clients(clients)
    , m_raised(connection, clients, root, leftRaised)
{
}

/// There is a compositor. It is asked about each time: some servers do not tell when it goes.
bool X11PeekRequests::canFade() const
{
    auto* raw = m_connection.raw();
    auto reply = owned(xcb_get_selection_owner_reply(
        raw, xcb_get_selection_owner(raw, m_connection.atoms().netWmCmS0), nullptr));
    return reply && reply->owner != XCB_WINDOW_NONE;
}

void X11PeekRequests::setFaded(const std::vector<WindowID>& windows)
{
    std::set<xcb_window_t> faded;
    for (auto id : windows) {
        if (auto* client = m_clients.find(id))
            faded.insert(client->window);
    }
    m_faded.set(faded, [this](xcb_window_t window) {
        auto* client = m_clients.find(window);
        return client && m_raised.isSeen(*client);
    });
}

}
