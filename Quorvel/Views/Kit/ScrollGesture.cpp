#include "Quorvel/Views/Kit/ScrollGesture.h"

#include <cmath>

namespace quorvel {

ScrollGesture::Meaning ScrollGesture::handle(const ScrollEvent& event, Instant now)
{
    if (event.phase == ScrollPhase::began) {
        m_isUnderWay = true;
        m_axis.reset();
        m_sum = {};
    }
    if (m_isUnderWay)
        return handleGesture(event);
    if (event.phase != ScrollPhase::none)
        return {}; // it began over another surface, perhaps the bar of the space before
    // Momentum goes on with what its gesture was.
    if (event.isMomentum)
        return {.sideways = m_axis == ScrollAxis::horizontal ? event.deltaX : 0};
    return handleNotch(event, now);
}

ScrollGesture::Meaning ScrollGesture::handleNotch(const ScrollEvent& event, Instant now)
{
    if (now - m_lastNotch > kPause) {
        m_notchAxis.reset();
        m_notches = {};
    }
    m_lastNotch = now;
    m_notches = m_notches.translated(std::abs(event.deltaX), std::abs(event.deltaY));
    // With as many along both, it stays what it was.
    if (!m_notchAxis || m_notches.x != m_notches.y)
        m_notchAxis = ScrollEvent{{}, m_notches.x, m_notches.y}.axis();
    if (*m_notchAxis != event.axis())
        return {};
    if (*m_notchAxis == ScrollAxis::horizontal)
        return {.sideways = event.deltaX};
    return {.step = event.deltaY};
}

ScrollGesture::Meaning ScrollGesture::handleGesture(const ScrollEvent& event)
{
    m_isUnderWay = event.phase != ScrollPhase::ended;
    if (m_axis)
        return {.sideways = m_axis == ScrollAxis::horizontal ? event.deltaX : 0};
    m_sum = m_sum.translated(event.deltaX, event.deltaY);
    if (std::hypot(m_sum.x, m_sum.y) < kSettledAfter)
        return {};
    m_axis = ScrollEvent{{}, m_sum.x, m_sum.y}.axis();
    if (m_axis == ScrollAxis::horizontal)
        return {.sideways = m_sum.x};
    return {.step = m_sum.y};
}

}
