#pragma once

#include "Hosts/MacOS/Rules/KeyboardSession.h"
#include "Hosts/MacOS/Rules/PanelPlace.h"
#include "Hosts/MacOS/SurfaceView.h"
#include "Quorvel/Platform/Surfaces.h"

@class QVPanel;

namespace quorvel {

/// A borderless panel at the Dock's level, on one space only. A proxy on the space of a full-screen
/// window lies among ordinary windows, is invisible and lets clicks through; a popup lies above
/// them all, on every space. A window is as any program's.
class MacPanel final : public PanelSurface {
public:
    MacPanel(const SurfaceContext&, const PanelOptions&, SurfaceClient&);
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
    void setSlide(double share) override;
    void accessibleTreeDidChange() override;
    void setCursor(Cursor) override;

    QVSurfaceView* view() const { return m_view; }

private:
    class Calls final : public SystemPanel {
    public:
        explicit Calls(MacPanel& owner)
            : m_owner(owner)
        {
        }

        void orderIn() override;
        void orderOut() override;
        void setUnseen(bool) override;
        std::optional<WindowID> number() const override;
        void becomeKey() override;
        void resignKey() override;
        bool isKey() const override;
        bool isVisible() const override;
        void directKeysToContent() override;
        void setClientSeesKeysFirst(bool) override;
        void activateProgram() override;
        void handBackActivation() override;

        void setOpacity(double);

    private:
        MacPanel& m_owner;
        double m_opacity = 1;
    };

    void placeSlid();
    void activeSpaceDidChange();
    void monitorKeys();
    void stopMonitoringKeys();
    bool isComposing() const;

    SurfaceClient& m_client;
    QVPanel* m_panel;
    QVSurfaceView* m_view;
    NSVisualEffectView* m_blur = nil;
    Calls m_calls;
    PanelPlace m_place;
    KeyboardSession m_keyboard;
    Rect m_frame; ///< of the whole panel, wherever it has slid to
    double m_slide = 0;
    id m_keyMonitor = nil; ///< of a launcher, while it is the key window
    Subscription m_activeSpaceChange;
};

}
