#include "Hosts/Linux/Applications/LauncherEntries.h"

#include <algorithm>

namespace quorvel::xdg {

namespace {

template <typename Value> void take(std::optional<Value>& into, const std::optional<Value>& value)
{
    if (value)
        into = value;
}

std::string labelOf(std::int64_t count)
{
    if (count > LauncherEntries::kLargestCount)
        return std::to_string(LauncherEntries::kLargestCount) + "+";
    return std::to_string(count);
}

}

/// True if anything is different now.
bool LauncherEntries::Entry::apply(const LauncherUpdate& update)
{
    const auto before = said;
    take(said.count, update.count);
    take(said.isCountVisible, update.isCountVisible);
    take(said.progress, update.progress);
    take(said.isProgressVisible, update.isProgressVisible);
    take(said.isUrgent, update.isUrgent);
    if (!said.isUrgent.value_or(false))
        isRequestMet = false;
    return said != before;
}

ApplicationStatus LauncherEntries::Entry::status() const
{
    ApplicationStatus status{bundleIdentifier, std::nullopt, std::nullopt};
    if (said.isCountVisible.value_or(false) && said.count.value_or(0) > 0)
        status.label = labelOf(*said.count);
    if (said.isProgressVisible.value_or(false) && said.progress)
        status.progress = std::clamp(*said.progress, 0.0, 1.0);
    return status;
}

LauncherEntries::Outcome LauncherEntries::update(
    const std::string& sender, const LauncherUpdate& update, const Matcher& matcher)
{
    std::scoped_lock lock{m_mutex};
    auto* entry = entryFor(sender, update, matcher);
    if (!entry)
        return Outcome::refused;
    if (!entry->apply(update))
        return Outcome::unchanged;
    std::rotate(m_entries.begin() + (entry - m_entries.data()),
        m_entries.begin() + (entry - m_entries.data()) + 1, m_entries.end());
    return Outcome::changed;
}

LauncherEntries::Entry* LauncherEntries::entryFor(
    const std::string& sender, const LauncherUpdate& update, const Matcher& matcher)
{
    std::size_t ofSender = 0;
    for (auto& entry : m_entries) {
        if (entry.sender != sender)
            continue;
        if (entry.said.desktopID == update.desktopID)
            return &entry;
        ++ofSender;
    }
    if (ofSender >= kMostEntriesOfSender || m_entries.size() >= kMostEntries)
        return nullptr;
    m_entries.push_back({sender, matcher(update.desktopID), {.desktopID = update.desktopID}});
    return &m_entries.back();
}

bool LauncherEntries::forget(const std::string& sender)
{
    std::scoped_lock lock{m_mutex};
    return std::erase_if(m_entries, [&](const Entry& entry) { return entry.sender == sender; }) > 0;
}

bool LauncherEntries::forgetAll()
{
    std::scoped_lock lock{m_mutex};
    const bool hadAny = !m_entries.empty();
    m_entries.clear();
    return hadAny;
}

void LauncherEntries::rematch(const Matcher& matcher)
{
    std::scoped_lock lock{m_mutex};
    for (auto& entry : m_entries)
        entry.bundleIdentifier = matcher(entry.said.desktopID);
}

void LauncherEntries::withdrawRequest(const std::string& bundleIdentifier)
{
    std::scoped_lock lock{m_mutex};
    for (auto& entry : m_entries)
        entry.isRequestMet |= entry.bundleIdentifier == bundleIdentifier && entry.asks();
}

std::vector<ApplicationStatus> LauncherEntries::statuses() const
{
    std::scoped_lock lock{m_mutex};
    std::vector<ApplicationStatus> all;
    all.reserve(m_entries.size());
    for (auto& entry : m_entries)
        all.push_back(entry.status());
    return all;
}

std::set<std::string> LauncherEntries::asking() const
{
    std::scoped_lock lock{m_mutex};
    std::set<std::string> all;
    for (auto& entry : m_entries) {
        if (entry.asks())
            all.insert(entry.bundleIdentifier);
    }
    return all;
}

}
