#pragma once

#include <array>
#include <vector>

#include <xcb/xcb.h>

#include "Hosts/Linux/Desktop/DesktopModel.h"
#include "Hosts/X11/Atoms.h"

namespace quorvel::xdg::x11 {

/// How window managers call one switch; a pair may have one atom twice.
struct SwitchAtoms {
    WindowSwitch which{};
    std::array<xcb_atom_t, 2> feature{}; ///< in `_NET_SUPPORTED`; of a state, the state itself
    std::array<xcb_atom_t, 2> action{}; ///< in `_NET_WM_ALLOWED_ACTIONS`
};

std::array<SwitchAtoms, 4> switchAtoms(const Atoms&);

/// What a manager says in `_NET_SUPPORTED`.
struct ManagerSwitches {
    WindowSwitches supported;
    /// Windows that are not allowed it lack the action. Where a manager does not know the action,
    /// that means nothing.
    WindowSwitches namedInActions;

    friend bool operator==(const ManagerSwitches&, const ManagerSwitches&) = default;
};

ManagerSwitches managerSwitches(const Atoms&, const std::vector<xcb_atom_t>& supported);
WindowSwitches allowedSwitches(const Atoms&, const std::vector<xcb_atom_t>& actions);

}
