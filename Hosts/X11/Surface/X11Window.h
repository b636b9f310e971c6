#pragma once

#include <memory>

#include "Hosts/X11/Input/KeyInput.h"
#include "Hosts/X11/ServerTime.h"
#include "Hosts/X11/Surface/TitledWindow.h"
#include "Hosts/X11/Surface/WindowedSurface.h"

namespace quorvel::xdg::x11 {

/// A surface that is an ordinary window to the window manager, which gives it the focus, and with
/// it the keyboard. The window exists only while the surface is ordered in.
class X11Window final : public WindowedSurface {
public:
    X11Window(const SurfaceContext&, const PanelOptions&, SurfaceClient&,
        std::function<void()> onPointerMoved);
    ~X11Window() override;

    void setFrame(const Rect&) override;
    void orderFront() override { show(Wish::seen); }
    void orderOut() override;
    void setCanBecomeKey(bool) override { }
    void makeKeyAndOrderFront() override { show(Wish::active); }
    bool isVisible() const override { return m_window != nullptr; }
    void setOpacity(double) override { }
    bool setBlursBehind(const std::optional<VisualEffect>&) override { return false; }
    /// It comes with the focus.
    bool takeKeyboard() override { return m_hasKeyboard; }
    void releaseKeyboard() override { }
    void textInputDidChange() override { m_input.textInputDidChange(m_client); }
    void forgetComposition() override { m_input.forgetComposition(m_client); }

    Rect framePixels() const override;

private:
    enum class Wish { seen, active };

    void show(Wish);
    bool hasWindow() const override { return m_window != nullptr; }
    void handle(const xcb_generic_event_t*) override;
    void focusDidChange(const xcb_focus_in_event_t&);
    void setHasKeyboard(bool);
    void keysAreDown(const xcb_keymap_notify_event_t&);
    void endTurn() override;
    void followPlace();
    void scaleDidChange() override;
    void paint() override;

    KeyInput m_input;
    ServerTime m_time;
    bool m_hasKeyboard = false;
    bool m_awaitsKeys = false; ///< those that are down as the focus comes
    std::unique_ptr<TitledWindow> m_window;
};

}
