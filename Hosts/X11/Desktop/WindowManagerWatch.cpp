#include "Hosts/X11/Desktop/WindowManagerWatch.h"

#include <algorithm>
#include <cstdlib>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Desktop/RequestBatch.h"
#include "Hosts/X11/SelectionEvents.h"

namespace quorvel::xdg::x11 {

WindowManagerWatch::WindowManagerWatch(Connection& connection, Dispatch& dispatch)
    : m_connection(connection)
    , m_dispatch(dispatch)
{
    m_selectionEvent = selectSelectionEvents(connection, connection.atoms().wmS0);
}

bool WindowManagerWatch::handle(const xcb_generic_event_t* event)
{
    auto kind = event->response_type & 0x7f;
    if (kind == XCB_PROPERTY_NOTIFY) {
        auto* change = reinterpret_cast<const xcb_property_notify_event_t*>(event);
        return handle(*change);
    }
    if (kind == XCB_DESTROY_NOTIFY) {
        auto* destroyed = reinterpret_cast<const xcb_destroy_notify_event_t*>(event);
        if (destroyed->window != m_checkWindow || m_checkWindow == XCB_WINDOW_NONE)
            return false;
        m_connection.forgetWindow(std::exchange(m_checkWindow, XCB_WINDOW_NONE));
        m_state = State::absent;
        m_isLeaving = false;
        return true;
    }
    return selectionOf(event, m_selectionEvent) == m_connection.atoms().wmS0
        && selectionDidChange(selectionOwnerIn(event));
}

bool WindowManagerWatch::handle(const xcb_property_notify_event_t& change)
{
    if (change.window != m_connection.root() && change.window != m_candidate)
        return false;
    if (change.atom == m_connection.atoms().netClientList)
        m_listChangedAt = m_dispatch.now();
    if (change.atom != m_connection.atoms().netSupportingWmCheck)
        return false;
    m_isCheckStale = true;
    return true;
}

bool WindowManagerWatch::selectionDidChange(xcb_window_t owner)
{
    if (m_checkWindow == XCB_WINDOW_NONE)
        return false;
    bool isOwner = isOfSameClient(owner);
    // The other one has given up. A manager that never owned the selection does not give way to it.
    if (m_isLeaving && (isOwner || owner == XCB_WINDOW_NONE)) {
        m_isLeaving = false;
        m_isCheckStale = true;
        return true;
    }
    if (isOwner)
        return false;
    m_isLeaving = true;
    m_state = State::absent;
    return true;
}

bool WindowManagerWatch::isOfSameClient(xcb_window_t owner) const
{
    auto clientMask = ~xcb_get_setup(m_connection.raw())->resource_id_mask;
    return ((owner ^ m_checkWindow) & clientMask) == 0;
}

void WindowManagerWatch::update()
{
    if (std::exchange(m_isCheckStale, false))
        verify();
    auto due = deadline();
    if (due && m_dispatch.now() >= *due)
        m_state = State::present;
}

std::optional<Instant> WindowManagerWatch::deadline() const
{
    if (m_state != State::returning)
        return std::nullopt;
    return std::clamp<Instant>(
        m_listChangedAt + kListRest, m_cameAt + kEarliestThaw, m_cameAt + kLatestThaw);
}

void WindowManagerWatch::verify()
{
    auto window = readCheckWindow();
    bool isFirstLook = std::exchange(m_isFirstLook, false);
    bool isKnown = window == m_checkWindow && (m_state == State::present || m_isLeaving);
    if (window == XCB_WINDOW_NONE || isKnown)
        return;
    managerDidCome(window);
    if (isFirstLook)
        m_state = State::present; // it was there before this program
}

xcb_window_t WindowManagerWatch::readCheckWindow()
{
    auto atom = m_connection.atoms().netSupportingWmCheck;
    std::optional<xcb_window_t> window;
    RequestBatch onRoot{m_connection.raw()};
    onRoot.property(
        m_connection.root(), atom, 1, [&](const RawProperty& raw) { window = decodeWindow(raw); });
    onRoot.finish();
    if (!window || *window == XCB_WINDOW_NONE)
        return XCB_WINDOW_NONE;

    // Listened to before it is asked, so that nothing goes unnoticed in between: some managers name
    // the window on the root before the window names itself.
    m_candidate = *window;
    auto added = m_connection.addEventMask(
        *window, XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE);
    std::optional<xcb_window_t> itself;
    RequestBatch onWindow{m_connection.raw()};
    onWindow.property(
        *window, atom, 1, [&](const RawProperty& raw) { itself = decodeWindow(raw); });
    onWindow.finish();
    if (itself == window) {
        // openbox writes there at each event that it handles. Others may name a window that is
        // listened to anyway, even the root.
        m_connection.removeEventMask(*window, added & XCB_EVENT_MASK_PROPERTY_CHANGE);
        return *window;
    }
    m_connection.forgetWindow(*window);
    return XCB_WINDOW_NONE;
}

void WindowManagerWatch::managerDidCome(xcb_window_t window)
{
    auto last = std::exchange(m_checkWindow, window);
    if (last != window && last != XCB_WINDOW_NONE)
        m_connection.forgetWindow(last); // its end will not be seen, and its number may come back
    m_isLeaving = false;
    m_state = State::returning;
    m_cameAt = m_listChangedAt = m_dispatch.now();
}

}
