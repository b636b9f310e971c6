#include "Hosts/X11/Surface/X11Edge.h"

#include <algorithm>
#include <utility>

#include "Hosts/Linux/PanelEnvironment.h"
#include "Hosts/X11/Connection.h"
#include "Hosts/X11/EventWindow.h"
#include "Hosts/X11/Monitors.h"

namespace quorvel::xdg::x11 {

namespace {

constexpr std::uint32_t kEdgeEvents = XCB_EVENT_MASK_ENTER_WINDOW | XCB_EVENT_MASK_LEAVE_WINDOW
    | XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE;

}

X11Edge::X11Edge(const SurfaceContext& context, DisplayNumber display, SurfaceClient& client)
    : m_context(context)
    , m_display(display)
    , m_window(xcb_generate_id(context.connection.raw()))
{
    auto& connection = m_context.connection;
    constexpr std::uint32_t overrideRedirect = 1;
    xcb_create_window(connection.raw(), 0, m_window, connection.root(), 0, 0, 1, 1, 0,
        XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT,
        &overrideRedirect);
    connection.addEventMask(m_window, kEdgeEvents);
    m_pointer.setClient(&client);
    m_drops = std::make_unique<DropTarget>(connection, m_context.dispatch, m_window);
    m_drops->setClient(&client);
    m_subscriptions.push_back(connection.event.subscribe([this](auto* event) { handle(event); }));
    m_subscriptions.push_back(m_context.monitors.changed.subscribe([this] { place(); }));
    m_subscriptions.push_back(
        m_context.environment.isCovered.subscribe([this](auto&) { updateMapping(); }));
}

X11Edge::~X11Edge()
{
    m_drops->setClient(nullptr);
    xcb_destroy_window(m_context.connection.raw(), m_window);
    m_context.connection.forgetWindow(m_window);
    xcb_flush(m_context.connection.raw());
}

void X11Edge::setFrame(const Rect& frame)
{
    m_frame = frame;
    place();
}

void X11Edge::place()
{
    auto pixels = m_context.toPixels(m_frame);
    // The lowest row stays where it is, however thin the strip.
    double height = std::max(1.0, pixels.height);
    Rect strip{pixels.x, pixels.maxY() - height, std::max(1.0, pixels.width), height};
    m_pointer.setScale(scale());
    m_drops->setPlace(strip.origin(), scale());
    xcb_configure_window_value_list_t values{};
    values.x = static_cast<std::int32_t>(strip.x);
    values.y = static_cast<std::int32_t>(strip.y);
    values.width = static_cast<std::uint32_t>(strip.width);
    values.height = static_cast<std::uint32_t>(strip.height);
    xcb_configure_window_aux(m_context.connection.raw(), m_window,
        XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH
            | XCB_CONFIG_WINDOW_HEIGHT,
        &values);
    xcb_flush(m_context.connection.raw());
}

void X11Edge::orderFront()
{
    m_isOrderedIn = true;
    updateMapping();
}

void X11Edge::orderOut()
{
    m_isOrderedIn = false;
    updateMapping();
}

void X11Edge::updateMapping()
{
    auto& covered = m_context.environment.isCovered.value();
    auto found = covered.find(m_display);
    bool isCovered = found != covered.end() && found->second;
    bool isWanted = m_isOrderedIn && !isCovered;
    if (std::exchange(m_isMapped, isWanted) == isWanted)
        return;
    if (isWanted) {
        raise();
        xcb_map_window(m_context.connection.raw(), m_window);
    } else {
        xcb_unmap_window(m_context.connection.raw(), m_window);
        m_pointer.lose();
    }
    xcb_flush(m_context.connection.raw());
}

void X11Edge::raise() const
{
    constexpr std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(
        m_context.connection.raw(), m_window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
}

void X11Edge::handle(const xcb_generic_event_t* event)
{
    auto& connection = m_context.connection;
    if (eventWindow(event) == m_window)
        return m_pointer.handle(event);
    if ((event->response_type & 0x7f) != XCB_PROPERTY_NOTIFY)
        return;
    auto& change = as<xcb_property_notify_event_t>(event);
    if (m_isMapped && change.window == connection.root()
        && change.atom == connection.atoms().netClientListStacking)
        raise(); // goes out at the end of the turn
}

Duration X11Edge::frameInterval() const
{
    return m_context.monitors.frameInterval(m_display);
}

}
