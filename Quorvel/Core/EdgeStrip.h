#pragma once

#include <functional>
#include <memory>

#include "Quorvel/Core/AutoHide.h"
#include "Quorvel/Platform/Surfaces.h"

namespace quorvel {

/// The strip at a screen's edge that tells what the pointer does there. Main thread.
class EdgeStrip final : private SurfaceClient {
public:
    /// The handler must not do away with the strip.
    EdgeStrip(Surfaces&, DisplayNumber, std::function<void(EdgeContact)> handler);

    /// Points, bottom-left origin. It is there from the first time on.
    void setFrame(const Rect&);

private:
    void paint(Canvas&, const Rect&) override { }
    void pointerEvent(const PointerEvent&) override;
    void pointerLost() override { m_handler(EdgeContact::left); }
    void scrollEvent(const ScrollEvent&) override { }
    void surfaceDidResize(Size) override { }
    bool dropEvent(const DropEvent&) override;

    const std::function<void(EdgeContact)> m_handler;
    std::unique_ptr<PanelSurface> m_surface;
};

}
