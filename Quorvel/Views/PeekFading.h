#pragma once

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Identifiers.h"

namespace quorvel {

class Application;
class Peeking;
struct Platform;

/// Windows that are shown alone while the others fade, out and in again, at the speed that the eye
/// follows. It has a timer only while something fades. Main thread; destroying it ends the way at
/// once.
class PeekFading {
public:
    /// Of the whole way.
    static constexpr Duration kLength = seconds(0.15);

    /// Outlives it, and can show windows alone.
    explicit PeekFading(const Platform&);
    ~PeekFading();
    PeekFading(const PeekFading&) = delete;
    PeekFading& operator=(const PeekFading&) = delete;

    /// Of the display that the user looks at.
    void setFrameInterval(Duration interval) { m_frameInterval = interval; }

    /// As `Peeking` says. Whatever is on its way turns round where it is.
    void showAlone(WindowID);
    void showAll();

private:
    void begin();
    void step();
    void fade(double by);
    bool isGradual() const;

    Dispatch& m_dispatch;
    const Application& m_application;
    Peeking& m_peeking;
    Duration m_frameInterval = seconds(1.0 / 60);
    Instant m_last; ///< step
    WorkItem m_next;
};

}
