#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "Hosts/Linux/Drawing/DamageRegion.h"
#include "Hosts/Linux/PlacedSurface.h"
#include "Hosts/X11/Input/KeyInput.h"
#include "Hosts/X11/ServerTime.h"
#include "Hosts/X11/Surface/PaintSource.h"
#include "Hosts/X11/Surface/PointerTracker.h"
#include "Hosts/X11/Surface/SurfaceContext.h"
#include "Hosts/X11/Surface/TitledWindow.h"

namespace quorvel::xdg::x11 {

/// A surface that is an ordinary window to the window manager, which gives it the focus, and with
/// it the keyboard. The window exists only while the surface is ordered in.
class X11Window final : public PlacedSurface {
public:
    X11Window(const SurfaceContext&, const PanelOptions&, SurfaceClient&,
        std::function<void()> onPointerMoved);
    ~X11Window() override;

    void setFrame(const Rect&) override;
    Rect frame() const override { return m_frame; }
    void orderFront() override { show(Wish::seen); }
    void orderOut() override;
    void setCanBecomeKey(bool) override { }
    void makeKeyAndOrderFront() override { show(Wish::active); }
    bool isVisible() const override { return m_window != nullptr; }
    double scale() const override { return m_context.scale(); }
    void invalidate(const Rect&) override;
    void setOpacity(double) override { }
    bool setBlursBehind(const std::optional<VisualEffect>&) override { return false; }
    Duration frameInterval() const override;
    /// It comes with the focus.
    bool takeKeyboard() override { return m_hasKeyboard; }
    void releaseKeyboard() override { }
    void textInputDidChange() override { m_input.textInputDidChange(m_client); }
    void forgetComposition() override { m_input.forgetComposition(m_client); }
    void accessibleTreeDidChange() override;

    Rect framePixels() const override;

private:
    enum class Wish { seen, active };

    void show(Wish);
    void handle(const xcb_generic_event_t*);
    void focusDidChange(const xcb_focus_in_event_t&);
    void setHasKeyboard(bool);
    void keysAreDown(const xcb_keymap_notify_event_t&);
    void endTurn();
    void followPlace();
    void scaleDidChange();
    void repaintAll();
    void paint();

    SurfaceContext m_context;
    const PanelOptions m_options;
    SurfaceClient& m_client;
    const std::function<void()> m_onPointerMoved;
    Rect m_frame; ///< points, bottom-left origin
    PaintSource m_paint;
    DamageRegion m_damage;
    PointerTracker m_pointer;
    KeyInput m_input;
    ServerTime m_time;
    bool m_hasKeyboard = false;
    bool m_awaitsKeys = false; ///< those that are down as the focus comes
    std::unique_ptr<TitledWindow> m_window;
    std::vector<Subscription> m_subscriptions;
    Subscription m_accessible; ///< while it is ordered in
};

}
