#include "Hosts/X11/Surface/DockWindow.h"

#include <algorithm>
#include <utility>

#include <xcb/xcb_icccm.h>

#include "Hosts/X11/Connection.h"

namespace quorvel::xdg::x11 {

namespace {

constexpr std::uint32_t kAllDesktops = 0xFFFFFFFF;
constexpr std::uint32_t kRemoveState = 0;
constexpr std::uint32_t kAddState = 1;
constexpr std::uint32_t kFromApplication = 1;
/// A manager that insists on another place gets its way in the end.
constexpr int kMostCorrections = 8;
constexpr auto kFirstPatience = seconds(0.5);
constexpr auto kLongestPatience = seconds(60);
/// A manager that comes or goes unmaps each window for a moment.
constexpr auto kReturnDelay = seconds(0.1);
constexpr std::uint32_t kDockEvents = XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY
    | XCB_EVENT_MASK_ENTER_WINDOW | XCB_EVENT_MASK_LEAVE_WINDOW | XCB_EVENT_MASK_POINTER_MOTION
    | XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE;

}

DockWindow::DockWindow(
    Connection& connection, Dispatch& dispatch, const WindowVisual& visual, const Rect& frame)
    : m_connection(connection)
    , m_dispatch(dispatch)
    , m_window(xcb_generate_id(connection.raw()))
    , m_properties(connection, m_window)
    , m_colormap(visual.colormap)
    , m_frame(frame)
    , m_place(connection, m_window)
{
    create(visual);
    describe();
}

DockWindow::~DockWindow()
{
    xcb_destroy_window(m_connection.raw(), m_window);
    if (m_colormap)
        xcb_free_colormap(m_connection.raw(), m_colormap);
    m_connection.forgetWindow(m_window);
    xcb_flush(m_connection.raw());
}

void DockWindow::create(const WindowVisual& visual)
{
    auto* raw = m_connection.raw();
    // No background: the server would clear to it before each of our copies.
    xcb_create_window_value_list_t values{};
    values.background_pixmap = XCB_BACK_PIXMAP_NONE;
    values.border_pixel = 0;
    values.bit_gravity = XCB_GRAVITY_NORTH_WEST;
    values.colormap = visual.colormap;
    std::uint32_t mask = XCB_CW_BACK_PIXMAP | XCB_CW_BORDER_PIXEL | XCB_CW_BIT_GRAVITY;
    if (visual.colormap)
        mask |= XCB_CW_COLORMAP;
    xcb_create_window_aux(raw, visual.depth, m_window, m_connection.root(),
        static_cast<std::int16_t>(m_frame.x), static_cast<std::int16_t>(m_frame.y),
        static_cast<std::uint16_t>(m_frame.width), static_cast<std::uint16_t>(m_frame.height), 0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT, visual.visual, mask, &values);
    m_connection.addEventMask(m_window, kDockEvents);
}

void DockWindow::describe()
{
    auto& atoms = m_connection.atoms();
    m_properties.nameProgram();
    m_properties.declineShadow();
    m_properties.setCardinals(atoms.netWmDesktop, &kAllDesktops, 1);
    m_properties.setAtoms(atoms.netWmWindowType, {atoms.netWmWindowTypeDock});
    m_properties.setAtoms(atoms.netWmState,
        {atoms.netWmStateSticky, atoms.netWmStateSkipTaskbar, atoms.netWmStateSkipPager,
            m_isLowered ? atoms.netWmStateBelow : atoms.netWmStateSticky});
    m_properties.setAtoms(
        atoms.wmProtocols, {atoms.wmDeleteWindow}); // ignored, but nobody kills us for it

    xcb_icccm_wm_hints_t hints{};
    xcb_icccm_wm_hints_set_input(&hints, 0);
    xcb_icccm_wm_hints_set_normal(&hints);
    xcb_icccm_set_wm_hints(m_connection.raw(), m_window, &hints);
    setSizeHints();
}

/// openbox and icewm place a dock without these at the top. A manager reads the newest ones while
/// it answers an older request: one that demanded the height which a sliding bar has by then would
/// have it hang over its edge for a moment.
void DockWindow::setSizeHints()
{
    auto x = static_cast<std::int32_t>(m_frame.x);
    auto y = static_cast<std::int32_t>(m_frame.y);
    auto width = static_cast<std::int32_t>(m_frame.width);
    auto height = static_cast<std::int32_t>(m_frame.height);
    xcb_size_hints_t hints{};
    xcb_icccm_size_hints_set_position(&hints, 1, x, y);
    xcb_icccm_size_hints_set_size(&hints, 1, width, height);
    xcb_icccm_size_hints_set_min_size(&hints, width, 1);
    xcb_icccm_size_hints_set_max_size(&hints, width, height);
    xcb_icccm_size_hints_set_win_gravity(&hints, XCB_GRAVITY_STATIC);
    xcb_icccm_set_wm_normal_hints(m_connection.raw(), m_window, &hints);
}

void DockWindow::setFrame(const Rect& frame)
{
    if (frame == m_frame)
        return;
    m_frame = frame;
    m_corrections = 0;
    setSizeHints();
    configure();
    if (m_isMapped)
        m_place.ask();
}

void DockWindow::configure()
{
    xcb_configure_window_value_list_t values{};
    values.x = static_cast<std::int32_t>(m_frame.x);
    values.y = static_cast<std::int32_t>(m_frame.y);
    values.width = static_cast<std::uint32_t>(m_frame.width);
    values.height = static_cast<std::uint32_t>(m_frame.height);
    xcb_configure_window_aux(m_connection.raw(), m_window,
        XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH
            | XCB_CONFIG_WINDOW_HEIGHT,
        &values);
}

void DockWindow::setTitle(const std::string& title)
{
    if (title == m_title)
        return;
    m_title = title;
    m_properties.setTitle(title);
}

void DockWindow::setStrut(const Strut& strut)
{
    if (strut == m_strut)
        return;
    m_strut = strut;
    auto& atoms = m_connection.atoms();
    if (strut.bottom == 0) {
        m_properties.erase(atoms.netWmStrutPartial);
        m_properties.erase(atoms.netWmStrut);
        return;
    }
    auto values = strut.values();
    m_properties.setCardinals(atoms.netWmStrutPartial, values.data(), 12);
    m_properties.setCardinals(atoms.netWmStrut, values.data(), 4);
}

void DockWindow::setBlursBehind(bool blurs)
{
    auto property = m_connection.atoms().kdeBlurBehind;
    if (blurs)
        m_properties.setCardinals(property, nullptr, 0); // an empty region is the whole window
    else
        m_properties.erase(property);
}

void DockWindow::map()
{
    if (std::exchange(m_isMapped, true))
        return;
    m_corrections = 0;
    requestMap(kFirstPatience);
}

/// openbox loses the requests that come while it starts, so they are made again, less and less
/// often, until one is heard.
void DockWindow::requestMap(Duration patience)
{
    xcb_map_window(m_connection.raw(), m_window);
    if (patience > kLongestPatience)
        return;
    m_mapAgain = m_dispatch.main().after(patience, [this, patience] { requestMap(2 * patience); });
}

/// Somebody else has unmapped it: it is shown again, less and less often where it happens in a row.
/// The manager took what it knew of the window back.
void DockWindow::comeBack()
{
    auto now = m_dispatch.now();
    bool isFirst = m_lastReturn == Instant::min() || now - m_lastReturn > kLongestPatience;
    m_returnDelay
        = isFirst ? kReturnDelay : std::min<Duration>(2 * m_returnDelay, kLongestPatience);
    m_lastReturn = now;
    m_mapAgain = m_dispatch.main().after(m_returnDelay, [this] {
        describe();
        requestMap(kFirstPatience);
    });
}

/// A dock has a layer of its own, within which lowering alone changes little: the state takes it
/// out.
void DockWindow::setLowered(bool isLowered)
{
    m_isLowered = isLowered;
    // Nobody hears of a window that no manager has: it comes up as it is described.
    if (!m_isMapped)
        return describe();
    auto* raw = m_connection.raw();
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = m_window;
    message.type = m_connection.atoms().netWmState;
    message.data.data32[0] = isLowered ? kAddState : kRemoveState;
    message.data.data32[1] = m_connection.atoms().netWmStateBelow;
    message.data.data32[3] = kFromApplication;
    xcb_send_event(raw, false, m_connection.root(),
        XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
        reinterpret_cast<const char*>(&message));

    xcb_configure_window_value_list_t values{};
    values.stack_mode = isLowered ? XCB_STACK_MODE_BELOW : XCB_STACK_MODE_ABOVE;
    xcb_configure_window_aux(raw, m_window, XCB_CONFIG_WINDOW_STACK_MODE, &values);
}

/// For picom the window manager's frame is the window.
void DockWindow::declineShadowOf(xcb_window_t frame) const
{
    if (frame != m_connection.root())
        WindowProperties{m_connection, frame}.declineShadow();
}

void DockWindow::handle(const xcb_generic_event_t* event)
{
    switch (event->response_type & 0x7f) {
    case XCB_REPARENT_NOTIFY:
        declineShadowOf(as<xcb_reparent_notify_event_t>(event).parent);
        m_corrections = 0; // a window manager has just taken it, perhaps a new one
        m_place.ask();
        break;
    case XCB_MAP_NOTIFY:
        m_mapAgain.cancel();
        m_corrections = 0;
        m_place.ask();
        break;
    case XCB_CONFIGURE_NOTIFY:
        m_place.ask();
        break;
    case XCB_UNMAP_NOTIFY:
        if (m_isMapped)
            comeBack();
        break;
    default:
        break;
    }
}

void DockWindow::endTurn()
{
    auto place = m_place.takeAnswer();
    if (!place || !m_isMapped || *place == m_frame || m_corrections >= kMostCorrections)
        return;
    ++m_corrections;
    configure();
}

}
