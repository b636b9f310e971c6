#pragma once

#include "Hosts/Linux/PlacedSurface.h"
#include "Hosts/X11/Surface/InputGrabs.h"

namespace quorvel::xdg::x11 {

class DisplayWindow;

/// One space's panel of a display. It has no window of its own: the display's window shows it while
/// its space is the current one.
class X11Panel final : public PlacedSurface {
public:
    X11Panel(DisplayWindow&, const PanelOptions&, SurfaceClient&);
    ~X11Panel() override;

    void setFrame(const Rect&) override;
    Rect frame() const override { return m_frame; }
    void orderFront() override;
    void orderOut() override;
    void setCanBecomeKey(bool canBecomeKey) override { m_canBecomeKey = canBecomeKey; }
    /// Makes its desktop the current one. The focus stays with the programs.
    void makeKeyAndOrderFront() override;
    bool isVisible() const override;
    double scale() const override;
    void invalidate(const Rect&) override;
    bool setBlursBehind(const std::optional<VisualEffect>&) override;
    Duration frameInterval() const override;
    bool takeKeyboard() override;
    void setOpacity(double) override { } // a bar never fades
    void setSlide(double share) override;
    void releaseKeyboard() override { m_grab.release(); }
    void accessibleTreeDidChange() override;

    const PanelOptions& options() const { return m_options; }
    SurfaceClient& client() const { return m_client; }
    bool isOrderedIn() const { return m_isOrderedIn; }
    const std::optional<VisualEffect>& blur() const { return m_blur; }
    /// What is painted under the content: over a blur, the tint of its material.
    Color ground() const;
    Rect framePixels() const override;
    /// The part that is not behind the edge; empty once it has gone whole.
    Rect seenPixels() const;

private:
    DisplayWindow& m_window;
    const PanelOptions m_options;
    SurfaceClient& m_client;
    Rect m_frame; ///< points, bottom-left origin
    double m_slide = 0;
    bool m_isOrderedIn = false;
    bool m_canBecomeKey = false;
    std::optional<VisualEffect> m_blur; ///< as far as it is available
    InputGrabs::Grab m_grab;
    Subscription m_accessible;
};

}
