#pragma once

#include <map>
#include <memory>
#include <optional>

#include "Hosts/Linux/Accessible/AccessibleSurfaces.h"
#include "Hosts/Linux/Drawing/CanvasTools.h"
#include "Hosts/X11/Input/HotKeys.h"
#include "Hosts/X11/Keyboard.h"
#include "Hosts/X11/Selection/X11Clipboard.h"
#include "Hosts/X11/Surface/ArrowCursor.h"
#include "Hosts/X11/Surface/Compositing.h"
#include "Hosts/X11/Surface/DisplayWindow.h"
#include "Hosts/X11/Surface/InputGrabs.h"
#include "Hosts/X11/Surface/PressWatch.h"
#include "Hosts/X11/Surface/SurfaceContext.h"
#include "Quorvel/Platform/Surfaces.h"

namespace quorvel::xdg::x11 {

/// Panels as one window per display, popups, and ordinary windows. Main thread; outlives its
/// panels.
class X11Surfaces final : public Surfaces {
public:
    X11Surfaces(Connection&, Dispatch&, const Monitors&, const PanelEnvironment&,
        const Published<Appearance>&);
    ~X11Surfaces() override;

    std::unique_ptr<PanelSurface> createPanel(const PanelOptions&, SurfaceClient&) override;
    Subscription monitorPointer(PointerScope, std::function<void()>) override;
    Subscription monitorPresses(PointerScope, PressHandler) override;
    Clipboard* clipboard() override;

    /// Draws anew all that is in sight.
    void repaintAll();

    Text& text() { return m_text; }
    /// Those that are pressed while a surface has the keyboard reach it through the surface.
    Hotkeys& hotkeys() { return m_hotKeys; }
    const AccessibleSurfaces& accessible() const { return m_accessible; }

private:
    void setCanBlur(bool);
    DisplayWindow& windowOf(DisplayNumber);
    std::vector<Subscription> followPresses();
    void tell(PointerScope, const ButtonPress&);

    CanvasTools m_tools;
    AccessibleSurfaces m_accessible;
    PressWatch m_presses;
    std::map<PointerScope, Signal<Point, PointerButton>> m_pressed;
    /// Before the grabs', which end by the same presses: whoever watches has heard of them then.
    const std::vector<Subscription> m_pressEvents = followPresses();
    Signal<> m_repaint; ///< of what has an X window of its own
    Keyboard m_keyboard;
    HotKeys m_hotKeys;
    InputGrabs m_grabs;
    Compositing m_compositing;
    ArrowCursor m_arrow;
    SurfaceContext m_context;
    PangoText m_text;
    std::optional<X11Clipboard> m_clipboard; ///< made when it is first asked for
    Signal<> m_pointerMoved;
    std::map<DisplayNumber, std::unique_ptr<DisplayWindow>> m_windows;
    Subscription m_appearance;
    Subscription m_blurChanged;
};

}
