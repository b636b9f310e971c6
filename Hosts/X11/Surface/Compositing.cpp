#include "Hosts/X11/Surface/Compositing.h"

#include <algorithm>
#include <cstdlib>
#include <span>

#include <fmt/format.h>

#include "Hosts/X11/Connection.h"

namespace quorvel::xdg::x11 {

namespace {

constexpr std::uint32_t kMostSupportedAtoms = 4096;

}

bool isCompositing(Connection& connection)
{
    auto* raw = connection.raw();
    auto name = fmt::format("_NET_WM_CM_S{}", connection.screenNumber());
    auto* atom = xcb_intern_atom_reply(raw,
        xcb_intern_atom(raw, 1, static_cast<std::uint16_t>(name.size()), name.data()), nullptr);
    xcb_atom_t selection = atom ? atom->atom : xcb_atom_t{XCB_ATOM_NONE};
    std::free(atom);
    if (selection == XCB_ATOM_NONE)
        return false;
    auto* owner
        = xcb_get_selection_owner_reply(raw, xcb_get_selection_owner(raw, selection), nullptr);
    bool isOwned = owner && owner->owner != XCB_WINDOW_NONE;
    std::free(owner);
    return isOwned;
}

bool windowManagerSupports(Connection& connection, xcb_atom_t feature)
{
    auto* raw = connection.raw();
    auto* reply = xcb_get_property_reply(raw,
        xcb_get_property(raw, 0, connection.root(), connection.atoms().netSupported, XCB_ATOM_ATOM,
            0, kMostSupportedAtoms),
        nullptr);
    bool isListed = false;
    if (reply && reply->format == 32) {
        std::span atoms{static_cast<const xcb_atom_t*>(xcb_get_property_value(reply)),
            static_cast<std::size_t>(reply->value_len)};
        isListed = std::ranges::find(atoms, feature) != atoms.end();
    }
    std::free(reply);
    return isListed;
}

}
