#include "Hosts/X11/Capture/CaptureConnection.h"

#include "Hosts/X11/Capture/DrawingWatch.h"

namespace quorvel::xdg::x11 {

namespace {

/// Pixmaps of windows came with this version.
constexpr std::uint32_t kCompositeMinor = 2;
/// Window managers nest one or two frames.
constexpr int kDeepestNesting = 16;

bool hasComposite(xcb_connection_t* connection)
{
    const auto* extension = xcb_get_extension_data(connection, &xcb_composite_id);
    if (!extension || !extension->present)
        return false;
    const Reply<xcb_composite_query_version_reply_t> version{xcb_composite_query_version_reply(
        connection, xcb_composite_query_version(connection, 0, kCompositeMinor), nullptr)};
    return version && (version->major_version > 0 || version->minor_version >= kCompositeMinor);
}

}

std::unique_ptr<CaptureConnection> CaptureConnection::open()
{
    int number = 0;
    auto* connection = xcb_connect(nullptr, &number);
    xcb_screen_t* screen = nullptr;
    if (!xcb_connection_has_error(connection) && hasComposite(connection))
        screen = screenOf(connection, number);
    if (!screen) {
        xcb_disconnect(connection);
        return nullptr;
    }
    return std::unique_ptr<CaptureConnection>{new CaptureConnection{connection, screen}};
}

CaptureConnection::CaptureConnection(xcb_connection_t* connection, xcb_screen_t* screen)
    : m_connection(connection)
    , m_screen(screen)
    , m_atoms(Atoms::intern(connection))
    , m_hasDamage(DrawingWatch::hasDamage(connection))
{
}

CaptureConnection::~CaptureConnection()
{
    xcb_disconnect(m_connection);
}

xcb_window_t CaptureConnection::topLevelOf(xcb_window_t window) const
{
    for (int i = 0; i < kDeepestNesting; ++i) {
        const Reply<xcb_query_tree_reply_t> tree{
            xcb_query_tree_reply(m_connection, xcb_query_tree(m_connection, window), nullptr)};
        if (!tree || tree->parent == XCB_WINDOW_NONE)
            break;
        if (tree->parent == tree->root)
            return window;
        window = tree->parent;
    }
    return XCB_WINDOW_NONE;
}

bool CaptureConnection::succeeds(xcb_void_cookie_t cookie) const
{
    const Reply<xcb_generic_error_t> error{xcb_request_check(m_connection, cookie)};
    return !error && !xcb_connection_has_error(m_connection);
}

void CaptureConnection::dropEvents() const
{
    while (owned(xcb_poll_for_event(m_connection))) { }
}

}
