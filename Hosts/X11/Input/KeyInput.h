#pragma once

#include <cstddef>
#include <string>

#include <xcb/xcb.h>

#include "Hosts/Linux/PlacedSurface.h"
#include "Hosts/X11/Input/InputMethod.h"

namespace quorvel::xdg::x11 {

/// Makes text and commands of the keys that this program receives: a key goes to the input method
/// first if a field takes text, then through dead keys, and what is left to the surface that has
/// the keyboard. Main thread.
class KeyInput final : InputMethodClient {
public:
    KeyInput(Connection&, Dispatch&, Keyboard&);

    struct Receiver {
        SurfaceClient* client = nullptr; ///< null: nobody
        const PlacedSurface* surface = nullptr;

        friend bool operator==(const Receiver&, const Receiver&) = default;
    };
    /// Who receives keys from now on, and the window at which they arrive. The former one is told
    /// nothing and may be gone.
    void setReceiver(Receiver, xcb_window_t);
    void press(const xcb_key_press_event_t&);
    void release(const xcb_key_release_event_t&);
    /// As the panel of this client says it.
    void textInputDidChange(const SurfaceClient&);
    void forgetComposition(const SurfaceClient&);

private:
    TextInputClient* field() const;
    void followField();
    void placeSpot(const TextInputClient&);
    void deliver(const KeyPress&);
    void showSequence(TextInputClient*);

    void inputMethodCommits(const std::string& utf8) override;
    void inputMethodComposes(const std::string& utf8, std::size_t caret) override;
    void inputMethodReturns(const KeyPress&) override;

    Keyboard& m_keyboard;
    InputMethod m_method;
    Receiver m_receiver;
    xcb_window_t m_window = XCB_WINDOW_NONE;
    TextInputClient* m_field = nullptr; ///< the one that the input method knows
    std::string m_sequence; ///< of dead keys, as the field shows it
    const SurfaceClient* m_composing = nullptr; ///< shows a composition; only to compare
};

}
