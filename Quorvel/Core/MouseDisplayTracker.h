#pragma once

#include <memory>
#include <optional>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Displays.h"

namespace quorvel {

/// Which display the pointer is on, without flicker at the borders.
///
/// While started, samples the pointer on a serial queue of its own and keeps two answers: the
/// display of the last sample, and the one on which the pointer has stayed for a moment. Sampling
/// wakes up the machine sixty times a second, so only code that follows the pointer starts it; code
/// that opens something at the pointer samples once. Public operations from any one thread but the
/// queue's.
class MouseDisplayTracker {
public:
    static constexpr Duration sampleInterval = seconds(1.0 / 60);
    static constexpr Duration displaySwitchDebounce = seconds(0.06);
    /// How long the last sample is valid.
    static constexpr Duration sampleLifetime = seconds(0.12);

    MouseDisplayTracker(Dispatch&, const Displays&);
    ~MouseDisplayTracker();

    void start();
    void stop();
    /// Takes one sample now.
    void look();
    /// Where something that belongs to the pointer should open; absent while unknown.
    std::optional<DisplayNumber> preferredDisplayID() const;

private:
    void sampleMouseDisplay();

    Dispatch& m_dispatch;
    const Displays& m_displays;

    // Used on the queue only.
    bool m_isStarted = false;
    std::optional<DisplayNumber> m_instantaneousDisplayID;
    std::optional<DisplayNumber> m_debouncedDisplayID;
    Instant m_lastSampleAt;
    WorkItem m_timer;
    WorkItem m_pendingTransitionWork;

    std::unique_ptr<Queue> m_queue; ///< last: it is drained before what its work uses goes
};

}
