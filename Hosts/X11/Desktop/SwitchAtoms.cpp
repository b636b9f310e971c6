#include "Hosts/X11/Desktop/SwitchAtoms.h"

#include <algorithm>

namespace quorvel::xdg::x11 {

namespace {

bool haveAll(const std::vector<xcb_atom_t>& list, const std::array<xcb_atom_t, 2>& wanted)
{
    return std::ranges::all_of(
        wanted, [&](auto atom) { return std::ranges::find(list, atom) != list.end(); });
}

}

std::array<SwitchAtoms, 4> switchAtoms(const Atoms& atoms)
{
    return {{
        {WindowSwitch::maximized, {atoms.netWmStateMaximizedVert, atoms.netWmStateMaximizedHorz},
            {atoms.netWmActionMaximizeVert, atoms.netWmActionMaximizeHorz}},
        {WindowSwitch::fullScreen, {atoms.netWmStateFullscreen, atoms.netWmStateFullscreen},
            {atoms.netWmActionFullscreen, atoms.netWmActionFullscreen}},
        {WindowSwitch::keptAbove, {atoms.netWmStateAbove, atoms.netWmStateAbove},
            {atoms.netWmActionAbove, atoms.netWmActionAbove}},
        {WindowSwitch::onEverySpace, {atoms.netWmDesktop, atoms.netWmDesktop},
            {atoms.netWmActionChangeDesktop, atoms.netWmActionChangeDesktop}},
    }};
}

ManagerSwitches managerSwitches(const Atoms& atoms, const std::vector<xcb_atom_t>& supported)
{
    ManagerSwitches switches;
    for (auto& entry : switchAtoms(atoms)) {
        switches.supported.set(entry.which, haveAll(supported, entry.feature));
        switches.namedInActions.set(entry.which, haveAll(supported, entry.action));
    }
    return switches;
}

WindowSwitches allowedSwitches(const Atoms& atoms, const std::vector<xcb_atom_t>& actions)
{
    WindowSwitches switches;
    for (auto& entry : switchAtoms(atoms))
        switches.set(entry.which, haveAll(actions, entry.action));
    return switches;
}

}
