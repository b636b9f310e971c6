#pragma once

#include <optional>
#include <string>
#include <vector>

#include <xcb/xcb.h>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Geometry.h"
#include "Quorvel/Platform/Published.h"
#include "Quorvel/Platform/Surfaces.h"

namespace quorvel::xdg::x11 {

class Connection;

/// A window on which other programs may drop files, by version 5 of the XDND protocol: the source
/// reports where the pointer is, learns at once whether a drop there would be accepted, and is
/// asked for the list of files when they are dropped. One source at a time. Main thread.
class DropTarget {
public:
    DropTarget(Connection&, Dispatch&, xcb_window_t);
    ~DropTarget();
    DropTarget(const DropTarget&) = delete;
    DropTarget& operator=(const DropTarget&) = delete;

    /// Where the window lies on the X screen.
    void setPlace(Point pixels, double pixelsPerPoint);
    /// The view that receives events from now on; the former one sees the files leave.
    void setClient(SurfaceClient*);

private:
    void handle(const xcb_generic_event_t*);
    void handle(const xcb_client_message_event_t&);
    void enter(const xcb_client_message_event_t&);
    void position(const xcb_client_message_event_t&);
    void drop(const xcb_client_message_event_t&);
    void receive(const xcb_selection_notify_event_t&);

    bool offersFiles(const xcb_client_message_event_t&) const;
    std::vector<std::string> readPaths() const;
    void watchSource();
    /// The source has left, or is ignored from now on.
    void forgetSource();
    void exitClient();
    void sendStatus() const;
    void finish(bool isTaken);
    void send(xcb_atom_t type, std::uint32_t flags, xcb_atom_t action, bool hasRectangle) const;

    Connection& m_connection;
    Dispatch& m_dispatch;
    const xcb_window_t m_window;
    Point m_origin;
    double m_scale = 1;
    SurfaceClient* m_client = nullptr;

    xcb_window_t m_source = XCB_WINDOW_NONE; ///< none while nothing is dragged over the window
    bool m_offersFiles = false;
    bool m_isTaken = false; ///< as the client answered for the last place
    std::optional<Point> m_place; ///< absent unless the client was told of the files
    std::optional<xcb_timestamp_t> m_dropped; ///< while waiting for the list of files
    WorkItem m_watch;
    WorkItem m_patience;
    Subscription m_events;
};

}
