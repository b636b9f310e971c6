#include "Hosts/X11/TurnPace.h"

#include <algorithm>

namespace quorvel::xdg::x11 {

TurnPace::Events TurnPace::kindOf(const xcb_generic_event_t& event, xcb_window_t root)
{
    xcb_window_t window = root;
    switch (event.response_type & 0x7f) {
    case XCB_PROPERTY_NOTIFY:
        window = reinterpret_cast<const xcb_property_notify_event_t&>(event).window;
        break;
    case XCB_CONFIGURE_NOTIFY:
        window = reinterpret_cast<const xcb_configure_notify_event_t&>(event).window;
        break;
    default:
        break;
    }
    return window == root ? Events::urgent : Events::patient;
}

Duration TurnPace::restAfter(Instant now, Events events)
{
    if (m_latest != Instant::min()) {
        const std::chrono::duration<double> since = now - m_latest;
        const std::chrono::duration<double> interval = kInterval;
        m_allowance = std::min<double>(kAtOnce, m_allowance + since / interval);
    }
    m_latest = now;
    if (events != Events::patient)
        return Duration::zero();
    m_allowance = std::max(m_allowance - 1, -1.0);
    return m_allowance < 0 ? std::chrono::duration_cast<Duration>(-m_allowance * kInterval)
                           : Duration::zero();
}

}
