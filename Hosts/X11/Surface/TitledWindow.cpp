#include "Hosts/X11/Surface/TitledWindow.h"

#include <xcb/xcb_icccm.h>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/EventWindow.h"

namespace quorvel::xdg::x11 {

namespace {

/// The user has asked for it; managers may refuse what an application wants by itself.
constexpr std::uint32_t kFromPager = 2;
constexpr std::uint32_t kToManager
    = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT;
// The state of the keys comes after each focus.
constexpr std::uint32_t kTitledWindowEvents = XCB_EVENT_MASK_EXPOSURE
    | XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_FOCUS_CHANGE | XCB_EVENT_MASK_KEYMAP_STATE
    | XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE | XCB_EVENT_MASK_ENTER_WINDOW
    | XCB_EVENT_MASK_LEAVE_WINDOW | XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_BUTTON_PRESS
    | XCB_EVENT_MASK_BUTTON_RELEASE;

}

TitledWindow::TitledWindow(Connection& connection, const std::string& title, const Rect& frame)
    : m_connection(connection)
    , m_buffer(connection, WindowVisual::ofRoot(connection))
    , m_window(xcb_generate_id(connection.raw()))
    , m_properties(connection, m_window)
    , m_frame(frame)
    , m_place(connection, m_window)
{
    create();
    describe(title);
    m_buffer.resize(static_cast<int>(frame.width), static_cast<int>(frame.height));
}

TitledWindow::~TitledWindow()
{
    xcb_destroy_window(m_connection.raw(), m_window);
    m_connection.forgetWindow(m_window);
    xcb_flush(m_connection.raw());
}

void TitledWindow::create()
{
    auto visual = WindowVisual::ofRoot(m_connection);
    // No background: the server would clear to it before each of our copies.
    xcb_create_window_value_list_t values{};
    values.background_pixmap = XCB_BACK_PIXMAP_NONE;
    values.bit_gravity = XCB_GRAVITY_NORTH_WEST;
    xcb_create_window_aux(m_connection.raw(), visual.depth, m_window, m_connection.root(),
        static_cast<std::int16_t>(m_frame.x), static_cast<std::int16_t>(m_frame.y),
        static_cast<std::uint16_t>(m_frame.width), static_cast<std::uint16_t>(m_frame.height), 0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT, visual.visual, XCB_CW_BACK_PIXMAP | XCB_CW_BIT_GRAVITY,
        &values);
    m_connection.addEventMask(m_window, kTitledWindowEvents);
}

void TitledWindow::describe(const std::string& title)
{
    auto& atoms = m_connection.atoms();
    m_properties.nameProgram();
    m_properties.setTitle(title);
    m_properties.setAtoms(atoms.netWmWindowType, {atoms.netWmWindowTypeNormal});
    m_properties.setAtoms(atoms.wmProtocols, {atoms.wmDeleteWindow, atoms.netWmPing});

    xcb_icccm_wm_hints_t hints{};
    xcb_icccm_wm_hints_set_input(&hints, 1);
    xcb_icccm_wm_hints_set_normal(&hints);
    xcb_icccm_set_wm_hints(m_connection.raw(), m_window, &hints);
    setSizeHints();
}

void TitledWindow::setSizeHints()
{
    auto width = static_cast<std::int32_t>(m_frame.width);
    auto height = static_cast<std::int32_t>(m_frame.height);
    xcb_size_hints_t hints{};
    xcb_icccm_size_hints_set_position(
        &hints, 1, static_cast<std::int32_t>(m_frame.x), static_cast<std::int32_t>(m_frame.y));
    xcb_icccm_size_hints_set_size(&hints, 1, width, height);
    xcb_icccm_size_hints_set_min_size(&hints, width, height);
    xcb_icccm_size_hints_set_max_size(&hints, width, height);
    xcb_icccm_size_hints_set_win_gravity(&hints, XCB_GRAVITY_STATIC);
    xcb_icccm_set_wm_normal_hints(m_connection.raw(), m_window, &hints);
}

void TitledWindow::setFrame(const Rect& frame)
{
    if (frame == m_frame)
        return;
    bool isResized = frame.size() != m_frame.size();
    m_frame = frame;
    setSizeHints();
    xcb_configure_window_value_list_t values{};
    values.x = static_cast<std::int32_t>(frame.x);
    values.y = static_cast<std::int32_t>(frame.y);
    values.width = static_cast<std::uint32_t>(frame.width);
    values.height = static_cast<std::uint32_t>(frame.height);
    xcb_configure_window_aux(m_connection.raw(), m_window,
        XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH
            | XCB_CONFIG_WINDOW_HEIGHT,
        &values);
    if (isResized)
        m_buffer.resize(static_cast<int>(frame.width), static_cast<int>(frame.height));
}

void TitledWindow::setCursor(xcb_cursor_t cursor)
{
    xcb_change_window_attributes(m_connection.raw(), m_window, XCB_CW_CURSOR, &cursor);
}

void TitledWindow::present(const std::vector<Rect>& parts)
{
    for (auto& part : parts)
        m_buffer.copyTo(m_window, part);
    xcb_flush(m_connection.raw());
}

void TitledWindow::map(xcb_timestamp_t now)
{
    m_properties.setCardinals(m_connection.atoms().netWmUserTime, &now, 1);
    xcb_map_window(m_connection.raw(), m_window);
    xcb_flush(m_connection.raw());
}

void TitledWindow::activate(xcb_timestamp_t now)
{
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = m_window;
    message.type = m_connection.atoms().netActiveWindow;
    message.data.data32[0] = kFromPager;
    message.data.data32[1] = now;
    xcb_send_event(m_connection.raw(), false, m_connection.root(), kToManager,
        reinterpret_cast<const char*>(&message));
    xcb_flush(m_connection.raw());
}

void TitledWindow::handle(const xcb_generic_event_t* event)
{
    switch (event->response_type & 0x7f) {
    case XCB_EXPOSE:
        return expose(exposedPart(as<xcb_expose_event_t>(event)));
    case XCB_MAP_NOTIFY:
    case XCB_REPARENT_NOTIFY:
    case XCB_CONFIGURE_NOTIFY:
        return m_place.ask();
    case XCB_DESTROY_NOTIFY: // by somebody else
        return onCloseWanted ? onCloseWanted() : void();
    case XCB_CLIENT_MESSAGE:
        return handleMessage(as<xcb_client_message_event_t>(event));
    default:
        return;
    }
}

void TitledWindow::handleMessage(const xcb_client_message_event_t& message)
{
    auto& atoms = m_connection.atoms();
    if (message.type != atoms.wmProtocols || message.format != 32)
        return;
    if (message.data.data32[0] == atoms.netWmPing) {
        // The same back to the root says that the program is alive.
        auto answer = message;
        answer.window = m_connection.root();
        xcb_send_event(m_connection.raw(), false, m_connection.root(), kToManager,
            reinterpret_cast<const char*>(&answer));
        xcb_flush(m_connection.raw());
    } else if (message.data.data32[0] == atoms.wmDeleteWindow && onCloseWanted) {
        onCloseWanted();
    }
}

bool TitledWindow::endTurn()
{
    auto place = m_place.takeAnswer();
    if (!place || place->isEmpty() || *place == m_frame)
        return false;
    if (place->size() != m_frame.size())
        m_buffer.resize(static_cast<int>(place->width), static_cast<int>(place->height));
    m_frame = *place;
    return true;
}

}
