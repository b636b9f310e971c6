#include "Quorvel/Skylight/ScreenLog.h"

namespace quorvel {

namespace {

constexpr std::array<Duration, 2> kDelays{seconds(0.5), seconds(2.0)};

std::string text(const Rect& rect)
{
    return fmt::format("{:.3f},{:.3f},{:.3f}x{:.3f}", rect.x, rect.y, rect.width, rect.height);
}

}

void ScreenLog::writeSoon()
{
    if (!m_trace.isOn())
        return;
    for (std::size_t i = 0; i < kDelays.size(); ++i)
        m_pending[i] = m_dispatch.main().after(kDelays[i], [this] { write(); });
}

void ScreenLog::write() const
{
    for (auto& screen : m_displays.screens()) {
        m_trace.line("screen number={} frame={} visibleFrame={}", orNil(screen.number),
            text(screen.frame), text(screen.visibleFrame));
    }
}

}
