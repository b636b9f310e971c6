#pragma once

#include "Tests/X11/Support/Connection.h"

namespace quorvel::x11tests {

/// The user's other hand.
class Keyboard {
public:
    explicit Keyboard(const std::string& display) : m_connection(display) { }

    /// Presses and releases the key that bears this symbol.
    void type(std::uint32_t symbol);

private:
    std::uint8_t keyOf(std::uint32_t symbol);

    Connection m_connection;
};

}
