#pragma once

#include "Hosts/MacOS/SurfaceView.h"
#include "Quorvel/Platform/Surfaces.h"

@class QVPanel;

namespace quorvel {

class MacWindowServer;

/// A borderless panel at the Dock's level, on one space only. A proxy on the space of a full-screen
/// window lies among ordinary windows, has nothing to see and lets clicks through; a popup lies
/// above them all, whatever the space.
///
/// No public call puts a window on a given space: it lands on the active one when it is ordered in,
/// and is moved afterwards, which the window server lets a program do with its own windows.
class MacPanel final : public PanelSurface {
public:
    MacPanel(const MacWindowServer&, const PanelOptions&, SurfaceClient&);
    ~MacPanel() override;
    MacPanel(const MacPanel&) = delete;
    MacPanel& operator=(const MacPanel&) = delete;

    void setFrame(const Rect&) override;
    Rect frame() const override;
    void orderFront() override;
    void orderOut() override;
    void setCanBecomeKey(bool) override;
    void makeKeyAndOrderFront() override;
    bool isVisible() const override;
    double scale() const override;
    void invalidate(const Rect&) override;
    bool setBlursBehind(const std::optional<VisualEffect>&) override;

    Duration frameInterval() const override;
    bool takeKeyboard() override;
    void releaseKeyboard() override;
    void setOpacity(double) override;
    void accessibleTreeDidChange() override;

    QVSurfaceView* view() const { return m_view; }

private:
    const MacWindowServer& m_windowServer;
    SpaceID m_space;
    bool m_isPopup; ///< on every space
    QVPanel* m_panel;
    QVSurfaceView* m_view;
    NSVisualEffectView* m_blur = nil;
};

}
