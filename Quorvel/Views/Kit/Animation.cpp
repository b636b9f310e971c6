#include "Quorvel/Views/Kit/Animation.h"

#include <utility>

namespace quorvel {

void Animation::start(Duration length, Duration frame, std::function<void(double)> onStep)
{
    m_length = length;
    m_frame = frame;
    m_onStep = std::move(onStep);
    m_start = m_dispatch.now();
    step();
}

void Animation::step()
{
    m_next = {};
    auto passed = m_dispatch.now() - m_start;
    if (passed >= m_length)
        return m_onStep(1);
    double share = std::chrono::duration<double>(passed) / std::chrono::duration<double>(m_length);
    m_next = m_dispatch.main().after(m_frame, [this] { step(); });
    m_onStep(share * share * (3 - 2 * share));
}

}
