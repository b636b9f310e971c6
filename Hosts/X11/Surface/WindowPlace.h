#pragma once

#include <optional>

#include <xcb/xcb.h>

#include "Hosts/X11/Reply.h"
#include "Quorvel/Platform/Geometry.h"

namespace quorvel::xdg::x11 {

class Connection;

/// Asks for a window's real position and size without waiting: the answer is picked up at the end
/// of a turn of the loop.
class WindowPlaceQuery {
public:
    WindowPlaceQuery(Connection& connection, xcb_window_t window);
    ~WindowPlaceQuery();
    WindowPlaceQuery(const WindowPlaceQuery&) = delete;
    WindowPlaceQuery& operator=(const WindowPlaceQuery&) = delete;

    void ask();
    /// In pixels of the root window, once after each question.
    std::optional<Rect> takeAnswer();

private:
    template <typename Type> bool poll(unsigned sequence, Reply<Type>& reply);
    void discard();

    Connection& m_connection;
    const xcb_window_t m_window;
    bool m_isAsked = false;
    bool m_hasOrigin = false;
    bool m_hasSize = false;
    xcb_translate_coordinates_cookie_t m_origin{};
    xcb_get_geometry_cookie_t m_size{};
    Rect m_place;
};

}
