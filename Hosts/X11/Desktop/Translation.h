#pragma once

#include "Hosts/Linux/Desktop/DesktopModel.h"
#include "Hosts/Linux/Desktop/WindowOrigin.h"
#include "Hosts/X11/Desktop/Client.h"
#include "Hosts/X11/Desktop/SwitchAtoms.h"
#include "Hosts/X11/Monitors.h"

namespace quorvel::xdg::x11 {

/// What the meaning of a client's facts depends on.
struct TranslationContext {
    const Coordinates& coordinates;
    const std::vector<Monitor>& monitors;
    std::uint32_t desktopCount = 1;
    std::uint32_t currentDesktop = 0;
    bool hasDesktops = true;
    ManagerSwitches switches{};
};

/// A client's type if it names none: a window with a parent is a dialog, as for managers.
bool isStandardWindow(const Client&, bool hasParent);
bool isDesktopElement(const Client&);
/// Whether its parent is shown as focused in its place.
bool speaksForParent(const Client&, bool hasParent);

/// The space of the client; absent for every space. A number beyond the count is clamped: managers
/// change the count and the windows' desktops one after the other.
std::optional<SpaceID> spaceOf(const Client&, const TranslationContext&);

/// The client's process is believed only if it runs on this machine. `clientMask` is the bits of a
/// resource's number that identify its client.
WindowOrigin originOf(const Client&, std::uint32_t clientMask);

/// The client in the model's terms, without its owner.
WindowRecord recordOf(const Client&, bool hasParent, const TranslationContext&);

}
