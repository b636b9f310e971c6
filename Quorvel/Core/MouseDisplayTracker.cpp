#include "Quorvel/Core/MouseDisplayTracker.h"

namespace quorvel {

MouseDisplayTracker::MouseDisplayTracker(Dispatch& dispatch, const Displays& displays)
    : m_dispatch(dispatch)
    , m_displays(displays)
    , m_queue(dispatch.makeSerialQueue(
          "quorvel.mouse-display-tracker", QualityOfService::userInteractive))
{
}

MouseDisplayTracker::~MouseDisplayTracker()
{
    // The queue's work makes work items of the queue: it has to end before the pointer to it goes.
    auto queue = m_queue.get();
    queue->sync([this] {
        m_timer.cancel();
        m_pendingTransitionWork.cancel();
    });
}

void MouseDisplayTracker::start()
{
    m_queue->async([this] {
        if (m_isStarted)
            return;
        m_isStarted = true;
        m_timer = m_queue->every(sampleInterval, [this] { sampleMouseDisplay(); });
    });
}

void MouseDisplayTracker::stop()
{
    m_queue->async([this] {
        m_timer.cancel();
        m_pendingTransitionWork.cancel();
        m_isStarted = false;
    });
}

void MouseDisplayTracker::look()
{
    m_queue->sync([this] { sampleMouseDisplay(); });
}

std::optional<DisplayNumber> MouseDisplayTracker::preferredDisplayID() const
{
    std::optional<DisplayNumber> preferred;
    m_queue->sync([&] {
        bool isFresh = m_dispatch.now() - m_lastSampleAt <= sampleLifetime;
        if (isFresh && m_instantaneousDisplayID)
            preferred = m_instantaneousDisplayID;
        else
            preferred = m_debouncedDisplayID ? m_debouncedDisplayID : m_instantaneousDisplayID;
    });
    return preferred;
}

void MouseDisplayTracker::sampleMouseDisplay()
{
    auto display = m_displays.displayAt(m_displays.pointerLocation());
    m_lastSampleAt = m_dispatch.now();
    if (display == m_instantaneousDisplayID)
        return;
    m_instantaneousDisplayID = display;
    m_pendingTransitionWork = m_queue->after(
        displaySwitchDebounce, [this] { m_debouncedDisplayID = m_instantaneousDisplayID; });
}

}
