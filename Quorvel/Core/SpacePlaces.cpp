#include "Quorvel/Core/SpacePlaces.h"

#include <algorithm>
#include <set>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "Quorvel/Core/ChipGroups.h"
#include "Quorvel/Core/ChipOrder.h"
#include "Quorvel/Core/RememberedOrderCoding.h"
#include "Quorvel/Platform/WindowServer.h"
#include "Quorvel/Skylight/WindowStore.h"

namespace quorvel {

namespace {

/// The window's number was given anew if nothing else of the window is the same.
bool mayBeSame(const RememberedWindow& known, const RememberedWindow& found)
{
    return rememberedText(known.application) == found.application
        || (!known.role.empty() && rememberedText(known.role) == found.role);
}

}

SpacePlaces::SpacePlaces(const PlaceServices& services, const RememberedSpace& remembered,
    Numbers numbers, std::uint64_t& nextAwaited)
    : m_services(services)
    , m_identity(remembered.identity)
    , m_hasOwnOrder(true)
{
    for (auto& window : remembered.windows) {
        Place place;
        place.known = window;
        if (numbers == Numbers::mayBeOthers)
            place.known.number.reset();
        place.itemID = awaitedItemID(nextAwaited++);
        if (!place.known.number) {
            place.sought = place.known;
            place.awaitedID = place.itemID;
        }
        m_places.push_back(std::move(place));
    }
    std::set<std::size_t> listed;
    for (auto& item : remembered.order) {
        if (auto* index = std::get_if<std::size_t>(&item))
            listed.insert(*index);
    }
    for (auto& item : remembered.order) {
        if (auto* index = std::get_if<std::size_t>(&item)) {
            m_order.push_back(m_places[*index].itemID);
            continue;
        }
        auto& key = std::get<std::string>(item);
        m_order.push_back(groupItemID(key));
        // The first window of a group that comes back stands alone, where the group was.
        for (std::size_t i = 0; i < m_places.size(); ++i) {
            if (m_places[i].sought && m_places[i].known.application == key && !listed.contains(i))
                m_order.push_back(m_places[i].itemID);
        }
    }
}

void SpacePlaces::attach(SpaceID space)
{
    m_space = space;
    m_hasOwnOrder = m_hasOwnOrder || !m_places.empty();
    auto until = m_services.dispatch.now() + kReturnTime;
    for (auto& place : m_places) {
        // Those that are waited for already get no more time, however often their display comes.
        if (!place.window && !place.until)
            place.until = until;
    }
    if (!m_order.empty() && m_services.order.ids(space).empty())
        m_services.order.restore(space, std::move(m_order));
    m_order.clear();
    for (auto& place : m_places) {
        if (place.window && place.known.isFront)
            m_services.groups.prefer(space, place.known.application, *place.window);
    }
}

void SpacePlaces::detach()
{
    noteFrontWindows();
    m_order = m_services.order.take(*m_space);
    m_space.reset();
    m_shown.clear();
    m_arranged.clear();
}

// MARK: Arranging

void SpacePlaces::place(const std::vector<ChipData>& chips)
{
    if (!isSeeking() && std::ranges::equal(chips, m_arranged, {}, &ChipData::id)) {
        for (std::size_t i = 0; i < chips.size(); ++i)
            describe(m_places[m_placeOfChip[i]].known, chips[i]);
        return;
    }
    forgetGoneWindows();
    recogniseNumbers(chips);
    if (isSeeking())
        recogniseLikes(chips);
    addNew(chips);

    std::unordered_map<WindowID, std::size_t> placeByWindow;
    for (std::size_t i = 0; i < m_places.size(); ++i) {
        if (m_places[i].window)
            placeByWindow.emplace(*m_places[i].window, i);
    }
    m_mostAtOnce = std::max(m_mostAtOnce, placeByWindow.size());
    m_arranged.clear();
    m_placeOfChip.clear();
    for (auto& chip : chips) {
        m_arranged.push_back(chip.id);
        m_placeOfChip.push_back(placeByWindow.at(chip.id));
        describe(m_places[m_placeOfChip.back()].known, chip);
    }
}

bool SpacePlaces::isSeeking() const
{
    auto now = m_services.dispatch.now();
    return std::ranges::any_of(
        m_places, [now](auto& place) { return place.sought && place.until && *place.until > now; });
}

void SpacePlaces::forgetGoneWindows()
{
    auto now = m_services.dispatch.now();
    for (auto& place : m_places) {
        if (place.window && !m_services.windows.window(*place.window)) {
            place.window.reset();
            place.sought.reset();
            place.hasClosed = true;
            place.until = now + kClosedTime;
        } else if (place.until && *place.until <= now) {
            place.sought.reset();
        }
    }
    std::erase_if(m_places,
        [now](auto& place) { return !place.window && place.until && *place.until <= now; });
    limitVacant();
    m_arranged.clear();
}

/// A program that opens and closes windows without end must not crowd out those that are there, nor
/// make the bar grow.
void SpacePlaces::limitVacant()
{
    keepLatest(m_mostAtOnce, [](const Place& place) { return place.hasClosed; });
    keepLatest(kMostVacant, [](const Place& place) { return !place.window && place.until; });
}

/// Of the places that are meant, those that would be given up last.
void SpacePlaces::keepLatest(std::size_t most, bool (*isMeant)(const Place&))
{
    std::vector<Instant> ends;
    for (auto& place : m_places) {
        if (isMeant(place))
            ends.push_back(*place.until);
    }
    if (ends.size() <= most)
        return;
    auto earliest = ends.end() - static_cast<std::ptrdiff_t>(most);
    std::ranges::nth_element(ends, earliest);
    std::erase_if(
        m_places, [&](auto& place) { return isMeant(place) && *place.until < *earliest; });
}

void SpacePlaces::recogniseNumbers(const std::vector<ChipData>& chips)
{
    const auto placed = placedWindows();
    std::map<std::string, std::string> newIDs;
    for (auto& chip : chips) {
        if (placed.contains(chip.id))
            continue;
        auto number = m_services.windowServer.nativeWindowNumber(chip.id);
        auto* place = number ? placeByNumber(chip, *number) : nullptr;
        if (!place)
            continue;
        occupy(*place, chip, newIDs);
        // Now it stands before windows with lower numbers.
        m_hasOwnOrder = true;
    }
    m_services.order.substitute(*m_space, newIDs);
}

SpacePlaces::Place* SpacePlaces::placeByNumber(const ChipData& chip, std::uint32_t number)
{
    for (auto& place : m_places) {
        if (place.window || place.sought || place.known.number != number)
            continue;
        if (mayBeSame(place.known, stored(chip)))
            return &place;
    }
    return nullptr;
}

SpacePlaces::Search SpacePlaces::beginSearch(const std::vector<ChipData>& chips)
{
    Search search;
    for (std::size_t i = 0; i < m_places.size(); ++i) {
        if (m_places[i].sought)
            search.places.push_back(i);
    }
    for (auto& chip : chips) {
        auto* place = placeHolding(chip.id);
        if (place && !place->sought && !place->isProvisional)
            continue;
        PlaceSeeker seeker{.window = stored(chip), .current = {}};
        if (place && place->sought) {
            auto index = static_cast<std::size_t>(place - m_places.data());
            seeker.current = std::ranges::find(search.places, index) - search.places.begin();
        }
        search.chips.push_back(&chip);
        search.seekers.push_back(std::move(seeker));
    }
    return search;
}

void SpacePlaces::recogniseLikes(const std::vector<ChipData>& chips)
{
    auto search = beginSearch(chips);
    std::vector<const RememberedWindow*> wanted;
    wanted.reserve(search.places.size());
    for (auto place : search.places)
        wanted.push_back(&*m_places[place].sought);
    auto found = assignPlaces(wanted, search.seekers);

    std::map<std::string, std::string> vacated;
    std::map<std::string, std::string> occupied;
    for (std::size_t i = 0; i < found.size(); ++i) {
        auto current = search.seekers[i].current;
        if (!current || found[i] == current)
            continue;
        auto& place = m_places[search.places[*current]];
        vacated[place.itemID] = place.awaitedID;
        place.window.reset();
        place.itemID = place.awaitedID;
    }
    for (std::size_t i = 0; i < found.size(); ++i) {
        if (!found[i] || found[i] == search.seekers[i].current)
            continue;
        if (auto* provisional = placeHolding(search.chips[i]->id))
            provisional->window.reset();
        occupy(m_places[search.places[*found[i]]], *search.chips[i], occupied);
    }
    std::erase_if(m_places, [](auto& place) { return place.isProvisional && !place.window; });
    m_services.order.substitute(*m_space, vacated);
    m_services.order.substitute(*m_space, occupied);
}

void SpacePlaces::occupy(
    Place& place, const ChipData& chip, std::map<std::string, std::string>& newIDs)
{
    auto id = displayItemID(chip.id);
    newIDs[place.itemID] = id;
    place.itemID = std::move(id);
    place.window = chip.id;
    place.hasClosed = false;
    place.known.number = m_services.windowServer.nativeWindowNumber(chip.id);
    place.known.role = m_services.windowServer.windowRole(chip.id).value_or("");
    if (place.known.isFront)
        m_services.groups.prefer(*m_space, groupKey(chip), chip.id);
}

/// Last; while all stand by their numbers, by its own.
void SpacePlaces::addNew(const std::vector<ChipData>& chips)
{
    const auto placed = placedWindows();
    for (auto& chip : chips) {
        if (placed.contains(chip.id))
            continue;
        auto before = m_hasOwnOrder
            ? m_places.rbegin()
            : std::find_if(m_places.rbegin(), m_places.rend(),
                  [&](auto& place) { return place.window && *place.window < chip.id; });
        Place place;
        place.window = chip.id;
        place.known.number = m_services.windowServer.nativeWindowNumber(chip.id);
        place.known.role = m_services.windowServer.windowRole(chip.id).value_or("");
        place.isProvisional = isSeeking();
        place.itemID = displayItemID(chip.id);
        m_places.insert(before.base(), std::move(place));
    }
}

void SpacePlaces::describe(RememberedWindow& window, const ChipData& chip)
{
    window.application = groupKey(chip);
    window.title = chip.windowTitle;
}

RememberedWindow SpacePlaces::stored(const ChipData& chip) const
{
    return {.number = {},
        .application = rememberedText(groupKey(chip)),
        .role = rememberedText(m_services.windowServer.windowRole(chip.id).value_or("")),
        .title = rememberedText(chip.windowTitle)};
}

std::unordered_set<WindowID> SpacePlaces::placedWindows() const
{
    std::unordered_set<WindowID> placed;
    for (auto& place : m_places) {
        if (place.window)
            placed.insert(*place.window);
    }
    return placed;
}

SpacePlaces::Place* SpacePlaces::placeHolding(WindowID window)
{
    auto found = std::ranges::find(m_places, std::optional{window}, &Place::window);
    return found == m_places.end() ? nullptr : &*found;
}

std::vector<const ChipData*> SpacePlaces::inOrder(const std::vector<ChipData>& chips) const
{
    std::vector<std::pair<std::size_t, const ChipData*>> placed;
    placed.reserve(chips.size());
    for (std::size_t i = 0; i < chips.size(); ++i)
        placed.emplace_back(m_hasOwnOrder ? m_placeOfChip[i] : i, &chips[i]);
    std::ranges::sort(placed);
    std::vector<const ChipData*> ordered;
    ordered.reserve(placed.size());
    for (auto& [place, chip] : placed)
        ordered.push_back(chip);
    return ordered;
}

std::size_t SpacePlaces::placeOf(WindowID window) const
{
    if (!m_hasOwnOrder)
        return 0;
    auto found = std::ranges::find(m_places, std::optional{window}, &Place::window);
    return static_cast<std::size_t>(found - m_places.begin());
}

bool SpacePlaces::setShown(std::vector<WindowID> windows)
{
    bool isNew = windows != m_shown;
    m_shown = std::move(windows);
    return isNew;
}

void SpacePlaces::settle()
{
    for (auto& place : m_places) {
        if (place.window) {
            place.sought.reset();
            place.isProvisional = false;
        }
    }
}

// MARK: What the file says

void SpacePlaces::noteFrontWindows()
{
    for (auto& place : m_places) {
        if (place.window)
            place.known.isFront
                = m_services.groups.isPreferred(*m_space, place.known.application, *place.window);
    }
}

RememberedSpace SpacePlaces::remember()
{
    forgetGoneWindows();
    RememberedSpace remembered{.identity = m_identity, .windows = {}, .order = {}};
    std::map<std::string_view, std::size_t> indexByID;
    if (m_space)
        noteFrontWindows();
    for (auto& place : m_places) {
        indexByID.emplace(place.itemID, remembered.windows.size());
        remembered.windows.push_back(place.known);
    }
    constexpr std::string_view group = "group-";
    for (auto& id : m_space ? m_services.order.ids(*m_space) : m_order) {
        if (auto found = indexByID.find(id); found != indexByID.end())
            remembered.order.emplace_back(found->second);
        else if (id.starts_with(group))
            remembered.order.emplace_back(id.substr(group.size()));
    }
    return remembered;
}

}
