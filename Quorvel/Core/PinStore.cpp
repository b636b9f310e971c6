#include "Quorvel/Core/PinStore.h"

#include <algorithm>
#include <map>

#include "Quorvel/Core/UserSettings.h"

namespace quorvel {

namespace {

using Records = std::vector<PinnedAppRecord>;

auto find(Records& records, std::string_view id)
{
    return std::ranges::find(records, id, &PinnedAppRecord::id);
}

/// Puts the records pinned to the destination into the order of the ids, and leaves all others in
/// their slots. False, with the list in any state, if an id has no record.
bool reorder(Records& records, const std::vector<std::string>& ids, PinDestination destination)
{
    std::map<std::string, PinnedAppRecord> byID;
    for (auto& record : records)
        byID[record.id] = record;
    auto next = ids.begin();
    for (auto& slot : records) {
        if (!slot.isPinned(destination))
            continue;
        auto record = next == ids.end() ? byID.end() : byID.find(*next++);
        if (record == byID.end())
            return false;
        slot = record->second;
    }
    return true;
}

}

PinStore::PinStore(UserSettings& settings)
    : m_settings(settings)
    , m_pinnedApps(settings.pinnedApps())
    , m_settingsChange(settings.data().subscribe(
          [this](const UserSettingsData& data) { m_pinnedApps.set(data.pinnedApps); }))
{
}

std::vector<std::string> PinStore::pinnedAppIDs(PinDestination destination) const
{
    std::vector<std::string> ids;
    for (auto& record : m_pinnedApps.value()) {
        if (record.isPinned(destination))
            ids.push_back(record.id);
    }
    return ids;
}

bool PinStore::isPinned(std::string_view id, PinDestination to) const
{
    auto& records = m_pinnedApps.value();
    auto record = std::ranges::find(records, id, &PinnedAppRecord::id);
    return record != records.end() && record->isPinned(to);
}

void PinStore::setPin(const std::string& id, PinDestination to, bool isEnabled)
{
    auto bits = static_cast<std::int64_t>(to);
    if (id.empty() || bits == 0)
        return;
    auto records = m_pinnedApps.value();
    auto record = find(records, id);
    if (record != records.end()) {
        auto& old = record->destinationsRaw;
        old = isEnabled ? old | bits : old & ~bits;
        if (old == 0)
            records.erase(record);
    } else if (isEnabled) {
        records.push_back({id, bits});
    }
    assign(std::move(records));
}

void PinStore::movePinnedApp(
    const std::string& id, const std::optional<std::string>& before, PinDestination destination)
{
    if (before == id)
        return;
    auto ids = pinnedAppIDs(destination);
    auto moved = std::ranges::find(ids, id);
    if (moved == ids.end())
        return;
    auto from = moved - ids.begin();
    ids.erase(moved);
    auto target = before ? std::ranges::find(ids, *before) : ids.end();
    if (target - ids.begin() == from)
        return;
    ids.insert(target, id);
    auto records = m_pinnedApps.value();
    if (reorder(records, ids, destination))
        assign(std::move(records));
}

void PinStore::assign(Records records)
{
    m_settings.setPinnedApps(std::move(records));
}

}
