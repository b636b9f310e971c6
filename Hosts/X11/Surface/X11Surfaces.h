#pragma once

#include <map>
#include <memory>

#include "Hosts/Linux/Accessible/AccessibleSurfaces.h"
#include "Hosts/Linux/Drawing/TextShaper.h"
#include "Hosts/X11/Keyboard.h"
#include "Hosts/X11/Surface/Compositing.h"
#include "Hosts/X11/Surface/DisplayWindow.h"
#include "Hosts/X11/Surface/FrameIntervals.h"
#include "Hosts/X11/Surface/MenuSession.h"
#include "Hosts/X11/Surface/SurfaceContext.h"
#include "Quorvel/Platform/Surfaces.h"

namespace quorvel::xdg::x11 {

/// Panels as one window per display, and menus. Main thread; outlives its panels.
class X11Surfaces final : public Surfaces {
public:
    X11Surfaces(Connection&, Dispatch&, const Monitors&, const PanelEnvironment&,
        const Published<Appearance>&);
    ~X11Surfaces() override;

    std::unique_ptr<PanelSurface> createPanel(const PanelOptions&, SurfaceClient&) override;
    void popUpMenu(
        PanelSurface&, Menu, const Rect& anchor, std::function<void()> onClosed) override;
    void closeMenu() override;
    std::vector<MenuEntry> openMenuEntries() const override;
    Subscription monitorPointer(PointerScope, std::function<void()>) override;

    Text& text() { return m_text; }
    const AccessibleSurfaces& accessible() const { return m_accessible; }

private:
    void setCanBlur(bool);
    DisplayWindow& windowOf(DisplayNumber);
    void tellClosed(std::shared_ptr<MenuSession>, std::function<void()> action);

    TextShaper m_shaper;
    FrameIntervals m_frames;
    AccessibleSurfaces m_accessible;
    Keyboard m_keyboard;
    Compositing m_compositing;
    SurfaceContext m_context;
    PangoText m_text;
    Signal<> m_pointerMoved;
    std::map<DisplayNumber, std::unique_ptr<DisplayWindow>> m_windows;
    std::unique_ptr<MenuSession> m_menu;
    std::function<void()> m_onMenuClosed;
    Subscription m_appearance;
    Subscription m_blurChanged;
};

}
