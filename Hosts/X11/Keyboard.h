#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include <xcb/xcb.h>

#include "Quorvel/Platform/KeyEvent.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel::xdg::x11 {

class Connection;

/// The keyboard as it is currently set up: its layouts, groups and modifiers. It is read when a key
/// is first looked up, and again after a change. Main thread.
class Keyboard {
public:
    explicit Keyboard(Connection&);
    ~Keyboard();
    Keyboard(const Keyboard&) = delete;
    Keyboard& operator=(const Keyboard&) = delete;

    /// Call when taking the keyboard, before the first event.
    void prepare();
    /// Every press and release that the holder of the keyboard receives, in order: a press of a key
    /// that is already down is a repeat. Without the server's extension or the library, keys have
    /// their place but no characters.
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
    std::uint8_t m_firstEvent = 0; ///< first number of the extension's events
    std::int32_t m_device = 0;
    std::unique_ptr<Layout> m_layout; ///< null until it is read
    std::optional<xcb_keycode_t> m_lastPressed;
    Subscription m_events;
};

}
