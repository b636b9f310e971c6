#pragma once

#include "Tests/X11/Support/Connection.h"

namespace quorvel::x11tests {

enum class Button : std::uint8_t {
    primary = 1,
    middle = 2,
    secondary = 3,
    wheelUp = 4,
    wheelDown = 5,
};

/// The user's hand: events that the server cannot tell from a mouse's.
class Pointer {
public:
    explicit Pointer(const std::string& display) : m_connection(display) { }

    void moveTo(int x, int y);
    /// Moves to the middle, presses, releases, and returns when the release has been delivered.
    void click(const Frame&, Button = Button::primary);

private:
    bool isPressed();

    Connection m_connection;
};

}
