#include "Quorvel/Views/PeekFading.h"

#include <utility>

#include "Quorvel/Platform/Application.h"
#include "Quorvel/Platform/Peeking.h"
#include "Quorvel/Platform/Platform.h"

namespace quorvel {

PeekFading::PeekFading(const Platform& platform)
    : m_dispatch(platform.dispatch)
    , m_application(platform.application)
    , m_peeking(*platform.peeking)
{
}

PeekFading::~PeekFading()
{
    if (m_next.isPending())
        m_peeking.fade(1);
}

bool PeekFading::isGradual() const
{
    return !m_application.appearance().value().reduceMotion;
}

void PeekFading::showAlone(WindowID window)
{
    m_peeking.showAlone(window);
    begin();
}

void PeekFading::showAll()
{
    m_peeking.showAll();
    begin();
}

void PeekFading::begin()
{
    if (m_next.isPending())
        return;
    m_last = m_dispatch.now();
    fade(0);
}

void PeekFading::step()
{
    auto now = m_dispatch.now();
    std::chrono::duration<double> passed = now - std::exchange(m_last, now);
    fade(passed / std::chrono::duration<double>(kLength));
}

void PeekFading::fade(double by)
{
    m_next = {};
    if (m_peeking.fade(isGradual() ? by : 1))
        m_next = m_dispatch.main().after(m_frameInterval, [this] { step(); });
}

}
