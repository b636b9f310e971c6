#include "Hosts/X11/SelectionEvents.h"

#include <xcb/xfixes.h>

#include "Hosts/X11/Connection.h"

namespace quorvel::xdg::x11 {

std::uint8_t selectSelectionEvents(Connection& connection, xcb_atom_t selection)
{
    auto* raw = connection.raw();
    auto* extension = xcb_get_extension_data(raw, &xcb_xfixes_id);
    if (!extension || !extension->present)
        return 0;
    // The server sends no events of the extension to who has not asked for its version.
    auto cookie = xcb_xfixes_query_version(raw, 5, 0);
    xcb_discard_reply(raw, cookie.sequence);
    xcb_xfixes_select_selection_input(raw, connection.root(), selection,
        XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER
            | XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY
            | XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    return static_cast<std::uint8_t>(extension->first_event + XCB_XFIXES_SELECTION_NOTIFY);
}

xcb_atom_t selectionOf(const xcb_generic_event_t* event, std::uint8_t selectionEvent)
{
    if (selectionEvent == 0 || (event->response_type & 0x7f) != selectionEvent)
        return XCB_ATOM_NONE;
    return reinterpret_cast<const xcb_xfixes_selection_notify_event_t*>(event)->selection;
}

xcb_window_t selectionOwnerIn(const xcb_generic_event_t* event)
{
    return reinterpret_cast<const xcb_xfixes_selection_notify_event_t*>(event)->owner;
}

}
