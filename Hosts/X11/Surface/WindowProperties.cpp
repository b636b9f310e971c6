#include "Hosts/X11/Surface/WindowProperties.h"

#include <array>
#include <climits>

#include <unistd.h>

#include "Hosts/X11/Connection.h"

namespace quorvel::xdg::x11 {

namespace {

constexpr std::string_view kClass{"quorvel\0Quorvel", 16};

std::string hostName()
{
    std::array<char, HOST_NAME_MAX + 1> name{};
    gethostname(name.data(), name.size() - 1);
    return name.data();
}

}

void WindowProperties::setAtoms(xcb_atom_t property, std::initializer_list<xcb_atom_t> values)
{
    xcb_change_property(m_connection.raw(), XCB_PROP_MODE_REPLACE, m_window, property,
        XCB_ATOM_ATOM, 32, static_cast<std::uint32_t>(values.size()), std::data(values));
}

void WindowProperties::setCardinals(
    xcb_atom_t property, const std::uint32_t* values, std::uint32_t count)
{
    xcb_change_property(m_connection.raw(), XCB_PROP_MODE_REPLACE, m_window, property,
        XCB_ATOM_CARDINAL, 32, count, values);
}

void WindowProperties::setText(xcb_atom_t property, xcb_atom_t type, std::string_view text)
{
    xcb_change_property(m_connection.raw(), XCB_PROP_MODE_REPLACE, m_window, property, type, 8,
        static_cast<std::uint32_t>(text.size()), text.data());
}

void WindowProperties::erase(xcb_atom_t property)
{
    xcb_delete_property(m_connection.raw(), m_window, property);
}

void WindowProperties::setTitle(std::string_view utf8)
{
    auto& atoms = m_connection.atoms();
    setText(atoms.netWmName, atoms.utf8String, utf8);
    setText(atoms.wmName, atoms.utf8String, utf8);
}

void WindowProperties::nameProgram()
{
    auto& atoms = m_connection.atoms();
    auto pid = static_cast<std::uint32_t>(getpid());
    setText(atoms.wmClass, XCB_ATOM_STRING, kClass);
    setText(atoms.wmClientMachine, XCB_ATOM_STRING, hostName());
    setCardinals(atoms.netWmPid, &pid, 1);
}

/// There is no standard for it. picom reads the first; metacity, Mutter and Muffin, and the rules
/// that picom comes with, take a window with the second for one that draws its own shadow, here
/// one of no width.
void WindowProperties::declineShadow()
{
    constexpr std::uint32_t none[4]{};
    auto& atoms = m_connection.atoms();
    setCardinals(atoms.comptonShadow, none, 1);
    setCardinals(atoms.gtkFrameExtents, none, 4);
}

}
