#pragma once

#include <functional>
#include <vector>

#include <cairo.h>

#include "Hosts/Linux/Drawing/DamageRegion.h"
#include "Hosts/Linux/PlacedSurface.h"
#include "Hosts/X11/Surface/PaintSource.h"
#include "Hosts/X11/Surface/PointerTracker.h"
#include "Hosts/X11/Surface/SurfaceContext.h"

namespace quorvel::xdg::x11 {

/// What surfaces have in common that have an X window each, which exists only while they are
/// ordered in: what is painted when, and who is told what the pointer does. Main thread.
class WindowedSurface : public PlacedSurface {
public:
    ~WindowedSurface() override;

    Rect frame() const override { return m_frame; }
    double scale() const override { return m_context.scale(); }
    void invalidate(const Rect&) override;
    Duration frameInterval() const override;
    void accessibleTreeDidChange() override;

protected:
    WindowedSurface(const SurfaceContext&, const PanelOptions&, SurfaceClient&,
        std::function<void()> onPointerMoved);

    virtual bool hasWindow() const = 0;
    /// Any event of the connection's.
    virtual void handle(const xcb_generic_event_t*) = 0;
    /// Paints what is damaged.
    virtual void paint() = 0;
    virtual void scaleDidChange() { repaintAll(); }
    /// All events that are there by now have been handled.
    virtual void endTurn();

    void repaintAll();
    void paintOn(cairo_surface_t*, const std::vector<Rect>& parts) const;
    void pointerEvent(const xcb_generic_event_t*);
    void windowDidGo();
    /// Assistive programs find it from now on.
    void becomeAccessible();

    SurfaceContext m_context;
    const PanelOptions m_options;
    SurfaceClient& m_client;
    Rect m_frame; ///< points, bottom-left origin
    PaintSource m_paint;
    DamageRegion m_damage;

private:
    const std::function<void()> m_onPointerMoved;
    PointerTracker m_pointer{m_context.modifiersIn()};
    std::vector<Subscription> m_subscriptions;
    Subscription m_accessible; ///< while it is ordered in
};

}
