#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "Hosts/Linux/Applications/WindowIdentity.h"
#include "Hosts/Linux/Desktop/ProcessEnd.h"
#include "Hosts/Linux/Desktop/WindowOrigin.h"
#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Identifiers.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel::xdg {

class DesktopEntries;
/// The pairs of process and application that own windows.
///
/// The first application of a process is identified by the process's number. Further applications
/// of the same process, and clients whose process is unknown, get private negative numbers. A pair
/// with a process of its own lives as long as the process, any other as long as it has windows.
/// Main thread.
class ProcessTable {
public:
    /// A killed client's windows are destroyed a moment later: until then they keep their pair.
    static constexpr auto kEndGrace = std::chrono::milliseconds{100};

    struct Pair {
        ProcessID pid{};
        std::optional<std::uint32_t> process; ///< absent: unknown, or ended
        std::string bundleIdentifier;
        std::string name;
        std::set<WindowID> windows;
        bool isLaunched = false;
        bool endsWithLastWindow = true;
    };

    ProcessTable(Dispatch&, const DesktopEntries&);

    /// What the window says of its application.
    static WindowIdentity identityOf(WindowID, const WindowOrigin&);
    /// The application of the window; the same for every window of one class and process.
    std::string bundleIdentifierOf(WindowID, const WindowOrigin&) const;

    /// The pair of this window's process and application; made at first use.
    Pair& pairFor(const WindowOrigin&, const std::string& bundleIdentifier);
    Pair* find(ProcessID);
    /// The installed applications changed, and with them perhaps the names.
    void refreshNames();
    /// Removes the pairs that have ended, and returns them.
    std::vector<Pair> takeEnded();
    /// A private number that no pair uses.
    ProcessID takePrivateNumber() { return ProcessID{--m_lastPrivate}; }

    /// The process has ended and its windows had time to disappear.
    Signal<std::uint32_t> processDidEnd;

private:
    using Key = std::tuple<std::optional<std::uint32_t>, std::uint32_t, std::string>;
    struct Process {
        std::unique_ptr<ProcessEnd> watch;
        WorkItem grace;
        bool isWatched = false;
    };

    std::string nameFor(const std::string& bundleIdentifier, const WindowOrigin&) const;
    bool watch(std::uint32_t process);
    void processEnded(std::uint32_t process);
    void forgetProcess(std::uint32_t process);

    Dispatch& m_dispatch;
    const DesktopEntries& m_entries;
    std::int32_t m_lastPrivate = -1; ///< -1 is no process anywhere
    std::map<Key, ProcessID> m_byKey;
    std::map<ProcessID, Pair> m_pairs;
    std::map<std::uint32_t, Process> m_processes;
};

}
