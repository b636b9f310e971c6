#include "Hosts/X11/Desktop/ManagerMessage.h"

#include <algorithm>

#include "Hosts/X11/Connection.h"

namespace quorvel::xdg::x11 {

void sendToManager(Connection& connection, xcb_window_t window, xcb_atom_t type,
    const std::array<std::uint32_t, 5>& data)
{
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = type;
    std::ranges::copy(data, event.data.data32);
    xcb_send_event(connection.raw(), 0, connection.root(),
        XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
        reinterpret_cast<const char*>(&event));
}

}
