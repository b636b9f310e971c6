#pragma once

#include <cmath>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Quorvel/Platform/AccessibleTree.h"
#include "Quorvel/Platform/Canvas.h"
#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Geometry.h"
#include "Quorvel/Platform/Identifiers.h"
#include "Quorvel/Platform/KeyEvent.h"
#include "Quorvel/Platform/Menu.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel {

enum class PointerButton { none, primary, secondary, middle };

struct PointerButtons {
    bool primary = false;
    bool secondary = false;
    bool middle = false;

    bool contains(PointerButton button) const
    {
        return (button == PointerButton::primary && primary)
            || (button == PointerButton::secondary && secondary)
            || (button == PointerButton::middle && middle);
    }
};

enum class PointerAction { entered, moved, exited, pressed, released };

/// What the pointer did, as the system reports it: each button separately, and moves over other
/// surfaces too while a button is down. Interpreting it is up to the client.
struct PointerEvent {
    PointerAction action = PointerAction::moved;
    Point location; ///< points, origin at the surface's top left
    PointerButton button = PointerButton::none; ///< the one that was pressed or released
    /// The buttons that were down just before; absent where the event does not say.
    std::optional<PointerButtons> held{};
};

enum class ScrollUnit {
    points, ///< from a touchpad or another surface that follows the fingers
    notches, ///< of a wheel
};
/// The phase of the fingers' gesture; none where the device does not report it, as with wheels.
enum class ScrollPhase { none, began, changed, ended };
enum class ScrollAxis { horizontal, vertical };

struct ScrollEvent {
    Point location;
    double deltaX = 0;
    double deltaY = 0;
    /// The device reports the direction of the content (natural scrolling), not of the fingers.
    bool isDirectionInverted = false;
    ScrollUnit unit = ScrollUnit::notches;
    ScrollPhase phase = ScrollPhase::none;
    bool isMomentum = false; ///< it continues after the fingers have left

    /// The axis with the larger delta.
    ScrollAxis axis() const
    {
        return std::abs(deltaX) > std::abs(deltaY) ? ScrollAxis::horizontal : ScrollAxis::vertical;
    }
};

enum class DropAction { entered, moved, exited, dropped };

/// Files dragged over a surface from another program.
struct DropEvent {
    DropAction action = DropAction::moved;
    Point location; ///< as in a pointer event
    std::vector<std::string> paths; ///< absolute; with `dropped` only
};

/// The content of a surface and the receiver of its events. Main thread; must outlive the surface.
class SurfaceClient {
public:
    virtual ~SurfaceClient() = default;

    /// Everything inside `damage` must be drawn; it starts out transparent and is clipped.
    virtual void paint(Canvas&, const Rect& damage) = 0;
    virtual void pointerEvent(const PointerEvent&) = 0;
    /// No more pointer events follow until the pointer enters again: the surface left the screen,
    /// or a menu has taken the pointer.
    virtual void pointerLost() = 0;
    virtual void scrollEvent(const ScrollEvent&) = 0;
    virtual void surfaceDidResize(Size) = 0;
    /// Returns whether a drop there would be accepted.
    virtual bool dropEvent(const DropEvent&) { return false; }
    /// Called only while the surface has the keyboard. False: the key is not used.
    virtual bool keyPressed(const KeyEvent&) { return false; }
    /// The surface got the keyboard, or has lost it for any reason.
    virtual void keyboardDidChange(bool /*hasKeyboard*/) { }
    /// The system refused the panel's `grabInput`, or revoked it.
    virtual void inputGrabDidEnd() { }
    /// What a screen reader sees; null: nothing. Lives as long as the client.
    virtual AccessibleElement* accessibleRoot() { return nullptr; }
};

/// What lies behind a panel, with the values of the platform's visual-effect view. Systems that
/// have fewer kinds use the nearest one.
struct VisualEffect {
    static constexpr int kHUDWindow = 13; ///< material
    static constexpr int kBehindWindow = 0; ///< blending mode
    static constexpr int kActive = 1; ///< state: lit, whatever program is in front

