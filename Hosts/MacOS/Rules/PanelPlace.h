#pragma once

#include <optional>

#include "Hosts/MacOS/Rules/SystemPanel.h"

namespace quorvel {

class MacWindowServer;

/// When a panel goes on the screen. No public call puts a window on a given space: it appears on
/// the active one, where a bar of another space would be visible until it is moved. So each panel
/// is ordered in when its own space is first active, and stays there.
class PanelPlace {
public:
    /// Without a space it is on every space.
    PanelPlace(const MacWindowServer&, SystemPanel&, std::optional<SpaceID>);

    void orderFront();
    void orderOut();
    /// The same for a panel that is to take the user to its space by becoming the key window, so it
    /// has to be on that space first. False if the window server does not put it there.
    bool orderFrontForKey();
    void activeSpaceDidChange();

private:
    bool isSpaceActive() const;
    bool isElsewhere() const;
    bool move();

    const MacWindowServer& m_windowServer;
    SystemPanel& m_panel;
    std::optional<SpaceID> m_space;
    bool m_isWanted = false;
    bool m_isIn = false;
};

}
