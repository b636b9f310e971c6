#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Quorvel/Platform/Displays.h"
#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Platform/Surfaces.h"
#include "Quorvel/Views/Menu/MenuView.h"

namespace quorvel {

/// An entry that is visible on the screen.
struct MenuEntry {
    std::string title;
    bool isEnabled = true;
    Rect frame; ///< points, global top-left origin
};

class MenuPanel;

/// Receives what the user does to the panels of a menu. Positions are points of the screen, global
/// top-left origin.
class MenuListener {
public:
    virtual ~MenuListener() = default;

    virtual void pointerEvent(const PointerEvent&, Point) = 0;
    virtual void scrollEvent(const ScrollEvent&, Point) = 0;
    virtual bool keyPressed(const KeyEvent&) = 0;
    virtual void inputGrabDidEnd() = 0;
    /// By an assistive program.
    virtual void rowChosen(MenuPanel&, std::size_t row) = 0;
};

/// One menu or submenu on the screen: its view on a surface of its own. All parameters outlive it;
/// destroying it removes it from the screen. Positions are points, global top-left origin.
class MenuPanel final : public SurfaceClient, private ViewHost {
public:
    using Place = std::function<Rect(Size)>;

    MenuPanel(const Platform&, const Screen&, const Menu&, const Place&, MenuListener&);
    ~MenuPanel() override;

    const Rect& frame() const { return m_frame; }
    const MenuView& view() const { return *m_view; }
    std::optional<std::size_t> rowAt(Point at) const { return m_view->rowAt(inView(at)); }
    int stripAt(Point at) const { return m_view->stripAt(inView(at)); }
    Rect rowFrame(std::size_t row) const
    {
        return m_view->rowFrame(row).translated(m_frame.x, m_frame.y);
    }
    std::vector<MenuEntry> entries() const;

    void highlight(std::optional<std::size_t> row);
    bool scroll(double distance) { return m_view->scroll(distance); }
    void reveal(std::size_t row) { m_view->revealRow(row); }
    void centre(std::size_t row) { m_view->centreRow(row); }

    /// The whole menu receives the pointer and the keyboard through one of its panels.
    bool grabInput() { return m_surface->grabInput(); }
    /// Removes everything from the screen; no further events arrive.
    void orderOut() { m_surface->orderOut(); }

private:
    void paint(Canvas& canvas, const Rect& damage) override { m_root.paintTree(canvas, damage); }
    void pointerEvent(const PointerEvent&) override;
    void scrollEvent(const ScrollEvent&) override;
    void pointerLost() override { }
    void surfaceDidResize(Size) override { }
    bool keyPressed(const KeyEvent& event) override { return m_listener.keyPressed(event); }
    void inputGrabDidEnd() override { m_listener.inputGrabDidEnd(); }
    AccessibleElement* accessibleRoot() override { return &m_root; }

    void viewNeedsPaint(const Rect& rect) override { m_surface->invalidate(rect); }
    void viewWillVanish(const View&) override { }
    void viewsDidMove() override { }
    bool viewWantsKeyboard(View&) override { return false; } // the whole menu has it
    void menuDidClose(MenuEnding) override { }

    Point inView(Point at) const { return at.translated(-m_frame.x, -m_frame.y); }
    Point onScreen(Point at) const { return at.translated(m_frame.x, m_frame.y); }

    MenuListener& m_listener;
    View m_root; ///< a container, so that a screen reader finds a menu in a window
    MenuView* m_view;
    Rect m_frame;
    std::unique_ptr<PanelSurface> m_surface;
    Subscription m_appearance;
};

}
