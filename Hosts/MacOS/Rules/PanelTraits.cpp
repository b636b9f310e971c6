#include "Hosts/MacOS/Rules/PanelTraits.h"

namespace quorvel {

// All can join all applications: Stage Manager would put them aside with "their" application, which
// has no windows of its own.
PanelTraits PanelTraits::of(PanelKind kind)
{
    using namespace behavior;
    constexpr std::uint64_t always = kIgnoresCycle | kCanJoinAllApplications;
    switch (kind) {
    case PanelKind::popup:
    case PanelKind::menu:
        return {.level = Level::popUpMenu,
            .collectionBehavior = always | kCanJoinAllSpaces | kTransient | kFullScreenAuxiliary,
            .hasOwnSpace = false};
    case PanelKind::launcher:
        return {.level = Level::floating,
            .collectionBehavior = always | kCanJoinAllSpaces | kTransient | kFullScreenAuxiliary,
            .hasOwnSpace = false,
            .keys = Keys::fromTheStart,
            .isClosable = true};
    case PanelKind::window:
        // The user works with it wherever they are, as with any program's window.
        return {.level = Level::normal,
            .collectionBehavior = kMoveToActiveSpace | kManaged | kFullScreenAuxiliary,
            .isTitled = true,
            .hasOwnSpace = false,
            .keys = Keys::whenKey,
            .isClosable = true};
    case PanelKind::fullscreenProxy:
        return {.level = Level::normal,
            .collectionBehavior = always | kStationary | kFullScreenAuxiliary,
            .ignoresMouse = true};
    case PanelKind::edge:
        return {.level = Level::dock,
            .collectionBehavior = always | kCanJoinAllSpaces | kStationary | kFullScreenNone,
            .ignoresMouse = false,
            .hasOwnSpace = false};
    case PanelKind::bar:
        break;
    }
    // Mission Control hides windows above the normal level that are not stationary.
    return {.level = Level::dock, .collectionBehavior = always | kStationary | kFullScreenNone};
}

}
