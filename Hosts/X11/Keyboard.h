#pragma once

#include <bitset>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <xcb/xcb.h>

#include "Hosts/X11/ModifierMap.h"
#include "Quorvel/Platform/KeyEvent.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel::xdg::x11 {

class ComposeSequence;
class Connection;

/// A press as it arrived.
struct KeyPress {
    xcb_key_press_event_t event{};
    bool isRepeat = false; ///< the key is being held down
};

struct TypedKey {
    KeyEvent event;
    /// It completes a sequence: only its characters are meant, not the key itself.
    bool isComposed = false;
};

/// The keyboard as it is currently set up: its layouts, groups and modifiers. It is read when a key
/// is first looked up, and again after a change. Main thread.
class Keyboard {
public:
    explicit Keyboard(Connection&);
    ~Keyboard();
    Keyboard(const Keyboard&) = delete;
    Keyboard& operator=(const Keyboard&) = delete;

    /// Call before taking the keyboard. True: a key that is held down repeats without coming up.
    bool prepare();
    /// Call when the keyboard has been taken, before the first event, with the server's map of keys
    /// that were down just then (null if unknown). Those were pressed for somebody else, as the
    /// shortcut that opened a panel: their repeats are not for the new holder.
    void begin(const xcb_query_keymap_reply_t* down);
    /// Every press and release that the holder of the keyboard receives, as they arrive: a press of
    /// a key that is already down is a repeat. Absent for a key that is somebody else's.
    std::optional<KeyPress> arrive(const xcb_key_press_event_t&);
    void release(const xcb_key_release_event_t&);
    /// Which modifier is which just now; for shortcuts, keys and clicks alike. One round trip where
    /// a change has come since the last call.
    const ModifierMap& modifiers();
    /// What the presses mean, one after the other. Absent for one that means nothing by itself: a
    /// dead key, for example, whose accent comes with the next key. Without the server's extension
    /// or the library, keys have their place but no characters.
    std::optional<TypedKey> translate(const KeyPress&);
    /// What a sequence that is open looks like so far, in UTF-8; empty while none is.
    std::string sequence() const;
    /// Keys have other symbols, or modifiers are on other keys. Without the server's extension, its
    /// own `MappingNotify` is all that tells of it.
    Signal<> changed;
    /// Drops a sequence that is open: somebody else receives the keys from now on.
    void dropSequence();

private:
    struct Layout;

    bool isReady() { return m_hasExtension && (m_layout || read()); }
    bool read();
    void handle(const xcb_generic_event_t*);
    void describe(KeyEvent&, const xcb_key_press_event_t&);
    bool compose(TypedKey&, std::uint32_t symbol);

    Connection& m_connection;
    bool m_isPrepared = false;
    bool m_hasExtension = false;
    std::uint8_t m_firstEvent = 0; ///< first number of the extension's events
    std::int32_t m_device = 0;
    std::unique_ptr<Layout> m_layout; ///< null until it is read
    std::optional<ModifierMap> m_modifiers; ///< absent until it is read
    std::unique_ptr<ComposeSequence> m_compose; ///< null until the first key
    std::optional<xcb_keycode_t> m_lastPressed;
    std::bitset<256> m_foreign; ///< keys that are down since before the keyboard was taken
    Subscription m_events;
};

}
