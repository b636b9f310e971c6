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

/// What the pointer did, as the system tells it: each button for itself, and moves over other
/// surfaces too while one is down. What it means is the client's to say.
struct PointerEvent {
    PointerAction action = PointerAction::moved;
    Point location; ///< points, origin at the surface's top left
    PointerButton button = PointerButton::none; ///< the one that was pressed or released
    /// The buttons that were down just before; absent where the event does not tell.
    std::optional<PointerButtons> held{};
};

enum class ScrollUnit {
    points, ///< of a surface that feels the fingers
    notches, ///< of a wheel
};
/// Of the fingers on the device; none where it does not tell, as with wheels.
enum class ScrollPhase { none, began, changed, ended };
enum class ScrollAxis { horizontal, vertical };

struct ScrollEvent {
    Point location;
    double deltaX = 0;
    double deltaY = 0;
    /// The device reports the content's direction (natural scrolling), not the fingers'.
    bool isDirectionInverted = false;
    ScrollUnit unit = ScrollUnit::notches;
    ScrollPhase phase = ScrollPhase::none;
    bool isMomentum = false; ///< rolls on after the fingers have gone

    /// Along which it goes farther.
    ScrollAxis axis() const
    {
        return std::abs(deltaX) > std::abs(deltaY) ? ScrollAxis::horizontal : ScrollAxis::vertical;
    }
};

enum class DropAction { entered, moved, exited, dropped };

/// Files that are dragged over a surface from another program.
struct DropEvent {
    DropAction action = DropAction::moved;
    Point location; ///< as of a pointer event
    std::vector<std::string> paths; ///< absolute; with `dropped` only
};

/// What a surface shows and who hears its events. Main thread; must outlive the surface.
class SurfaceClient {
public:
    virtual ~SurfaceClient() = default;

    /// Everything inside `damage` must be drawn; it starts out transparent and is clipped.
    virtual void paint(Canvas&, const Rect& damage) = 0;
    virtual void pointerEvent(const PointerEvent&) = 0;
    /// No more is heard of the pointer until it comes anew: the surface went off the screen, or a
    /// menu has taken it.
    virtual void pointerLost() = 0;
    virtual void scrollEvent(const ScrollEvent&) = 0;
    virtual void surfaceDidResize(Size) = 0;
    /// Whether a drop there would be taken.
    virtual bool dropEvent(const DropEvent&) { return false; }
    /// Only while the surface has the keyboard. False: the key means nothing here.
    virtual bool keyPressed(const KeyEvent&) { return false; }
    /// The surface got the keyboard, or has lost it for whatever reason.
    virtual void keyboardDidChange(bool /*hasKeyboard*/) { }
    /// The system refused the panel's `grabInput`, or took it back.
    virtual void inputGrabDidEnd() { }
    /// What a screen reader is told; null: nothing. Lives as long as the client.
    virtual AccessibleElement* accessibleRoot() { return nullptr; }
};

/// What lies behind a panel, in the numbers of the platform's visual-effect view. Systems that know
/// fewer kinds take the nearest.
struct VisualEffect {
    static constexpr int kHUDWindow = 13; ///< material
    static constexpr int kBehindWindow = 0; ///< blending mode
    static constexpr int kActive = 1; ///< state: lit, whoever is in front

    int material = kHUDWindow;
    int blendingMode = kBehindWindow;
    int state = kActive;
    double opacity = 1;

    friend bool operator==(const VisualEffect&, const VisualEffect&) = default;
};

enum class PanelKind {
    bar,
    /// Lies unseen on the space of a full-screen window, and takes no clicks.
    fullscreenProxy,
    /// Lies above the bars, whatever the space, and starts out transparent. Takes the pointer,
    /// never the keyboard.
    popup,
    /// As a popup, and the window of a menu: it takes what `grabInput` says.
    menu,
};

struct PanelOptions {
    SpaceID space{}; ///< the panel is seen while this space is the current one; of no popup
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
    /// Of the whole panel, from 0 to 1, without painting it anew. Where nothing composes windows it
    /// has no effect.
    virtual void setOpacity(double) = 0;
    /// Shows the desktop blurred behind the whole panel, or no longer; false where nothing can,
    /// then paint opaque.
    virtual bool setBlursBehind(const std::optional<VisualEffect>&) = 0;
    /// From one frame of its display to the next; what moves is drawn that often.
    virtual Duration frameInterval() const = 0;
    /// Keys go to the client instead of the program that has the focus, which keeps it. False if
    /// the system refused; `keyboardDidChange` tells when the keyboard has come, perhaps later if
    /// at all, and of the end. Never while a full-screen window covers the panel: nobody would see
    /// what the keys do.
    virtual bool takeKeyboard() = 0;
    virtual void releaseKeyboard() = 0;
    /// The client hears of every press, move and turn of the wheel from now on, wherever the
    /// pointer is (outside the panel, places are outside its bounds), and of all keys, until the
    /// panel is ordered out. Whoever had the pointer sees it leave; whoever had the keyboard has it
    /// again afterwards and hears of neither. False where there is no such thing; where the system
    /// only refuses, perhaps a moment later, `inputGrabDidEnd` tells.
    virtual bool grabInput() { return false; }
    /// Names, states or members of the accessible tree are others now.
    virtual void accessibleTreeDidChange() = 0;
};

/// What of the program is on the screen. Main thread.
class Surfaces {
public:
    virtual ~Surfaces() = default;

    virtual std::unique_ptr<PanelSurface> createPanel(const PanelOptions&, SurfaceClient&) = 0;
    /// Null where the system draws no menus; they are panels then.
    virtual NativeMenus* nativeMenus() { return nullptr; }

    /// What `setBlursBehind` answers may be something else now.
    Signal<> blurDidChange;

    /// Calls the handler whenever the pointer moves, after the views have heard of it. Never called
    /// where the system does not tell.
    [[nodiscard]] virtual Subscription monitorPointer(PointerScope, std::function<void()>) = 0;
};

}
