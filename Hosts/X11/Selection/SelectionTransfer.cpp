#include "Hosts/X11/Selection/SelectionTransfer.h"

#include <algorithm>
#include <utility>

#include "Hosts/X11/Connection.h"

namespace quorvel::xdg::x11 {

namespace {

constexpr auto kTransferPatience = seconds(5);

}

SelectionTransfer::SelectionTransfer(Connection& connection, Dispatch& dispatch,
    const Target& target, std::shared_ptr<const std::string> bytes, EndHandler onEnd)
    : m_connection(connection)
    , m_dispatch(dispatch)
    , m_target(target)
    , m_bytes(std::move(bytes))
    , m_onEnd(std::move(onEnd))
{
    connection.addEventMask(target.window, XCB_EVENT_MASK_PROPERTY_CHANGE);
    const auto size = static_cast<std::uint32_t>(m_bytes->size());
    xcb_change_property(connection.raw(), XCB_PROP_MODE_REPLACE, target.window, target.property,
        connection.atoms().incr, 32, 1, &size);
    endAfter(kTransferPatience);
}

bool SelectionTransfer::handle(const xcb_property_notify_event_t& change)
{
    if (change.window != m_target.window || change.atom != m_target.property
        || change.state != XCB_PROPERTY_DELETE)
        return false;
    if (m_isComplete)
        endAfter(Duration::zero());
    else
        sendPiece();
    return true;
}

void SelectionTransfer::sendPiece()
{
    const auto size = std::min(kPiece, m_bytes->size() - m_sent);
    xcb_change_property(m_connection.raw(), XCB_PROP_MODE_REPLACE, m_target.window,
        m_target.property, m_target.type, 8, static_cast<std::uint32_t>(size),
        m_bytes->data() + m_sent);
    m_sent += size;
    m_isComplete = size == 0;
    endAfter(kTransferPatience);
}

void SelectionTransfer::endAfter(Duration delay)
{
    m_end = m_dispatch.main().after(delay, [this] {
        const auto end = m_onEnd; // which does away with this
        end(*this);
    });
}

}
