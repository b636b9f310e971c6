#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "Hosts/Linux/Drawing/DamageRegion.h"
#include "Hosts/X11/Surface/BackBuffer.h"
#include "Hosts/X11/Surface/DockWindow.h"
#include "Hosts/X11/Surface/DropTarget.h"
#include "Hosts/X11/Surface/PaintSource.h"
#include "Hosts/X11/Surface/PointerTracker.h"
#include "Hosts/X11/Surface/SurfaceContext.h"
#include "Quorvel/Platform/Surfaces.h"

namespace quorvel::xdg::x11 {

class X11Panel;

/// The one window of a display, for all its panels: it shows the panel of the current space, so a
/// switch maps and unmaps nothing, and panels that are not visible need no pixels.
class DisplayWindow {
public:
    DisplayWindow(const SurfaceContext&, DisplayNumber, bool canBlur);
    ~DisplayWindow();
    DisplayWindow(const DisplayWindow&) = delete;
    DisplayWindow& operator=(const DisplayWindow&) = delete;

    void add(X11Panel&);
    void remove(X11Panel&);
    /// A panel, the current space or the monitors changed.
    void update();
    void invalidate(const X11Panel&, const Rect& points);
    /// Does nothing if it is already the current one.
    void requestSpace(SpaceID) const;

    bool isCurrent(const X11Panel&) const;
    /// By a full-screen window.
    bool isCovered() const { return m_isLowered; }
    bool shows(const X11Panel& panel) const { return m_window && m_shown == &panel; }
    bool hasPanels() const { return !m_panels.empty(); }
    bool canBlur() const { return m_canBlur; }
    /// Makes the window again, with or without transparency.
    void setCanBlur(bool);
    double scale() const;
    Duration frameInterval() const;
    const SurfaceContext& context() const { return m_context; }

    /// Emitted after the panel has received a move of the pointer.
    std::function<void()> onPointerMoved;

    void repaintAll();

private:
    X11Panel* panelOfCurrentSpace() const;
    bool hasOrderedInPanel() const;
    void show(X11Panel&);
    void takeAway(const X11Panel* successor);
    /// Who receives the pointer and files from now on.
    void setListener(SurfaceClient*);
    void hide();
    /// What is seen of the panel; the content behind the edge is kept, and comes up unpainted.
    void placeWindow(const Rect& seen, Size whole);
    void updateStrut();
    void updateStacking();

    void handle(const xcb_generic_event_t*);
    void endTurn();
    void paint();

    SurfaceContext m_context;
    const DisplayNumber m_display;
    bool m_canBlur;
    std::vector<X11Panel*> m_panels;
    X11Panel* m_shown = nullptr;

    PaintSource m_paint;
    DamageRegion m_damage;
    PointerTracker m_pointer{m_context.modifiersIn()};
    WindowVisual m_visual;
    std::unique_ptr<BackBuffer> m_buffer;
    std::unique_ptr<DockWindow> m_window;
    std::unique_ptr<DropTarget> m_drops; ///< exists as long as the window
    Size m_contentSize; ///< pixels
    double m_paintedScale = 0;
    bool m_hasContent = false;
    bool m_isLost = false; ///< destroyed by another program
    bool m_isLowered = false;
    bool m_blurs = false;
    std::vector<Subscription> m_subscriptions;
};

}
