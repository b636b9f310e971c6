#pragma once

#include <memory>

#include "Hosts/X11/Surface/InputGrabs.h"
#include "Hosts/X11/Surface/PopupWindow.h"
#include "Hosts/X11/Surface/WindowedSurface.h"

namespace quorvel::xdg::x11 {

/// A surface above the bars with a window of its own, which exists only while the surface is
/// ordered in. Its place and its picture change together, once a turn, however often it is moved.
class X11Popup final : public WindowedSurface {
public:
    X11Popup(const SurfaceContext&, const PanelOptions&, SurfaceClient&,
        std::function<void()> onPointerMoved);
    ~X11Popup() override;

    void setFrame(const Rect&) override;
    void orderFront() override;
    void orderOut() override;
    void setCanBecomeKey(bool) override { }
    void makeKeyAndOrderFront() override;
    bool isVisible() const override { return m_isOrderedIn; }
    void setOpacity(double) override;
    bool setBlursBehind(const std::optional<VisualEffect>&) override { return false; }
    bool takeKeyboard() override;
    void releaseKeyboard() override { m_grab.release(); }
    bool grabInput() override;
    void setCursor(Cursor) override { } // the arrow from the start, like all of them
    void textInputDidChange() override { m_grab.textInputDidChange(); }
    void forgetComposition() override { m_grab.forgetComposition(); }

    Rect framePixels() const override { return m_context.toPixels(m_frame); }

private:
    bool hasWindow() const override { return m_window != nullptr; }
    void handle(const xcb_generic_event_t*) override;
    void paint() override;
    void followBackdrop();

    double m_opacity = 1;
    bool m_isOrderedIn = false;
    std::unique_ptr<PopupWindow> m_window;
    WorkItem m_backdropTimer;
    InputGrabs::Grab m_grab;
    Subscription m_compositingChange;
};

}
