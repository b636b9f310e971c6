#include "Hosts/X11/Surface/DropTarget.h"

#include <algorithm>
#include <span>
#include <utility>

#include <glib.h>

#include "Hosts/Linux/Drawing/UriList.h"
#include "Hosts/X11/Connection.h"
#include "Hosts/X11/EventWindow.h"
#include "Hosts/X11/Reply.h"

namespace quorvel::xdg::x11 {

namespace {

constexpr std::uint32_t kVersion = 5;
/// Those before it want other answers, and no program of this century speaks them.
constexpr std::uint32_t kOldestVersion = 3;
constexpr std::uint32_t kMoreTypes = 1; ///< than fit into the message
constexpr std::uint32_t kAccepts = 1;
constexpr std::uint32_t kWantsEachMove = 2;
constexpr std::uint32_t kMostTypes = 1024;
constexpr auto kLookAfterSource = seconds(1);
constexpr auto kDropPatience = seconds(2);

xcb_window_t sourceOf(const xcb_client_message_event_t& message)
{
    return message.data.data32[0];
}

}

DropTarget::DropTarget(Connection& connection, Dispatch& dispatch, xcb_window_t window)
    : m_connection(connection)
    , m_dispatch(dispatch)
    , m_window(window)
    , m_events(connection.event.subscribe([this](auto* event) { handle(event); }))
{
    xcb_change_property(connection.raw(), XCB_PROP_MODE_REPLACE, window,
        connection.atoms().xdndAware, XCB_ATOM_ATOM, 32, 1, &kVersion);
}

DropTarget::~DropTarget()
{
    if (m_dropped)
        finish(false);
}

void DropTarget::setPlace(Point pixels, double pixelsPerPoint)
{
    m_origin = pixels;
    m_scale = pixelsPerPoint;
}

/// The new client hears of the files when they move: a panel that came into view under a resting
/// hand was not meant by it.
void DropTarget::setClient(SurfaceClient* client)
{
    if (client == m_client)
        return;
    exitClient();
    m_client = client;
}

void DropTarget::handle(const xcb_generic_event_t* event)
{
    switch (event->response_type & 0x7f) {
    case XCB_CLIENT_MESSAGE:
        if (auto& message = as<xcb_client_message_event_t>(event);
            message.window == m_window && message.format == 32)
            handle(message);
        break;
    case XCB_SELECTION_NOTIFY:
        receive(as<xcb_selection_notify_event_t>(event));
        break;
    default:
        break;
    }
}

void DropTarget::handle(const xcb_client_message_event_t& message)
{
    auto& atoms = m_connection.atoms();
    if (message.type == atoms.xdndEnter)
        return enter(message);
    if (m_source == XCB_WINDOW_NONE || sourceOf(message) != m_source)
        return;
    if (message.type == atoms.xdndPosition)
        position(message);
    else if (message.type == atoms.xdndLeave)
        forgetSource();
    else if (message.type == atoms.xdndDrop)
        drop(message);
}

void DropTarget::enter(const xcb_client_message_event_t& message)
{
    if (m_dropped)
        finish(false); // the one before is told that nobody waits for it any longer
    forgetSource();
    if (message.data.data32[1] >> 24 < kOldestVersion)
        return;
    m_source = sourceOf(message);
    m_offersFiles = offersFiles(message);
    watchSource();
}

bool DropTarget::offersFiles(const xcb_client_message_event_t& message) const
{
    auto wanted = m_connection.atoms().textUriList;
    std::span named{message.data.data32 + 2, 3};
    if (!(message.data.data32[1] & kMoreTypes))
        return std::ranges::find(named, wanted) != named.end();
    auto* raw = m_connection.raw();
    Reply<xcb_get_property_reply_t> reply{xcb_get_property_reply(raw,
        xcb_get_property(
            raw, false, m_source, m_connection.atoms().xdndTypeList, XCB_ATOM_ATOM, 0, kMostTypes),
        nullptr)};
    if (!reply || reply->format != 32)
        return false;
    std::span types{static_cast<const xcb_atom_t*>(xcb_get_property_value(reply.get())),
        static_cast<std::size_t>(xcb_get_property_value_length(reply.get())) / sizeof(xcb_atom_t)};
    return std::ranges::find(types, wanted) != types.end();
}

/// A source that dies sends no word, and one whose hand rests sends none either. Only the first no
/// longer owns what is dragged.
void DropTarget::watchSource()
{
    m_watch = m_dispatch.main().every(kLookAfterSource, [this] {
        auto* raw = m_connection.raw();
        Reply<xcb_get_selection_owner_reply_t> reply{xcb_get_selection_owner_reply(
            raw, xcb_get_selection_owner(raw, m_connection.atoms().xdndSelection), nullptr)};
        if (!reply || reply->owner == XCB_WINDOW_NONE)
            forgetSource();
    });
}

void DropTarget::position(const xcb_client_message_event_t& message)
{
    if (m_dropped)
        return;
    auto place = message.data.data32[2];
    Point at{(static_cast<std::int16_t>(place >> 16) - m_origin.x) / m_scale,
        (static_cast<std::int16_t>(place & 0xffff) - m_origin.y) / m_scale};
    m_isTaken = false;
    if (m_offersFiles && m_client) {
        auto action = m_place ? DropAction::moved : DropAction::entered;
        m_place = at;
        m_isTaken = m_client->dropEvent({action, at, {}});
    }
    sendStatus();
}

void DropTarget::drop(const xcb_client_message_event_t& message)
{
    if (m_dropped)
        return;
    if (!m_isTaken)
        return finish(false);
    m_dropped = message.data.data32[2];
    auto& atoms = m_connection.atoms();
    xcb_convert_selection(m_connection.raw(), m_window, atoms.xdndSelection, atoms.textUriList,
        atoms.xdndSelection, *m_dropped);
    m_patience = m_dispatch.main().after(kDropPatience, [this] { finish(false); });
}

void DropTarget::receive(const xcb_selection_notify_event_t& event)
{
    // The answer to an earlier drop comes with that one's time.
    if (event.requestor != m_window || event.selection != m_connection.atoms().xdndSelection
        || m_dropped != event.time)
        return;
    auto paths = event.property == XCB_ATOM_NONE ? std::vector<std::string>{} : readPaths();
    if (paths.empty() || !m_client || !m_place)
        return finish(false);
    auto place = *std::exchange(m_place, std::nullopt);
    finish(m_client->dropEvent({DropAction::dropped, place, std::move(paths)}));
}

/// A list that is too long comes in pieces or not whole, and nothing is taken of it.
std::vector<std::string> DropTarget::readPaths() const
{
    auto* raw = m_connection.raw();
    Reply<xcb_get_property_reply_t> reply{xcb_get_property_reply(raw,
        xcb_get_property(raw, true, m_window, m_connection.atoms().xdndSelection,
            m_connection.atoms().textUriList, 0, uriListLimits::bytes / 4),
        nullptr)};
    if (!reply || reply->format != 8)
        return {};
    if (reply->bytes_after > 0) {
        xcb_delete_property(raw, m_window, m_connection.atoms().xdndSelection);
        return {};
    }
    std::string_view list{static_cast<const char*>(xcb_get_property_value(reply.get())),
        static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
    return localPaths(list, g_get_host_name());
}

void DropTarget::forgetSource()
{
    exitClient();
    m_source = XCB_WINDOW_NONE;
    m_offersFiles = false;
    m_dropped.reset();
    m_watch.cancel();
    m_patience.cancel();
}

void DropTarget::exitClient()
{
    m_isTaken = false;
    if (auto place = std::exchange(m_place, std::nullopt); place && m_client)
        m_client->dropEvent({DropAction::exited, *place, {}});
}

void DropTarget::sendStatus() const
{
    auto& atoms = m_connection.atoms();
    send(atoms.xdndStatus, kWantsEachMove | (m_isTaken ? kAccepts : 0),
        m_isTaken ? atoms.xdndActionCopy : xcb_atom_t{XCB_ATOM_NONE}, true);
}

void DropTarget::finish(bool isTaken)
{
    auto& atoms = m_connection.atoms();
    send(atoms.xdndFinished, isTaken ? kAccepts : 0,
        isTaken ? atoms.xdndActionCopy : xcb_atom_t{XCB_ATOM_NONE}, false);
    forgetSource();
}

/// A copy is all that is ever taken: after a "move" the source would delete its files.
void DropTarget::send(
    xcb_atom_t type, std::uint32_t flags, xcb_atom_t action, bool hasRectangle) const
{
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = m_source;
    message.type = type;
    message.data.data32[0] = m_window;
    message.data.data32[1] = flags;
    // The rectangle in which no news is wanted stays empty.
    message.data.data32[hasRectangle ? 4 : 2] = action;
    xcb_send_event(m_connection.raw(), false, m_source, XCB_EVENT_MASK_NO_EVENT,
        reinterpret_cast<const char*>(&message));
    xcb_flush(m_connection.raw());
}

}
