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
    void moveTo(const Frame& frame)
    {
        moveTo(frame.x + frame.width / 2, frame.y + frame.height / 2);
    }
    void press(Button);
    /// Returns when the release has been delivered.
    void release(Button);
    /// Presses on the one and releases on the other, by way of some places between.
    void drag(const Frame& from, int toX, int toY);
    /// Moves to the middle, presses and releases.
    void click(const Frame&, Button = Button::primary);

private:
    void change(std::uint8_t event, Button);
    bool isPressed(Button);

    Connection m_connection;
};

}
