#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Platform/Surfaces.h"
#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel {

struct Screen;

/// A text in a small panel of its own, beside what it is about. It only shows something: it uses no
/// pointer and no keys, and screen readers find the same words at their view. Destroying it removes
/// it from the screen. Main thread.
class TooltipPanel final : public SurfaceClient {
public:
    /// Above a bar and in the middle over a view of it, wholly on the screen; all in points,
    /// bottom-left origin. The platform outlives it.
    TooltipPanel(
        const Platform&, const Screen&, const std::string& text, const Rect& view, const Rect& bar);

    const Rect& frame() const { return m_frame; }

private:
    void paint(Canvas&, const Rect& damage) override;
    void pointerEvent(const PointerEvent&) override { }
    void pointerLost() override { }
    void scrollEvent(const ScrollEvent&) override { }
    void surfaceDidResize(Size) override { }

    Palette m_palette;
    std::vector<std::string> m_lines;
    Rect m_frame;
    std::unique_ptr<PanelSurface> m_surface;
};

}
