#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "Hosts/Linux/Drawing/DamageRegion.h"
#include "Hosts/Linux/PlacedSurface.h"
#include "Hosts/X11/Surface/InputGrabs.h"
#include "Hosts/X11/Surface/PaintSource.h"
#include "Hosts/X11/Surface/PointerTracker.h"
#include "Hosts/X11/Surface/PopupWindow.h"
#include "Hosts/X11/Surface/SurfaceContext.h"

namespace quorvel::xdg::x11 {

/// A surface above the bars with a window of its own, which exists only while the surface is
/// ordered in. Its place and its picture change together, once a turn, however often it is moved.
class X11Popup final : public PlacedSurface {
public:
    X11Popup(const SurfaceContext&, const PanelOptions&, SurfaceClient&,
        std::function<void()> onPointerMoved);
    ~X11Popup() override;

    void setFrame(const Rect&) override;
    Rect frame() const override { return m_frame; }
    void orderFront() override;
    void orderOut() override;
    void setCanBecomeKey(bool) override { }
    void makeKeyAndOrderFront() override;
    bool isVisible() const override { return m_isOrderedIn; }
    double scale() const override { return m_context.scale(); }
    void invalidate(const Rect&) override;
    void setOpacity(double) override;
    bool setBlursBehind(const std::optional<VisualEffect>&) override { return false; }
    Duration frameInterval() const override;
    bool takeKeyboard() override;
    void releaseKeyboard() override { m_grab.release(); }
    bool grabInput() override;
    void setCursor(Cursor) override { } // the arrow from the start, like all of them
    void textInputDidChange() override { m_grab.textInputDidChange(); }
    void forgetComposition() override { m_grab.forgetComposition(); }
    void accessibleTreeDidChange() override;

    Rect framePixels() const override { return m_context.toPixels(m_frame); }

private:
    void handle(const xcb_generic_event_t*);
    void endTurn();
    void repaintAll();
    void paint();

    SurfaceContext m_context;
    const PanelOptions m_options;
    SurfaceClient& m_client;
    const std::function<void()> m_onPointerMoved;
    Rect m_frame; ///< points, bottom-left origin
    double m_opacity = 1;
    bool m_isOrderedIn = false;
    PaintSource m_paint;
    DamageRegion m_damage;
    PointerTracker m_pointer;
    std::unique_ptr<PopupWindow> m_window;
    InputGrabs::Grab m_grab;
    std::vector<Subscription> m_subscriptions;
    Subscription m_accessible; ///< while it is ordered in
};

}
