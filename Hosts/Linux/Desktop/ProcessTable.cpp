#include "Hosts/Linux/Desktop/ProcessTable.h"

#include <climits>

#include <unistd.h>

#include <fmt/format.h>

#include "Hosts/Linux/Applications/DesktopEntries.h"

namespace quorvel::xdg {

namespace {

std::optional<std::string> executableOf(std::uint32_t process)
{
    char path[PATH_MAX];
    auto length = readlink(fmt::format("/proc/{}/exe", process).c_str(), path, sizeof(path));
    if (length <= 0)
        return std::nullopt;
    std::string_view text{path, static_cast<std::size_t>(length)};
    // The kernel says so after an executable that was replaced by an update.
    if (constexpr std::string_view deleted = " (deleted)"; text.ends_with(deleted))
        text.remove_suffix(deleted.size());
    return std::string{text.substr(text.rfind('/') + 1)};
}

}

ProcessTable::ProcessTable(Dispatch& dispatch, const DesktopEntries& entries)
    : m_dispatch(dispatch)
    , m_entries(entries)
{
}

WindowIdentity ProcessTable::identityOf(WindowID window, const WindowOrigin& origin)
{
    WindowIdentity identity;
    identity.gtkApplicationId = origin.applicationID;
    identity.wmClass = origin.className;
    identity.wmInstance = origin.instanceName;
    if (origin.process)
        identity.executableName = executableOf(*origin.process);
    identity.number = raw(window);
    return identity;
}

std::string ProcessTable::bundleIdentifierOf(WindowID window, const WindowOrigin& origin) const
{
    return m_entries.bundleIdentifier(identityOf(window, origin));
}

ProcessTable::Pair& ProcessTable::pairFor(
    const WindowOrigin& origin, const std::string& bundleIdentifier)
{
    auto process = origin.process;
    Key key{process, process ? 0 : origin.client, bundleIdentifier};
    if (auto known = m_byKey.find(key); known != m_byKey.end())
        return m_pairs.at(known->second);

    bool isWatched = process && watch(*process);
    bool isFirst = process && !m_pairs.contains(ProcessID{static_cast<std::int32_t>(*process)});
    auto pid = isFirst ? ProcessID{static_cast<std::int32_t>(*process)} : takePrivateNumber();
    m_byKey[key] = pid;
    auto& pair = m_pairs[pid];
    pair.pid = pid;
    pair.process = process;
    pair.bundleIdentifier = bundleIdentifier;
    pair.name = nameFor(bundleIdentifier, origin);
    pair.endsWithLastWindow = !(isFirst && isWatched);
    return pair;
}

ProcessTable::Pair* ProcessTable::find(ProcessID pid)
{
    auto found = m_pairs.find(pid);
    return found == m_pairs.end() ? nullptr : &found->second;
}

std::string ProcessTable::nameFor(
    const std::string& bundleIdentifier, const WindowOrigin& origin) const
{
    if (auto name = m_entries.name(bundleIdentifier); name && !name->empty())
        return *name;
    return origin.className.empty() ? bundleIdentifier : origin.className;
}

void ProcessTable::refreshNames()
{
    for (auto& [pid, pair] : m_pairs) {
        if (auto name = m_entries.name(pair.bundleIdentifier); name && !name->empty())
            pair.name = *name;
    }
}

bool ProcessTable::watch(std::uint32_t process)
{
    auto [entry, isNew] = m_processes.try_emplace(process);
    auto& known = entry->second;
    if (!isNew || process == static_cast<std::uint32_t>(getpid()))
        return known.isWatched;

    ProcessEnd::Watch state{};
    known.watch = ProcessEnd::of(process, state, [this, process] { processEnded(process); });
    known.isWatched = state == ProcessEnd::Watch::running;
    if (state == ProcessEnd::Watch::ended) {
        known.isWatched = true;
        processEnded(process);
    }
    return known.isWatched;
}

void ProcessTable::processEnded(std::uint32_t process)
{
    auto& known = m_processes[process];
    known.watch.reset();
    known.grace = m_dispatch.main().after(kEndGrace, [this, process] { forgetProcess(process); });
}

void ProcessTable::forgetProcess(std::uint32_t process)
{
    for (auto& [pid, pair] : m_pairs) {
        if (pair.process == process)
            pair.endsWithLastWindow = true;
    }
    auto known = m_processes.extract(process); // the number may come back as another process
    processDidEnd.emit(process);
}

std::vector<ProcessTable::Pair> ProcessTable::takeEnded()
{
    std::vector<Pair> ended;
    std::erase_if(m_byKey, [&](const auto& entry) {
        auto& pair = m_pairs.at(entry.second);
        if (!pair.windows.empty() || !pair.endsWithLastWindow)
            return false;
        ended.push_back(std::move(pair));
        m_pairs.erase(entry.second);
        return true;
    });
    return ended;
}

}
