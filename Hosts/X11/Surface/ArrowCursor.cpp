#include "Hosts/X11/Surface/ArrowCursor.h"

#include <xcb/xcb_cursor.h>

#include "Hosts/X11/Connection.h"

namespace quorvel::xdg::x11 {

ArrowCursor::~ArrowCursor()
{
    if (m_id && *m_id != XCB_CURSOR_NONE)
        xcb_free_cursor(m_connection.raw(), *m_id);
}

xcb_cursor_t ArrowCursor::id()
{
    if (!m_id)
        m_id = load();
    return *m_id;
}

xcb_cursor_t ArrowCursor::load() const
{
    // It takes the screen as it came, and only reads it.
    auto* screen = screenOf(m_connection.raw(), m_connection.screenNumber());
    xcb_cursor_context_t* context = nullptr;
    if (xcb_cursor_context_new(m_connection.raw(), screen, &context) < 0)
        return XCB_CURSOR_NONE;
    const auto cursor = xcb_cursor_load_cursor(context, "left_ptr");
    xcb_cursor_context_free(context);
    return cursor;
}

}
