#include "Quorvel/Core/WheelNotches.h"

namespace quorvel {

void WheelNotches::scroll(const ScrollEvent& event, SpaceID bar)
{
    if (event.unit == ScrollUnit::notches && m_steps.isUnderWay()) {
        m_kept += event.deltaY > 0 ? 1 : -1;
        m_last = event;
        m_bar = bar;
        return;
    }
    m_kept = 0;
    m_steps.make(event, bar);
}

void WheelNotches::switchDidEnd()
{
    if (m_kept == 0)
        return;
    int step = m_kept > 0 ? 1 : -1;
    m_kept -= step;
    m_last.deltaY = step;
    m_steps.make(m_last, m_steps.currentSpace(m_bar));
    if (!m_steps.isUnderWay())
        m_kept = 0; // there is no space beyond
}

}