    int material = kHUDWindow;
    int blendingMode = kBehindWindow;
    int state = kActive;
    double opacity = 1;

    friend bool operator==(const VisualEffect&, const VisualEffect&) = default;
};

enum class PanelKind {
    bar,
    /// Lies invisibly on the space of a full-screen window, and takes no clicks.
    fullscreenProxy,
    /// Lies above the bars on every space, and starts out transparent. Takes the pointer, never the
    /// keyboard.
    popup,
    /// Like a popup, as the window of a menu: `grabInput` says what it takes.
    menu,
};

struct PanelOptions {
    SpaceID space{}; ///< the panel is visible while this space is current; unused for a popup
    DisplayNumber display{};
    std::string title; ///< for tools and screen readers
    PanelKind kind = PanelKind::bar;
};

/// Whose window the pointer moves over.
enum class PointerScope { ownWindows, otherPrograms };

/// A strip of screen without a frame, above ordinary windows, below full-screen ones, which never
/// takes the focus on a click. Destroying it removes it from the screen.
class PanelSurface {
public:
    virtual ~PanelSurface() = default;

    /// Points, bottom-left origin, as screen frames.
    virtual void setFrame(const Rect&) = 0;
    virtual Rect frame() const = 0;
    virtual void orderFront() = 0;
    virtual void orderOut() = 0;
    /// Whether it may take the keyboard; initially not.
    virtual void setCanBecomeKey(bool) = 0;
    /// Orders it in and takes the keyboard, if allowed. The system switches to the space of a key
    /// panel.
    virtual void makeKeyAndOrderFront() = 0;
    /// Ordered in, and its space is the current one.
    virtual bool isVisible() const = 0;
    virtual double scale() const = 0;
    /// Repaints this part once before the next frame, however often it is requested.
    virtual void invalidate(const Rect&) = 0;
    /// Of the whole panel, from 0 to 1, without repainting. No effect where windows are not
    /// composited.
    virtual void setOpacity(double) = 0;
    /// Starts or stops blurring the desktop behind the whole panel; false where that is impossible:
    /// then paint opaque.
    virtual bool setBlursBehind(const std::optional<VisualEffect>&) = 0;
    /// The time from one frame of its display to the next; animations step that often.
    virtual Duration frameInterval() const = 0;
    /// Sends keys to the client instead of to the program with the focus, which keeps the focus.
    /// False if the system refused; `keyboardDidChange` reports when the keyboard has arrived,
    /// perhaps later if at all, and when it is lost. Never while a full-screen window covers the
    /// panel: nobody would see what the keys do.
    virtual bool takeKeyboard() = 0;
    virtual void releaseKeyboard() = 0;
    /// From now on the client receives every press, move and turn of the wheel, wherever the
    /// pointer is (positions outside the panel are outside its bounds), and all keys, until the
    /// panel is ordered out. Whoever had the pointer sees it leave; whoever had the keyboard gets
    /// it back afterwards and is not notified of either. False where this is not supported; if the
    /// system only refuses, perhaps a moment later, `inputGrabDidEnd` reports it.
    virtual bool grabInput() { return false; }
    /// Names, states or elements of the accessible tree changed.
    virtual void accessibleTreeDidChange() = 0;
};

/// What the program shows on the screen. Main thread.
class Surfaces {
public:
    virtual ~Surfaces() = default;

    virtual std::unique_ptr<PanelSurface> createPanel(const PanelOptions&, SurfaceClient&) = 0;
    /// Null where the system draws no menus; they are panels then.
    virtual NativeMenus* nativeMenus() { return nullptr; }

    /// The answer of `setBlursBehind` may have changed.
    Signal<> blurDidChange;

    /// Calls the handler whenever the pointer moves, after the views have received the move. Never
    /// called where the system does not report moves.
    [[nodiscard]] virtual Subscription monitorPointer(PointerScope, std::function<void()>) = 0;
};

}
