#include "Tests/X11/Support/SelectionPeer.h"

#include <algorithm>
#include <utility>

namespace quorvel::x11tests {

SelectionPeer::SelectionPeer(const std::string& display)
    : m_connection(display)
    , m_window(xcb_generate_id(m_connection.get()))
{
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(m_connection.get(), XCB_COPY_FROM_PARENT, m_window, m_connection.root(), -1,
        -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    m_connection.sync();
}

void SelectionPeer::own(const std::string& selection, std::map<std::string, std::string> texts)
{
    m_texts.clear();
    for (auto& [format, bytes] : texts)
        m_texts[m_connection.atom(format)] = std::move(bytes);
    xcb_set_selection_owner(
        m_connection.get(), m_window, m_connection.atom(selection), XCB_CURRENT_TIME);
    m_connection.sync();
}

xcb_window_t SelectionPeer::ownerOf(const std::string& selection)
{
    const auto reply = m_connection.wait(xcb_get_selection_owner_reply,
        xcb_get_selection_owner(m_connection.get(), m_connection.atom(selection)));
    return reply ? reply->owner : XCB_NONE;
}

void SelectionPeer::request(const std::string& selection, const std::string& format)
{
    m_hasAnswer = m_comesInPieces = false;
    m_taken.clear();
    xcb_convert_selection(m_connection.get(), m_window, m_connection.atom(selection),
        m_connection.atom(format), m_connection.atom("TAKEN"), XCB_CURRENT_TIME);
    m_connection.sync();
}

void SelectionPeer::requestSeveral(
    const std::string& selection, const std::vector<std::string>& formats)
{
    std::vector<std::uint32_t> pairs;
    for (std::size_t i = 0; i < formats.size(); ++i) {
        pairs.push_back(m_connection.atom(formats[i]));
        pairs.push_back(m_connection.atom(partName(i)));
    }
    m_connection.setNumbers(m_window, "TAKEN", "ATOM_PAIR", pairs);
    request(selection, "MULTIPLE");
}

std::string SelectionPeer::partOfAnswer(std::size_t place)
{
    return m_connection.text(m_window, partName(place));
}

void SelectionPeer::serve()
{
    while (auto* const next = xcb_poll_for_event(m_connection.get())) {
        const Reply<xcb_generic_event_t> event{next};
        switch (event->response_type & 0x7f) {
        case XCB_SELECTION_REQUEST:
            give(*reinterpret_cast<xcb_selection_request_event_t*>(next));
            break;
        case XCB_SELECTION_NOTIFY:
            take(*reinterpret_cast<xcb_selection_notify_event_t*>(next));
            break;
        case XCB_PROPERTY_NOTIFY: {
            const auto& change = *reinterpret_cast<xcb_property_notify_event_t*>(next);
            if (change.window == m_requestor && change.state == XCB_PROPERTY_DELETE)
                givePiece(change);
            else if (m_comesInPieces && change.atom == m_connection.atom("TAKEN")
                && change.state == XCB_PROPERTY_NEW_VALUE)
                takePiece();
            break;
        }
        default:
            break;
        }
    }
    xcb_flush(m_connection.get());
}

// MARK: Giving

void SelectionPeer::give(const xcb_selection_request_event_t& request)
{
    auto* const connection = m_connection.get();
    xcb_selection_notify_event_t notice{};
    notice.response_type = XCB_SELECTION_NOTIFY;
    notice.time = request.time;
    notice.requestor = request.requestor;
    notice.selection = request.selection;
    notice.target = request.target;
    if (const auto found = m_texts.find(request.target); found != m_texts.end()) {
        const auto size = static_cast<std::uint32_t>(found->second.size());
        notice.property = request.property;
        if (size <= piece) {
            xcb_change_property(connection, XCB_PROP_MODE_REPLACE, request.requestor,
                request.property, request.target, 8, size, found->second.data());
        } else {
            m_requestor = request.requestor;
            m_requestorProperty = request.property;
            m_format = request.target;
            m_given = m_pieces = 0;
            const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
            xcb_change_window_attributes(connection, request.requestor, XCB_CW_EVENT_MASK, &events);
            xcb_change_property(connection, XCB_PROP_MODE_REPLACE, request.requestor,
                request.property, m_connection.atom("INCR"), 32, 1, &size);
        }
    }
    xcb_send_event(connection, false, request.requestor, XCB_EVENT_MASK_NO_EVENT,
        reinterpret_cast<const char*>(&notice));
}

void SelectionPeer::givePiece(const xcb_property_notify_event_t& change)
{
    if (change.atom != m_requestorProperty || m_pieces++ >= mostPieces)
        return;
    const auto& bytes = m_texts[m_format];
    const auto size = std::min(piece, bytes.size() - m_given);
    xcb_change_property(m_connection.get(), XCB_PROP_MODE_REPLACE, m_requestor, m_requestorProperty,
        m_format, 8, static_cast<std::uint32_t>(size), bytes.data() + m_given);
    m_given += size;
    if (size == 0)
        m_requestor = XCB_NONE;
}

// MARK: Taking

void SelectionPeer::take(const xcb_selection_notify_event_t& notice)
{
    if (notice.property == XCB_NONE)
        return finish(std::nullopt);
    takePiece();
}

void SelectionPeer::takePiece()
{
    constexpr std::uint32_t kLongest = 1 << 24;
    const auto reply = m_connection.wait(xcb_get_property_reply,
        xcb_get_property(m_connection.get(), true, m_window, m_connection.atom("TAKEN"),
            XCB_GET_PROPERTY_TYPE_ANY, 0, kLongest));
    if (!m_comesInPieces && reply->type == m_connection.atom("INCR")) {
        m_comesInPieces = true;
        return;
    }
    const auto size = static_cast<std::size_t>(xcb_get_property_value_length(reply.get()));
    m_taken.append(static_cast<const char*>(xcb_get_property_value(reply.get())), size);
    if (!m_comesInPieces || size == 0)
        finish(m_taken);
}

void SelectionPeer::finish(std::optional<std::string> answer)
{
    m_answer = std::move(answer);
    m_hasAnswer = true;
}

}
