#include "Quorvel/Core/OrderMemory.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

#include "Quorvel/Core/ChipGroups.h"
#include "Quorvel/Core/ChipOrder.h"
#include "Quorvel/Core/RememberedOrderCoding.h"
#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Platform/WindowServer.h"

namespace quorvel {

namespace {

bool hasSameUUID(const SpaceIdentity& one, const SpaceIdentity& other)
{
    return !one.uuid.empty() && one.uuid == other.uuid;
}

bool hasSameName(const SpaceIdentity& one, const SpaceIdentity& other)
{
    return one.uuid.empty() && other.uuid.empty() && one.display == other.display
        && !one.name.empty() && one.name == other.name;
}

bool hasSamePosition(const SpaceIdentity& one, const SpaceIdentity& other)
{
    return one.uuid.empty() && other.uuid.empty() && one.display == other.display
        && one.index == other.index;
}

/// Groups in the order of their windows, since that is kept too.
std::vector<WindowID> windowsIn(const std::vector<DisplayItem>& items)
{
    std::vector<WindowID> windows;
    for (auto& item : items) {
        if (auto* group = std::get_if<GroupedChipData>(&item))
            windows.insert(windows.end(), group->windowIDs.begin(), group->windowIDs.end());
        else
            windows.push_back(std::get<ChipData>(item).id);
    }
    return windows;
}

}

OrderMemory::OrderMemory(
    ChipOrder& order, ChipGroups& groups, const WindowStore& windows, const Platform& platform)
    : m_services{order, groups, windows, platform.windowServer, platform.dispatch}
    , m_session(rememberedText(platform.windowServer.windowSession().value_or("")))
    , m_file(platform.files, platform.application, platform.dispatch, [this] { return remember(); })
{
    auto remembered = m_file.read(m_session);
    if (!remembered)
        return;
    bool isSameSession = !m_session.empty() && remembered->session == m_session;
    using Numbers = SpacePlaces::Numbers;
    auto numbers = isSameSession ? Numbers::hold : Numbers::mayBeOthers;
    for (auto& space : remembered->spaces)
        m_spaces.emplace_back(m_services, space, numbers, m_nextAwaited);
}

// MARK: Spaces

void OrderMemory::follow(const std::vector<SpaceWindows::Info>& spaces)
{
    for (auto places = m_spaces.begin(); places != m_spaces.end();) {
        auto here = places++;
        bool isGone = here->space()
            && std::ranges::find(spaces, *here->space(), &SpaceWindows::Info::spaceID)
                == spaces.end();
        if (!isGone)
            continue;
        here->detach();
        m_spaces.splice(m_spaces.end(), m_spaces, here);
        m_file.writeSoon();
    }
    std::set<SpaceID> present;
    std::vector<SpaceWindows::Info> unknown;
    for (auto& info : spaces) {
        present.insert(info.spaceID);
        auto known = placesOf(info.spaceID);
        if (known != m_spaces.end()) {
            auto identity = identify(info);
            if (known->identity() != identity)
                m_file.writeSoon(); // a restart looks for it where it is now
            known->setIdentity(std::move(identity));
        } else if (info.spaceType != kFullscreenSpaceType) // it has one window, and ends with it
            unknown.push_back(info);
    }
    m_services.groups.keepOnly(present);
    attach(std::move(unknown));
    forgetSurplus();
}

SpaceIdentity OrderMemory::identify(const SpaceWindows::Info& info) const
{
    return {rememberedText(info.displayIdentifier), rememberedText(info.uuid),
        rememberedText(m_services.windowServer.spaceName(info.spaceID).value_or("")),
        info.spaceIndex};
}

void OrderMemory::attach(std::vector<SpaceWindows::Info> unknown)
{
    for (auto* isSame : {hasSameUUID, hasSameName, hasSamePosition}) {
        std::erase_if(unknown, [&](const SpaceWindows::Info& info) {
            auto identity = identify(info);
            auto fits = [&](const SpacePlaces& places) {
                return !places.space() && isSame(places.identity(), identity);
            };
            auto places = std::find_if(m_spaces.rbegin(), m_spaces.rend(), fits);
            // Spaces of one name are told apart by their positions.
            bool isAmbiguous = isSame == hasSameName && std::ranges::count_if(m_spaces, fits) > 1;
            if (places == m_spaces.rend() || isAmbiguous)
                return false;
            places->setIdentity(std::move(identity));
            places->attach(info.spaceID);
            return true;
        });
    }
    for (auto& info : unknown)
        m_spaces.emplace_back(m_services, identify(info)).attach(info.spaceID);
}

/// Spaces that are gone for good do not say so.
void OrderMemory::forgetSurplus()
{
    while (m_spaces.size() > OrderLimits::spaces) {
        auto gone = std::ranges::find(m_spaces, std::optional<SpaceID>{}, &SpacePlaces::space);
        if (gone == m_spaces.end())
            return;
        m_spaces.erase(gone);
    }
}

OrderMemory::Spaces::iterator OrderMemory::placesOf(SpaceID space)
{
    return std::ranges::find(m_spaces, std::optional{space}, &SpacePlaces::space);
}

// MARK: Chips

std::vector<const ChipData*> OrderMemory::arrange(SpaceID space, const std::vector<ChipData>& chips)
{
    if (auto places = placesOf(space); places != m_spaces.end()) {
        places->place(chips);
        return places->inOrder(chips);
    }
    std::vector<const ChipData*> all;
    all.reserve(chips.size());
    for (auto& chip : chips)
        all.push_back(&chip);
    return all;
}

void OrderMemory::didShow(SpaceID space, const std::vector<DisplayItem>& items)
{
    auto places = placesOf(space);
    if (places != m_spaces.end() && places->setShown(windowsIn(items)))
        m_file.writeSoon();
}

void OrderMemory::userDidMove(SpaceID space)
{
    if (auto places = placesOf(space); places != m_spaces.end())
        places->settle();
}

std::size_t OrderMemory::placeOf(SpaceID space, WindowID window) const
{
    auto places = std::ranges::find(m_spaces, std::optional{space}, &SpacePlaces::space);
    return places == m_spaces.end() ? 0 : places->placeOf(window);
}

// MARK: Writing

RememberedOrder OrderMemory::remember()
{
    RememberedOrder order{.session = m_session, .spaces = {}};
    std::vector<RememberedSpace> gone;
    for (auto& places : m_spaces) {
        if (auto space = places.space()) {
            auto identity = places.identity();
            identity.name = rememberedText(m_services.windowServer.spaceName(*space).value_or(""));
            places.setIdentity(std::move(identity));
        }
        auto remembered = places.remember();
        if (remembered.windows.empty())
            continue;
        auto& list = places.space() ? order.spaces : gone;
        list.push_back(std::move(remembered));
    }
    std::ranges::move(gone, std::back_inserter(order.spaces));
    std::erase_if(m_spaces, [](auto& places) { return !places.space() && places.isEmpty(); });
    return order;
}

}
