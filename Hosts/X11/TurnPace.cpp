#include "Hosts/X11/TurnPace.h"

#include <algorithm>
#include <utility>

namespace quorvel::xdg::x11 {

TurnPace::TurnPace(std::function<bool(xcb_window_t)> concernsUs)
    : m_concernsUs(std::move(concernsUs))
{
}

TurnPace::Events TurnPace::kindOf(const xcb_generic_event_t& event) const
{
    const auto ofWindow = [this](xcb_window_t window) {
        return m_concernsUs(window) ? Events::urgent : Events::patient;
    };
    const int type = event.response_type & 0x7f;
    if (type == XCB_PROPERTY_NOTIFY) {
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        // Whoever is sent a text in pieces deletes each when it has read it.
        return change.state == XCB_PROPERTY_DELETE ? Events::urgent : ofWindow(change.window);
    }
    if (type == XCB_CONFIGURE_NOTIFY)
        return ofWindow(reinterpret_cast<const xcb_configure_notify_event_t&>(event).window);
    const bool isInput
        = (type >= XCB_KEY_PRESS && type <= XCB_LEAVE_NOTIFY) || type == XCB_GE_GENERIC;
    return isInput ? Events::input : Events::urgent;
}

Duration TurnPace::restAfter(Instant now, Events events)
{
    if (m_latest != Instant::min()) {
        const std::chrono::duration<double> since = now - m_latest;
        const std::chrono::duration<double> interval = kInterval;
        m_allowance = std::min<double>(kAtOnce, m_allowance + since / interval);
    }
    m_latest = now;
    if (events == Events::input)
        m_inputLastsUntil = now + kInputLasts;
    if (events != Events::patient || now < m_inputLastsUntil)
        return Duration::zero();
    m_allowance = std::max(m_allowance - 1, -1.0);
    return m_allowance < 0 ? std::chrono::duration_cast<Duration>(-m_allowance * kInterval)
                           : Duration::zero();
}

}
