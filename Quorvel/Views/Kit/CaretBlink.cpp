#include "Quorvel/Views/Kit/CaretBlink.h"

namespace quorvel {

void CaretBlink::restart(bool blinks)
{
    m_end = m_dispatch.now() + (blinks ? kLasts : Duration::zero());
    turn(true);
}

void CaretBlink::stop()
{
    m_end = {};
    turn(false);
}

void CaretBlink::turn(bool isOn)
{
    if (std::exchange(m_isOn, isOn) != isOn)
        m_onChange();
    m_next = {};
    if (m_dispatch.now() < m_end)
        m_next = m_dispatch.main().after(isOn ? kOn : kOff, [this, isOn] { turn(!isOn); });
    else if (!isOn && m_end != Instant{})
        turn(true);
}

}
