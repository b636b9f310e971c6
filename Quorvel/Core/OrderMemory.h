#pragma once

#include <cstdint>
#include <list>
#include <string>
#include <vector>

#include "Quorvel/Core/OrderFile.h"
#include "Quorvel/Core/SpacePlaces.h"
#include "Quorvel/Skylight/SpaceWindows.h"

namespace quorvel {

struct Platform;

/// Carries the order of chips and groups over the end of the program, of the log-in, and of a
/// display: one list of places for each space, which is known again by its uuid, else by its name,
/// else by its position, and waits in memory and in the file while the space is not there.
/// Everything that was not remembered comes last. Main thread.
class OrderMemory {
public:
    /// Reads the file.
    OrderMemory(ChipOrder&, ChipGroups&, const WindowStore&, const Platform&);

    /// The spaces that there are, whenever they change; before their chips.
    void follow(const std::vector<SpaceWindows::Info>&);
    /// The space's chips in the order in which they stand until the user moves them.
    std::vector<const ChipData*> arrange(SpaceID, const std::vector<ChipData>&);
    /// What the bars of a space show now; a change of their order is soon written.
    void didShow(SpaceID, const std::vector<DisplayItem>&);
    void userDidMove(SpaceID);
    /// Compares with that of another window on the space; windows of the same place stand by their
    /// numbers.
    std::size_t placeOf(SpaceID, WindowID) const;

private:
    using Spaces = std::list<SpacePlaces>;

    SpaceIdentity identify(const SpaceWindows::Info&) const;
    void attach(std::vector<SpaceWindows::Info> unknown);
    void forgetSurplus();
    Spaces::iterator placesOf(SpaceID);
    RememberedOrder remember();

    PlaceServices m_services;
    const std::string m_session; ///< empty: window numbers mean nothing later
    std::uint64_t m_nextAwaited = 1;
    Spaces m_spaces; ///< of those that have gone, the latest last
    OrderFile m_file;
};

}
