#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Quorvel/Platform/Canvas.h"
#include "Quorvel/Platform/Geometry.h"
#include "Quorvel/Platform/Identifiers.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel {

enum class PointerButton { none, primary, secondary, middle };

/// `cancelled` ends a press that will see no release (a grab was broken, the surface went away).
enum class PointerAction { entered, moved, exited, pressed, released, cancelled };

struct PointerEvent {
    PointerAction action = PointerAction::moved;
    Point location; ///< points, origin at the surface's top left
    PointerButton button = PointerButton::none;
};

struct ScrollEvent {
    Point location;
    double deltaX = 0;
    double deltaY = 0;
    /// The device reports the content's direction (natural scrolling), not the fingers'.
    bool isDirectionInverted = false;
};

/// What a surface shows and who hears its events. Main thread; must outlive the surface.
class SurfaceClient {
public:
    virtual ~SurfaceClient() = default;

    /// Everything inside `damage` must be drawn; it starts out transparent and is clipped.
    virtual void paint(Canvas&, const Rect& damage) = 0;
    virtual void pointerEvent(const PointerEvent&) = 0;
    virtual void scrollEvent(const ScrollEvent&) = 0;
    virtual void surfaceDidResize(Size) = 0;
};

enum class PanelKind {
    bar,
    /// Lies unseen on the space of a full-screen window, and takes no clicks.
    fullscreenProxy,
};

struct PanelOptions {
    SpaceID space{}; ///< the panel is seen while this space is the current one
    DisplayNumber display{};
    std::string title; ///< for tools and screen readers
    PanelKind kind = PanelKind::bar;
};

/// Whose the window is that the pointer moves over.
enum class PointerScope { ownWindows, otherPrograms };

/// A strip of screen without a frame, above ordinary windows, below full-screen ones, which never
/// takes the focus on a click. Destroying it takes it off the screen.
class PanelSurface {
public:
    virtual ~PanelSurface() = default;

    /// Points, bottom-left origin, as screen frames.
    virtual void setFrame(const Rect&) = 0;
    virtual Rect frame() const = 0;
    virtual void orderFront() = 0;
    virtual void orderOut() = 0;
    /// Whether it may take the keyboard; it may not at first.
    virtual void setCanBecomeKey(bool) = 0;
    /// Orders it in and takes the keyboard, if it may. The system follows a key panel to its space.
    virtual void makeKeyAndOrderFront() = 0;
    /// Ordered in, and its space is the current one.
    virtual bool isVisible() const = 0;
    virtual double scale() const = 0;
    /// Paints this part once before the next frame, however often it is asked for.
    virtual void invalidate(const Rect&) = 0;
    /// Shows the desktop blurred behind the whole panel; false where nothing can, then paint
    /// opaque.
    virtual bool setBlursBehind(bool) = 0;
};

struct MenuItem {
    std::string title; ///< empty: a separator
    bool isEnabled = true;
    std::function<void()> action;
};

using Menu = std::vector<MenuItem>;

/// Panels and menus. Main thread.
class Surfaces {
public:
    virtual ~Surfaces() = default;

    virtual std::unique_ptr<PanelSurface> createPanel(const PanelOptions&, SurfaceClient&) = 0;
    /// Opens a menu beside `anchor` (points in the panel) and returns; the chosen entry's action
    /// runs on the main queue after the menu has gone. A second call replaces the first menu.
    virtual void popUpMenu(PanelSurface&, Menu, const Rect& anchor) = 0;

    /// Calls the handler whenever the pointer moves, after the views have heard of it. Never called
    /// where the system does not tell.
    [[nodiscard]] virtual Subscription monitorPointer(PointerScope, std::function<void()>) = 0;
};

}
