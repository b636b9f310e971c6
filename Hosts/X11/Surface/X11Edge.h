#pragma once

#include <memory>
#include <vector>

#include <xcb/xcb.h>

#include "Hosts/X11/Surface/DropTarget.h"
#include "Hosts/X11/Surface/PointerTracker.h"
#include "Hosts/X11/Surface/SurfaceContext.h"
#include "Quorvel/Platform/Surfaces.h"

namespace quorvel::xdg::x11 {

/// A strip at a screen's edge: a window for input alone, which no window manager touches. The
/// server never tells whether such a window is covered, so it comes to the top whenever the order
/// of the windows has changed. While a full-screen window is in front of its display, it is away.
class X11Edge final : public PanelSurface {
public:
    X11Edge(const SurfaceContext&, DisplayNumber, SurfaceClient&);
    ~X11Edge() override;
    X11Edge(const X11Edge&) = delete;
    X11Edge& operator=(const X11Edge&) = delete;

    void setFrame(const Rect&) override;
    Rect frame() const override { return m_frame; }
    void orderFront() override;
    void orderOut() override;
    bool isVisible() const override { return m_isOrderedIn; }
    double scale() const override { return m_context.scale(); }
    Duration frameInterval() const override;

    // It shows nothing, and has no use for keys.
    void setCanBecomeKey(bool) override { }
    void makeKeyAndOrderFront() override { orderFront(); }
    void invalidate(const Rect&) override { }
    void setOpacity(double) override { }
    bool setBlursBehind(const std::optional<VisualEffect>&) override { return false; }
    bool takeKeyboard() override { return false; }
    void releaseKeyboard() override { }
    void accessibleTreeDidChange() override { }

private:
    void place();
    void updateMapping();
    void raise() const;
    void handle(const xcb_generic_event_t*);

    SurfaceContext m_context;
    const DisplayNumber m_display;
    const xcb_window_t m_window;
    Rect m_frame; ///< points, bottom-left origin
    bool m_isOrderedIn = false;
    bool m_isMapped = false;
    PointerTracker m_pointer{m_context.modifiersIn()};
    std::unique_ptr<DropTarget> m_drops;
    std::vector<Subscription> m_subscriptions;
};

}
