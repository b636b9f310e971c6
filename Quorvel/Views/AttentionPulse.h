#pragma once

#include <functional>

#include "Quorvel/Platform/Dispatch.h"

namespace quorvel {

/// The slow pulsing of an item that asks for attention. After some pulses it stays lit: a request
/// that nobody answers must not keep the machine awake. Main thread.
class AttentionPulse {
public:
    static constexpr Duration period = seconds(1.6);
    static constexpr int swells = 6;

    /// `onStep` receives the strength, from 0 to 1.
    AttentionPulse(Dispatch&, std::function<void(double)> onStep);

    /// Starts with the first pulse. With animations off it is lit at once and does not move.
    void start(bool reducesMotion);
    void stop();

private:
    static constexpr Duration frame = seconds(0.04);

    void step();

    Dispatch& m_dispatch;
    std::function<void(double)> m_onStep;
    Instant m_start;
    WorkItem m_next;
};

}
