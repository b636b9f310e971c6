#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "Hosts/X11/Surface/MenuWindow.h"
#include "Hosts/X11/Surface/SurfaceContext.h"
#include "Quorvel/Platform/Dispatch.h"

namespace quorvel::xdg::x11 {

/// An open menu with its submenus. It holds the pointer and the keyboard until an entry is chosen
/// or anything else is done. Destroying it takes all of it off the screen.
class MenuSession {
public:
    /// Called once, with the action to run if an entry was chosen; the session may be destroyed
    /// then.
    using Ended = std::function<void(std::function<void()> action)>;

    /// `anchor` in pixels of the X screen.
    MenuSession(const SurfaceContext&, Menu, const Rect& anchor, Ended);
    ~MenuSession();
    MenuSession(const MenuSession&) = delete;
    MenuSession& operator=(const MenuSession&) = delete;

    std::vector<MenuEntry> entries() const;

private:
    /// Depth 0 is the menu, each further one a submenu of the one before.
    using Depth = std::size_t;
    struct Level {
        std::unique_ptr<MenuWindow> window;
        std::size_t opener = 0; ///< the row of the window before
    };

    void grab();
    bool grabPointer();
    void releaseGrabs();

    void handle(const xcb_generic_event_t*);
    void motion(Point);
    void press(Point);
    void release(Point);
    void turnWheel(Point, xcb_button_t);
    void key(const KeyEvent&);

    std::optional<Depth> depthAt(Point) const;
    MenuWindow& window(Depth depth) { return *m_levels[depth].window; }
    Depth deepest() const { return m_levels.size() - 1; }
    void pointAt(Depth, Point);
    void rollBy(Depth, int side);
    void step(std::optional<std::size_t> from, int step);
    bool openSubmenu(Depth, std::optional<std::size_t> row);
    void openFromKeyboard();
    void closeBelow(Depth);
    void choose(Depth, std::optional<std::size_t> row);
    void end(std::function<void()> action = {});

    SurfaceContext m_context;
    const Menu m_menu;
    Ended m_ended;
    std::vector<Level> m_levels; ///< never empty
    std::optional<Point> m_firstMotion;
    Point m_pointer;
    bool m_hasPointerMoved = false; ///< the click that opened it must not choose at once
    bool m_mayHoldGrabs = true;
    int m_grabAttempts = 0;
    WorkItem m_nextGrab;
    WorkItem m_rest; ///< of the pointer on a row or on its way to a submenu
    WorkItem m_roll; ///< of the rows while the pointer is on a strip
    Subscription m_events;
};

}
