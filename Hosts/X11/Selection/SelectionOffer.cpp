#include "Hosts/X11/Selection/SelectionOffer.h"

#include <algorithm>
#include <span>
#include <utility>

#include "Hosts/Linux/GHandles.h"
#include "Hosts/X11/Connection.h"
#include "Hosts/X11/EventWindow.h"
#include "Hosts/X11/Reply.h"
#include "Hosts/X11/ServerTime.h"

namespace quorvel::xdg::x11 {

namespace {

constexpr std::size_t kMostTransfers = 8;
constexpr std::uint32_t kMostConversions = 64; ///< in one request

/// The protocol's own "STRING" is Latin-1.
std::string latin1Of(const std::string& utf8)
{
    const GText text{g_convert_with_fallback(utf8.data(), static_cast<gssize>(utf8.size()),
        "ISO-8859-1", "UTF-8", "?", nullptr, nullptr, nullptr)};
    return text ? std::string{text.get()} : std::string{};
}

}

SelectionOffer::SelectionOffer(
    Connection& connection, Dispatch& dispatch, ServerTime& time, xcb_atom_t selection)
    : m_connection(connection)
    , m_dispatch(dispatch)
    , m_serverTime(time)
    , m_selection(selection)
    , m_window(xcb_generate_id(connection.raw()))
    , m_events(connection.event.subscribe([this](auto* event) { handle(event); }))
{
    xcb_create_window(connection.raw(), XCB_COPY_FROM_PARENT, m_window, connection.root(), -1, -1,
        1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
}

SelectionOffer::~SelectionOffer()
{
    xcb_destroy_window(m_connection.raw(), m_window); // and with it the selection is free
}

void SelectionOffer::setText(std::string utf8)
{
    m_text = std::make_shared<const std::string>(std::move(utf8));
    ++m_claims;
    m_serverTime.ask([this](xcb_timestamp_t now) { own(now); });
}

void SelectionOffer::own(xcb_timestamp_t now)
{
    --m_claims;
    m_time = now;
    xcb_set_selection_owner(m_connection.raw(), m_window, m_selection, now);
}

void SelectionOffer::handle(const xcb_generic_event_t* event)
{
    switch (event->response_type & 0x7f) {
    case XCB_SELECTION_REQUEST:
        if (auto& request = as<xcb_selection_request_event_t>(event);
            request.owner == m_window && request.selection == m_selection)
            answer(request);
        break;
    case XCB_SELECTION_CLEAR:
        lose(as<xcb_selection_clear_event_t>(event));
        break;
    case XCB_PROPERTY_NOTIFY:
        std::ranges::any_of(m_transfers, [&](auto& transfer) {
            return transfer.handle(as<xcb_property_notify_event_t>(event));
        });
        break;
    default:
        break;
    }
}

/// Of a text that is about to be claimed, the former one's end says nothing.
void SelectionOffer::lose(const xcb_selection_clear_event_t& event)
{
    if (event.owner == m_window && event.selection == m_selection && m_claims == 0)
        m_text.reset();
}

void SelectionOffer::answer(const xcb_selection_request_event_t& request)
{
    // Old programs leave the choice of the property to the owner.
    const auto property = request.property != XCB_ATOM_NONE ? request.property : request.target;
    const bool isDone = request.target == m_connection.atoms().multiple
        ? request.property != XCB_ATOM_NONE && convertSeveral(request.requestor, property)
        : convert(request.requestor, request.target, property);
    xcb_selection_notify_event_t notice{};
    notice.response_type = XCB_SELECTION_NOTIFY;
    notice.time = request.time;
    notice.requestor = request.requestor;
    notice.selection = request.selection;
    notice.target = request.target;
    notice.property = isDone ? property : xcb_atom_t{XCB_ATOM_NONE};
    xcb_send_event(m_connection.raw(), false, request.requestor, XCB_EVENT_MASK_NO_EVENT,
        reinterpret_cast<const char*>(&notice));
}

bool SelectionOffer::convert(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property)
{
    const auto& atoms = m_connection.atoms();
    if (!m_text)
        return false;
    if (target == atoms.targets) {
        put(requestor, property, XCB_ATOM_ATOM,
            {atoms.targets, atoms.timestamp, atoms.multiple, atoms.utf8String, atoms.textPlainUtf8,
                atoms.text, XCB_ATOM_STRING});
        return true;
    }
    if (target == atoms.timestamp) {
        put(requestor, property, XCB_ATOM_INTEGER, {m_time});
        return true;
    }
    if (target == XCB_ATOM_STRING)
        return send({requestor, property, XCB_ATOM_STRING},
            std::make_shared<const std::string>(latin1Of(*m_text)));
    if (target == atoms.utf8String || target == atoms.text)
        return send({requestor, property, atoms.utf8String}, m_text);
    if (target == atoms.textPlainUtf8)
        return send({requestor, property, atoms.textPlainUtf8}, m_text);
    return false;
}

/// Pairs of a format and a property; in the answer, what could not be converted has no property.
bool SelectionOffer::convertSeveral(xcb_window_t requestor, xcb_atom_t property)
{
    auto* raw = m_connection.raw();
    const auto reply = owned(xcb_get_property_reply(raw,
        xcb_get_property(raw, false, requestor, property, m_connection.atoms().atomPair, 0,
            2 * kMostConversions),
        nullptr));
    if (!reply || reply->format != 32)
        return false;
    const std::span asked{static_cast<const xcb_atom_t*>(xcb_get_property_value(reply.get())),
        static_cast<std::size_t>(reply->value_len)};
    std::vector<std::uint32_t> pairs{asked.begin(), asked.end()};
    for (std::size_t i = 0; i + 1 < pairs.size(); i += 2) {
        // A request within a request would never end.
        if (pairs[i] == m_connection.atoms().multiple
            || !convert(requestor, pairs[i], pairs[i + 1]))
            pairs[i + 1] = XCB_ATOM_NONE;
    }
    put(requestor, property, m_connection.atoms().atomPair, std::move(pairs));
    return true;
}

bool SelectionOffer::send(const SelectionTransfer::Target& target, Text text)
{
    if (text->size() <= SelectionTransfer::kPiece) {
        xcb_change_property(m_connection.raw(), XCB_PROP_MODE_REPLACE, target.window,
            target.property, target.type, 8, static_cast<std::uint32_t>(text->size()),
            text->data());
        return true;
    }
    if (m_transfers.size() >= kMostTransfers)
        return false;
    m_transfers.emplace_back(
        m_connection, m_dispatch, target, std::move(text), [this](const auto& ended) {
            m_transfers.remove_if([&](const auto& transfer) { return &transfer == &ended; });
        });
    return true;
}

void SelectionOffer::put(
    xcb_window_t window, xcb_atom_t property, xcb_atom_t type, std::vector<std::uint32_t> values)
{
    xcb_change_property(m_connection.raw(), XCB_PROP_MODE_REPLACE, window, property, type, 32,
        static_cast<std::uint32_t>(values.size()), values.data());
}

}
