#pragma once

#include <array>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Displays.h"
#include "Quorvel/Platform/Trace.h"

namespace quorvel {

/// Writes the screens' frames to the trace some time after a reservation was requested: the window
/// server does not report the outcome and takes its time, so only the visible frames show whether
/// it worked. Main thread.
class ScreenLog {
public:
    ScreenLog(Dispatch& dispatch, const Displays& displays, const Trace& trace)
        : m_dispatch(dispatch)
        , m_displays(displays)
        , m_trace(trace)
    {
    }

    /// After 0.5 and 2.0 s; another request restarts the delay. Does nothing while the trace is
    /// off.
    void writeSoon();

private:
    void write() const;

    Dispatch& m_dispatch;
    const Displays& m_displays;
    const Trace& m_trace;
    std::array<WorkItem, 2> m_pending;
};

}
