#include "Quorvel/Views/BarSlide.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "Quorvel/Platform/Application.h"
#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Platform/Surfaces.h"

namespace quorvel {

namespace {

/// Of the bar, as it begins to come: from then on it is there for the pointer and the keyboard.
constexpr double kFirstSeen = 0.02;

}

BarSlide::BarSlide(const Platform& platform, PanelSurface& surface)
    : m_application(platform.application)
    , m_surface(surface)
    , m_motion(platform.dispatch)
{
}

void BarSlide::setOut(bool isOut)
{
    if (std::exchange(m_isOut, isOut) == isOut)
        return;
    double to = isOut ? 1 : 0;
    double from = isOut ? m_share : std::min(m_share, 1 - kFirstSeen);
    bool moves = m_surface.isVisible() && !m_application.appearance().value().reduceMotion;
    auto length = std::chrono::duration_cast<Duration>(kLength * std::abs(to - from));
    m_motion.start(moves ? length : Duration::zero(), m_surface.frameInterval(),
        [this, from, to](double progress) { moveTo(from + (to - from) * progress); });
}

void BarSlide::moveTo(double share)
{
    m_share = share;
    m_surface.setSlide(share);
}

}
