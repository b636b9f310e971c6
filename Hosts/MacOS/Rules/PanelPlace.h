#pragma once

#include <optional>

#include "Hosts/MacOS/Rules/SystemPanel.h"

namespace quorvel {

class MacWindowServer;

/// When a panel goes on the screen. No public call puts a window on a given space: it lands on the
/// active one, where a bar of another space would be seen until it is moved. So each goes in when
/// its own space is first active, and stays there.
class PanelPlace {
public:
    /// Without a space it is on all of them.
    PanelPlace(const MacWindowServer&, SystemPanel&, std::optional<SpaceID>);

    void orderFront();
    void orderOut();
    /// The same for a panel that is to lead the user to its space as the key window, so it has to
    /// be there first. False if the window server does not put it there.
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
