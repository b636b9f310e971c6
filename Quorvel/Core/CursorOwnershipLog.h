#pragma once

#include <string>

#include "Quorvel/Platform/Displays.h"
#include "Quorvel/Platform/Surfaces.h"
#include "Quorvel/Platform/Trace.h"

namespace quorvel {

class BarPanels;

/// Writes to the trace which bar the pointer is over, each time this changes. Main thread.
class CursorOwnershipLog {
public:
    CursorOwnershipLog(Surfaces&, const Displays&, const BarPanels&, const Trace&);

private:
    void write(std::string_view source);
    std::string owner() const;

    const Displays& m_displays;
    const BarPanels& m_panels;
    const Trace& m_trace;
    std::string m_lastSignature;
    Subscription m_localMonitor;
    Subscription m_globalMonitor;
};

}
