#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "Quorvel/Platform/Clipboard.h"
#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Geometry.h"
#include "Quorvel/Platform/Identifiers.h"
#include "Quorvel/Platform/Menu.h"
#include "Quorvel/Platform/NativeTextField.h"
#include "Quorvel/Platform/Published.h"
#include "Quorvel/Platform/SurfaceClient.h"

namespace quorvel {

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
    /// A strip at a screen's edge, at least one pixel high, that nobody sees: it hears of the
    /// pointer and of files, takes presses from what is below, and is never painted. Lies above
    /// ordinary windows and below full-screen ones, on every space.
    edge,
    /// Like a popup, as the window of a menu: `grabInput` says what it takes.
    menu,
    /// Lies above ordinary windows on every space, below popups and menus. `makeKeyAndOrderFront`
    /// takes the keyboard without a change of space; only a release, another program or a press
    /// outside the panel ends that.
    launcher,
    /// An ordinary window with its title and a close button, of a size that the user cannot change.
    /// It comes up on the current space, and gets the keyboard as any program's window does. Its
    /// frame is that of its content, without the title; the user may move it.
    window,
};

struct PanelOptions {
    SpaceID space{}; ///< the panel is visible while this space is current; unused for a popup
    DisplayNumber display{};
    std::string title; ///< for tools and screen readers
    PanelKind kind = PanelKind::bar;
};

/// Whose window the pointer moves over.
enum class PointerScope { ownWindows, otherPrograms };

enum class Cursor { arrow };

/// A strip of screen without a frame, above ordinary windows, below full-screen ones, which never
/// takes the focus on a click; for other kinds see `PanelKind`. Destroying it removes it
/// from the screen.
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
    /// Slides a bar down behind the lower edge of its frame, by a share of its height from 0 (it is
    /// seen whole) to 1; the frame stays what it is. What is behind the edge is not drawn, on no
    /// display, and takes no pointer. A bar that has gone whole loses pointer and keyboard, but
    /// counts as visible, and screen readers find it. No effect on other kinds.
    virtual void setSlide(double /*share*/) { }
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
    /// What the pointer looks like over the panel, whatever other panels have made of it.
    virtual void setCursor(Cursor) { }
    /// Another field takes the typed text, or its caret moved: input methods place their windows
    /// there. What is being composed is lost with its field.
    virtual void textInputDidChange() { }
    /// The field has settled what was being composed: the input method forgets it.
    virtual void forgetComposition() { }
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

    /// Points, global top-left origin.
    using PressHandler = std::function<void(const Point&, const PointerButton&)>;
    /// Calls the handler for each button that goes down, before the views receive the press; not
    /// for presses that an open menu receives. Never called where the system reports none.
    [[nodiscard]] virtual Subscription monitorPresses(PointerScope, PressHandler) { return {}; }

    /// Null where text fields are the system's own, which know the clipboard.
    virtual Clipboard* clipboard() { return nullptr; }
    /// A field of the system, laid over the panel's content. Null where the views draw theirs.
    /// Panel and client outlive it.
    virtual std::unique_ptr<NativeTextField> createTextField(PanelSurface&, NativeTextFieldClient&)
    {
        return nullptr;
    }
};

}
