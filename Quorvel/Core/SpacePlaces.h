#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "Quorvel/Core/DisplayItem.h"
#include "Quorvel/Core/RememberedOrder.h"
#include "Quorvel/Core/WindowAssignment.h"
#include "Quorvel/Platform/Dispatch.h"

namespace quorvel {

class ChipGroups;
class ChipOrder;
class WindowServer;
class WindowStore;

/// What the places of a space are kept in step with.
struct PlaceServices {
    ChipOrder& order;
    ChipGroups& groups;
    const WindowStore& windows;
    const WindowServer& windowServer;
    Dispatch& dispatch;
};

/// The places of the windows on one space, in the order of their chips.
///
/// A place outlives its window: for a while after the window closed, since a log-out closes all of
/// them before it ends the bar, though no more than there were at once; as long as the window is on
/// another space; and, read from the file, until the window has come back. Windows whose number
/// still holds get their own place. Any others get the place of one like them, and may get a better
/// one while more of them come and their titles change; that ends after `kReturnTime`, or when the
/// user moves a chip. Main thread.
class SpacePlaces {
public:
    /// How long windows are waited for, from the moment that their space is there.
    static constexpr Duration kReturnTime = seconds(600);
    /// How long the place of a closed window is kept.
    static constexpr Duration kClosedTime = seconds(120);
    /// Of more places without a window, those that would be given up first go.
    static constexpr std::size_t kMostVacant = 250;

    SpacePlaces(const PlaceServices& services, SpaceIdentity identity)
        : m_services(services)
        , m_identity(std::move(identity))
    {
    }
    enum class Numbers { hold, mayBeOthers };
    SpacePlaces(const PlaceServices&, const RememberedSpace&, Numbers, std::uint64_t& nextAwaited);

    const SpaceIdentity& identity() const { return m_identity; }
    void setIdentity(SpaceIdentity identity) { m_identity = std::move(identity); }
    std::optional<SpaceID> space() const { return m_space; }
    /// Nothing is known of it that it could be given back.
    bool isEmpty() const { return m_places.empty() && m_order.empty(); }
    /// The space is there.
    void attach(SpaceID);
    /// It has gone, and may come back under another number.
    void detach();

    /// Finds places for the windows that are on the space now.
    void place(const std::vector<ChipData>&);
    /// The chips that `place` was given last, in the order of their places.
    std::vector<const ChipData*> inOrder(const std::vector<ChipData>&) const;
    /// What the bars of the space show now; false if they did before.
    bool setShown(std::vector<WindowID>);
    /// The user has put the chips where they are.
    void settle();
    /// Compares with those of other windows; the same for all while they stand by their numbers.
    std::size_t placeOf(WindowID) const;

    RememberedSpace remember();

private:
    struct Place {
        RememberedWindow known;
        /// Whose place it was, while a window more like that one may come.
        std::optional<RememberedWindow> sought;
        std::optional<WindowID> window; ///< absent: it has not come yet, or has closed
        bool hasClosed = false; ///< its window, and no other has taken it since
        bool isProvisional = false; ///< at the end, while a better place may be found
        /// Then it is given up. Absent: not before the space is there.
        std::optional<Instant> until;
        std::string itemID; ///< in the user's own order
        std::string awaitedID; ///< that while no window has come; empty: none is sought
    };

    bool isSeeking() const;
    void forgetGoneWindows();
    void limitVacant();
    void keepLatest(std::size_t most, bool (*isMeant)(const Place&));
    void recogniseNumbers(const std::vector<ChipData>&);
    Place* placeByNumber(const ChipData&, std::uint32_t number);
    /// Windows that are like others, and the places where one like them is sought.
    struct Search {
        std::vector<std::size_t> places;
        std::vector<const ChipData*> chips;
        std::vector<PlaceSeeker> seekers; ///< for each of the chips
    };
    Search beginSearch(const std::vector<ChipData>&);
    void recogniseLikes(const std::vector<ChipData>&);
    void addNew(const std::vector<ChipData>&);
    void noteFrontWindows();
    static void describe(RememberedWindow&, const ChipData&);
    RememberedWindow stored(const ChipData&) const;
    void occupy(Place&, const ChipData&, std::map<std::string, std::string>& newIDs);
    std::unordered_set<WindowID> placedWindows() const;
    Place* placeHolding(WindowID);

    PlaceServices m_services;
    SpaceIdentity m_identity;
    std::optional<SpaceID> m_space;
    std::vector<Place> m_places;
    /// False: chips stand by the numbers of their windows, and so do the places.
    bool m_hasOwnOrder = false;
    std::vector<std::string> m_order; ///< the user's own, while the space is not there
    std::size_t m_mostAtOnce = 1; ///< windows with a place; a log-out closes no more
    std::vector<WindowID> m_shown;
    // As of the last arrangement:
    std::vector<WindowID> m_arranged;
    std::vector<std::size_t> m_placeOfChip;
};

}
