#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

#include <xcb/xcb.h>

namespace quorvel::xdg::x11 {

class Connection;

/// What a window of ours says about itself to window managers and other programs.
class WindowProperties {
public:
    WindowProperties(Connection& connection, xcb_window_t window)
        : m_connection(connection)
        , m_window(window)
    {
    }

    void setAtoms(xcb_atom_t property, std::initializer_list<xcb_atom_t>);
    void setCardinals(xcb_atom_t property, const std::uint32_t* values, std::uint32_t count);
    void setText(xcb_atom_t property, xcb_atom_t type, std::string_view);
    void erase(xcb_atom_t property);

    void setTitle(std::string_view utf8);
    /// The class, the process and its machine.
    void nameProgram();
    /// Asks compositors for no shadow: it would darken what lies beside the bar, and a rectangle
    /// around what is round.
    void declineShadow();

private:
    Connection& m_connection;
    const xcb_window_t m_window;
};

}
