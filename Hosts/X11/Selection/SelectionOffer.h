#pragma once

#include <list>
#include <memory>
#include <string>
#include <vector>

#include <xcb/xcb.h>

#include "Hosts/X11/Selection/SelectionTransfer.h"
#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel::xdg::x11 {

class Connection;
class ServerTime;

/// A text of ours under the name of a selection, for other programs to take in the usual formats,
/// until one of them takes the selection. Main thread.
class SelectionOffer {
public:
    SelectionOffer(Connection&, Dispatch&, ServerTime&, xcb_atom_t selection);
    ~SelectionOffer();
    SelectionOffer(const SelectionOffer&) = delete;
    SelectionOffer& operator=(const SelectionOffer&) = delete;

    void setText(std::string utf8);

private:
    using Text = std::shared_ptr<const std::string>;

    void own(xcb_timestamp_t);
    void handle(const xcb_generic_event_t*);
    void lose(const xcb_selection_clear_event_t&);
    void answer(const xcb_selection_request_event_t&);
    /// False where there is no such format, or too much is under way.
    bool convert(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property);
    bool convertSeveral(xcb_window_t requestor, xcb_atom_t property);
    bool send(const SelectionTransfer::Target&, Text);
    void put(xcb_window_t, xcb_atom_t property, xcb_atom_t type, std::vector<std::uint32_t>);

    Connection& m_connection;
    Dispatch& m_dispatch;
    ServerTime& m_serverTime;
    const xcb_atom_t m_selection;
    const xcb_window_t m_window;
    Text m_text; ///< null while another program has the selection
    xcb_timestamp_t m_time = XCB_CURRENT_TIME; ///< since when it is ours
    int m_claims = 0; ///< that wait for the time
    std::list<SelectionTransfer> m_transfers;
    Subscription m_events;
};

}
