#pragma once

#include <vector>

#include <xcb/xcb.h>

#include "Hosts/Linux/PlacedSurface.h"
#include "Hosts/X11/Input/KeyInput.h"
#include "Hosts/X11/Surface/PressWatch.h"
#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Surfaces.h"

namespace quorvel::xdg::x11 {

class Connection;
class HotKeys;
class Keyboard;

/// Which press ends a surface's hold of the keyboard; never one that a menu receives.
enum class KeyboardHold {
    untilPress, ///< and a refusal is final
    untilPressOutside, ///< and while another program holds the keyboard, it is asked for again
};

/// Which surface of this program receives all keys and, for a menu, everything the pointer does.
/// Grabs nest: the newest one receives, and when it ends, the one before it does again. The focus
/// stays where it is: the programs' windows keep their look, and the window manager notices
/// nothing. Some managers would refuse to give it, and xfwm4 does not give it back. Main thread;
/// outlives the grabs.
class InputGrabs {
public:
    /// The hold of one surface. Destroying it ends the hold without a callback.
    class Grab {
    public:
        Grab(InputGrabs& grabs, const PlacedSurface& surface, SurfaceClient& client,
            KeyboardHold hold = KeyboardHold::untilPress)
            : m_grabs(grabs)
            , m_surface(surface)
            , m_client(client)
            , m_hold(hold)
        {
        }
        ~Grab() { m_grabs.remove(*this); }
        Grab(const Grab&) = delete;
        Grab& operator=(const Grab&) = delete;

        /// Holds the keyboard until it is released or a button of the pointer is pressed. False
        /// while another program has it grabbed.
        bool takeKeyboard();
        /// Holds the pointer too, until it is released. A refusal is reported later.
        void takeAll();
        void release();
        /// For the surface's text field.
        void textInputDidChange() { m_grabs.m_input.textInputDidChange(m_client); }
        void forgetComposition() { m_grabs.m_input.forgetComposition(m_client); }

    private:
        friend class InputGrabs;

        enum class Extent { none, keyboard, all };

        bool isWaiting() const;
        void tell();
        void refuse();

        InputGrabs& m_grabs;
        const PlacedSurface& m_surface;
        SurfaceClient& m_client;
        const KeyboardHold m_hold;
        Extent m_extent = Extent::none;
        bool m_hasKeyboard = false; ///< as its client has been told
    };

    InputGrabs(Connection&, Dispatch&, Keyboard&, PressWatch&, HotKeys&);
    InputGrabs(const InputGrabs&) = delete;
    InputGrabs& operator=(const InputGrabs&) = delete;

    /// Makes whatever the pointer was on believe that it has left.
    Signal<> pointerTaken;

private:
    using Extent = Grab::Extent;

    void add(Grab&, Extent);
    /// True if it was held.
    bool remove(Grab&);
    void followTop();
    bool holdsAll() const { return !m_grabs.empty() && m_grabs.back()->m_extent == Extent::all; }
    bool isAwaitingKeyboard() const;
    void tryToHold();
    void giveUp();
    bool grabPointer();
    bool grabKeyboard();
    void letGoOfKeyboard();
    void tellHolders();
    void makeWindow();

    void handle(const xcb_generic_event_t*);
    void handlePress(const xcb_key_press_event_t&);
    void handlePointer(const xcb_generic_event_t*);
    void endKeyboards();
    void endKeyboardsOutside(Point pixels);
    template <typename Condition> void forThose(Condition, void (Grab::*action)());

    Connection& m_connection;
    Dispatch& m_dispatch;
    Keyboard& m_keyboard;
    PressWatch& m_presses;
    HotKeys& m_hotKeys;
    KeyInput m_input;
    xcb_window_t m_window = XCB_WINDOW_NONE; ///< invisible, holds all grabs; made for the first
    std::vector<Grab*> m_grabs; ///< the newest last
    bool m_hasPointer = false;
    bool m_hasKeyboard = false;
    int m_attempts = 0;
    WorkItem m_nextAttempt;
    Subscription m_events;
    Subscription m_listening; ///< to presses anywhere, while there are grabs
    std::vector<Subscription> m_pressed;
    Subscription m_hotKeyReleased;
};

}
