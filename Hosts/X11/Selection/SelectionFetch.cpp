#include "Hosts/X11/Selection/SelectionFetch.h"

#include <algorithm>
#include <array>
#include <utility>

#include "Hosts/Linux/GHandles.h"
#include "Hosts/Linux/Text.h"
#include "Hosts/X11/Connection.h"
#include "Hosts/X11/EventWindow.h"
#include "Hosts/X11/Reply.h"

namespace quorvel::xdg::x11 {

namespace {

/// For the next word of the owner, and for all of them.
constexpr auto kFetchPatience = seconds(2);
constexpr auto kLongestWait = seconds(10);

std::string utf8Of(std::string bytes, bool isLatin1)
{
    while (!bytes.empty() && bytes.back() == '\0')
        bytes.pop_back(); // some owners count the end of their strings
    if (!isLatin1)
        return validUtf8(bytes);
    const GText text{g_convert(bytes.data(), static_cast<gssize>(bytes.size()), "UTF-8",
        "ISO-8859-1", nullptr, nullptr, nullptr)};
    return text ? std::string{text.get()} : std::string{};
}

}

SelectionFetch::SelectionFetch(Connection& connection, Dispatch& dispatch, xcb_atom_t selection,
    xcb_timestamp_t now, Handler handler)
    : m_connection(connection)
    , m_dispatch(dispatch)
    , m_selection(selection)
    , m_handler(std::move(handler))
    , m_window(xcb_generate_id(connection.raw()))
    , m_time(now)
    , m_latest(dispatch.now() + kLongestWait)
    , m_events(connection.event.subscribe([this](auto* event) { handle(event); }))
{
    xcb_create_window(connection.raw(), XCB_COPY_FROM_PARENT, m_window, connection.root(), -1, -1,
        1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    connection.addEventMask(m_window, XCB_EVENT_MASK_PROPERTY_CHANGE);
    ask();
}

SelectionFetch::~SelectionFetch()
{
    m_connection.forgetWindow(m_window);
    xcb_destroy_window(m_connection.raw(), m_window);
}

void SelectionFetch::ask()
{
    const auto& atoms = m_connection.atoms();
    const std::array formats{atoms.utf8String, atoms.textPlainUtf8, xcb_atom_t{XCB_ATOM_STRING}};
    if (m_formatsAsked == formats.size())
        return finish(std::nullopt);
    const auto format = formats[m_formatsAsked++];
    m_isLatin1 = format == XCB_ATOM_STRING;
    xcb_convert_selection(
        m_connection.raw(), m_window, m_selection, format, atoms.quorvelText, m_time);
    wait();
}

void SelectionFetch::handle(const xcb_generic_event_t* event)
{
    switch (event->response_type & 0x7f) {
    case XCB_SELECTION_NOTIFY:
        if (auto& answer = as<xcb_selection_notify_event_t>(event);
            answer.requestor == m_window && answer.selection == m_selection && !m_comesInPieces)
            receive(answer);
        break;
    case XCB_PROPERTY_NOTIFY:
        if (auto& change = as<xcb_property_notify_event_t>(event); m_comesInPieces
            && change.window == m_window && change.atom == m_connection.atoms().quorvelText
            && change.state == XCB_PROPERTY_NEW_VALUE)
            receivePiece();
        break;
    default:
        break;
    }
}

void SelectionFetch::receive(const xcb_selection_notify_event_t& answer)
{
    if (answer.property == XCB_ATOM_NONE)
        return ask();
    receivePiece();
}

/// Taking the property away asks for the next piece; an empty one is the end.
void SelectionFetch::receivePiece()
{
    auto* raw = m_connection.raw();
    const auto reply = owned(xcb_get_property_reply(raw,
        xcb_get_property(raw, true, m_window, m_connection.atoms().quorvelText,
            XCB_GET_PROPERTY_TYPE_ANY, 0, kLongestText / 4),
        nullptr));
    if (!reply)
        return finish(std::nullopt);
    if (!m_comesInPieces && reply->type == m_connection.atoms().incr) {
        m_comesInPieces = true;
        return wait();
    }
    const auto size = static_cast<std::size_t>(xcb_get_property_value_length(reply.get()));
    const bool isText = reply->format == 8 || size == 0;
    if (!isText || reply->bytes_after > 0 || m_bytes.size() + size > kLongestText)
        return finish(std::nullopt);
    m_bytes.append(static_cast<const char*>(xcb_get_property_value(reply.get())), size);
    if (m_comesInPieces && size > 0)
        return wait();
    finish(utf8Of(std::move(m_bytes), m_isLatin1));
}

void SelectionFetch::wait()
{
    const auto end = std::min(m_dispatch.now() + kFetchPatience, m_latest);
    m_patience = m_dispatch.main().after(end - m_dispatch.now(), [this] { finish(std::nullopt); });
}

void SelectionFetch::finish(std::optional<std::string> utf8)
{
    m_events = {};
    m_patience = m_dispatch.main().after(Duration::zero(), [this, text = std::move(utf8)] {
        const auto handler = m_handler; // which does away with this
        handler(*this, text);
    });
}

}
