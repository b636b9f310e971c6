#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Quorvel/Core/DisplayItem.h"

namespace quorvel {

/// Which window of the focused group comes next, click by click.
///
/// A round visits each window once, minimised ones last. Visiting a minimised window restores it,
/// so its original place cannot be read from its current state: the walk remembers where it has
/// been. It ends when a window gets the focus that the walk did not lead to.
class GroupWalk {
public:
    /// The group's windows in the order of the chips; `focused` is one of them.
    WindowID next(
        SpaceID, const std::string& groupID, const std::vector<const ChipData*>&, WindowID focused);

private:
    bool isVisited(WindowID) const;

    std::pair<SpaceID, std::string> m_group;
    std::vector<WindowID> m_visited; ///< in this round; the last one is the current position
};

}
