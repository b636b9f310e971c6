#include "Hosts/Linux/Desktop/FocusTracker.h"

namespace quorvel::xdg {

void FocusTracker::expect(std::optional<WindowID> window, Instant now)
{
    m_expected = window;
    m_expectedUntil = now + kAnswerSettles;
}

bool FocusTracker::isOldNews(WindowID window, Instant now)
{
    if (m_expected == window || now >= m_expectedUntil)
        m_expected.reset();
    return m_expected && m_window && window != *m_window;
}

void FocusTracker::update(const Active& active, Instant now)
{
    m_isOwnWindowActive = std::holds_alternative<Own>(active);
    if (auto* window = std::get_if<WindowID>(&active)) {
        if (isOldNews(*window, now)) {
            m_settlesAt = m_expectedUntil;
            return;
        }
        m_window = *window;
    }
    if (m_isOwnWindowActive || std::holds_alternative<WindowID>(active) || !m_window) {
        m_settlesAt.reset();
        return;
    }

    bool isNone = std::holds_alternative<None>(active);
    if (!m_settlesAt)
        m_settlesAt = now + (isNone ? Duration{kNoneSettles} : Duration{kUnknownSettles});
    else if (isNone)
        m_settlesAt = std::min(*m_settlesAt, Instant{now + kNoneSettles});
    if (now < *m_settlesAt)
        return;
    m_window.reset();
    m_settlesAt.reset();
}

}
