#pragma once

#include "Tests/X11/Support/Connection.h"

namespace quorvel::x11tests {

/// The user's other hand.
class Keyboard {
public:
    explicit Keyboard(const std::string& display) : m_connection(display) { }

    /// Presses and releases the key that bears this symbol.
    void type(std::uint32_t symbol);
    /// Keys by their place. A key that is pressed while it is down repeats.
    void press(std::uint8_t key) { change(XCB_KEY_PRESS, key); }
    void release(std::uint8_t key) { change(XCB_KEY_RELEASE, key); }
    void tap(std::uint8_t key);
    /// With the other one held down.
    void chord(std::uint8_t held, std::uint8_t key);
    /// The same, by what is on the keys.
    void typeChord(std::uint32_t held, std::uint32_t symbol) { chord(keyOf(held), keyOf(symbol)); }

    /// Whether some program has all keys to itself.
    bool isGrabbed();

private:
    std::uint8_t keyOf(std::uint32_t symbol);
    void change(std::uint8_t event, std::uint8_t key);

    Connection m_connection;
};

}
