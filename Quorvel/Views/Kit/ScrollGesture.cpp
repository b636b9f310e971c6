#include "Quorvel/Views/Kit/ScrollGesture.h"

#include <cmath>

namespace quorvel {

ScrollGesture::Meaning ScrollGesture::handle(const ScrollEvent& event)
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
    if (event.axis() == ScrollAxis::horizontal)
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
