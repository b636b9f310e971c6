#pragma once

#include <functional>

#include <glib.h>

namespace quorvel::x11 {

/// Runs once, after what the loop has ready now, however often it is asked for. Main thread.
class PaintSource {
public:
    explicit PaintSource(std::function<void()> paint);
    ~PaintSource();
    PaintSource(const PaintSource&) = delete;
    PaintSource& operator=(const PaintSource&) = delete;

    void request();

private:
    struct Source;
    Source* m_source;
    std::function<void()> m_paint;
    bool m_isRequested = false;
};

}
