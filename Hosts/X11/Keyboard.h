#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include <xcb/xcb.h>

#include "Quorvel/Platform/KeyEvent.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel::xdg::x11 {

class Connection;

/// The keyboard as it is set up now: its layouts, groups and modifiers. It is read when a key is
/// first asked for, and again after a change. Main thread.
class Keyboard {
public:
    explicit Keyboard(Connection&);
    ~Keyboard();
    Keyboard(const Keyboard&) = delete;
    Keyboard& operator=(const Keyboard&) = delete;

    /// To be called by whoever takes the keyboard, before its first event.
    void prepare();
    /// Every press and release that the holder of the keyboard gets, in their order: a press of a
    /// key that is down already is a repeat. Without the server's extension, or the library, keys
    /// have their place and no characters.
    KeyEvent press(const xcb_key_press_event_t&);
    void release(const xcb_key_release_event_t&);

private:
    struct Layout;

    bool isReady() { return m_hasExtension && (m_layout || read()); }
    bool read();
    void handle(const xcb_generic_event_t*);

    Connection& m_connection;
    bool m_isPrepared = false;
    bool m_hasExtension = false;
    std::uint8_t m_firstEvent = 0; ///< by which the extension's events are known
    std::int32_t m_device = 0;
    std::unique_ptr<Layout> m_layout; ///< null until it is read
    std::optional<xcb_keycode_t> m_lastPressed;
    Subscription m_events;
};

}
