#pragma once

#include <functional>
#include <optional>

#include "Hosts/Linux/GHandles.h"
#include "Quorvel/Platform/Dispatch.h"

namespace quorvel::xdg::x11 {

/// Paints once after everything that is ready in the loop, however often it is requested: at once
/// after a pause, and then no faster than anybody could see. Main thread.
class PaintSource {
public:
    explicit PaintSource(std::function<void()> paint);
    ~PaintSource();
    PaintSource(const PaintSource&) = delete;
    PaintSource& operator=(const PaintSource&) = delete;

    void request();

private:
    struct Source;
    std::optional<Instant> due() const;

    GSourceHandle<Source> m_source;
    std::function<void()> m_paint;
    Instant m_earliestNext = Instant::min();
    bool m_isRequested = false;
};

}
