#pragma once

#include <functional>

#include "Hosts/Linux/GHandles.h"
#include "Quorvel/Platform/Dispatch.h"

namespace quorvel::xdg::x11 {

/// Paints once after everything that is ready in the loop, however often it is requested: at once
/// after a pause, and then as often as the display shows a new picture. Main thread.
class PaintSource {
public:
    PaintSource(std::function<Duration()> frameInterval, std::function<void()> paint);
    ~PaintSource();
    PaintSource(const PaintSource&) = delete;
    PaintSource& operator=(const PaintSource&) = delete;

    void request();
    /// The next time comes before everything else that the loop has to do.
    void hurry();

private:
    struct Source;

    GSourceHandle<Source> m_source;
    std::function<Duration()> m_frameInterval;
    std::function<void()> m_paint;
    Instant m_frame; ///< when the latest frame is due, or was
    bool m_isRequested = false;
};

}
