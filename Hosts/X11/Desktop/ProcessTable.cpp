#include "Hosts/X11/Desktop/ProcessTable.h"

#include <climits>

#include <unistd.h>

#include <fmt/format.h>

#include "Hosts/Linux/Applications/DesktopEntries.h"
#include "Hosts/Linux/Applications/WindowIdentity.h"

namespace quorvel::xdg::x11 {

namespace {

std::string thisMachine()
{
    char name[HOST_NAME_MAX + 1] = {};
    return gethostname(name, HOST_NAME_MAX) == 0 ? name : "";
}

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
    , m_machine(thisMachine())
{
}

std::optional<std::uint32_t> ProcessTable::processOf(const Client& client) const
{
    if (client.hasProcessEnded)
        return std::nullopt;
    auto isPossible = [](std::uint32_t pid) { return pid > 0 && pid <= INT_MAX; };
    if (client.serverProcess && isPossible(*client.serverProcess))
        return client.serverProcess;
    bool isLocal = client.machine && !m_machine.empty() && *client.machine == m_machine;
    if (isLocal && client.claimedProcess && isPossible(*client.claimedProcess))
        return client.claimedProcess;
    return std::nullopt;
}

std::string ProcessTable::bundleIdentifierOf(const Client& client) const
{
    WindowIdentity identity;
    identity.gtkApplicationId = client.applicationID;
    identity.wmClass = client.windowClass.name;
    identity.wmInstance = client.windowClass.instance;
    if (auto process = processOf(client))
        identity.executableName = executableOf(*process);
    identity.number = raw(client.id);
    return m_entries.bundleIdentifier(identity);
}

ProcessTable::Pair& ProcessTable::pairFor(std::optional<std::uint32_t> process,
    std::uint32_t clientBase, const std::string& bundleIdentifier, const Client& client)
{
    Key key{process, process ? 0 : clientBase, bundleIdentifier};
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
    pair.name = nameFor(bundleIdentifier, &client);
    pair.endsWithLastWindow = !(isFirst && isWatched);
    return pair;
}

ProcessTable::Pair* ProcessTable::find(ProcessID pid)
{
    auto found = m_pairs.find(pid);
    return found == m_pairs.end() ? nullptr : &found->second;
}

std::string ProcessTable::nameFor(const std::string& bundleIdentifier, const Client* client) const
{
    if (auto name = m_entries.name(bundleIdentifier); name && !name->empty())
        return *name;
    if (client && !client->windowClass.name.empty())
        return client->windowClass.name;
    return bundleIdentifier;
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
