#include "Quorvel/Views/AttentionPulse.h"

#include <cmath>
#include <numbers>
#include <utility>

namespace quorvel {

AttentionPulse::AttentionPulse(Dispatch& dispatch, std::function<void(double)> onStep)
    : m_dispatch(dispatch)
    , m_onStep(std::move(onStep))
{
}

void AttentionPulse::start(bool reducesMotion)
{
    m_next = {};
    m_start = m_dispatch.now();
    if (reducesMotion)
        m_onStep(1);
    else
        step();
}

void AttentionPulse::stop()
{
    m_next = {};
}

void AttentionPulse::step()
{
    auto turns = std::chrono::duration<double>(m_dispatch.now() - m_start)
        / std::chrono::duration<double>(period);
    // It ends at the top of a swell.
    if (turns >= swells - 0.5) {
        m_onStep(1);
        return;
    }
    m_onStep(0.5 - 0.5 * std::cos(2 * std::numbers::pi * turns));
    m_next = m_dispatch.main().after(frame, [this] { step(); });
}

}
