#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "Quorvel/Platform/Geometry.h"
#include "Quorvel/Platform/Trace.h"
#include "Quorvel/Skylight/AXCalls.h"
#include "Quorvel/Skylight/ChipRule.h"
#include "Quorvel/Skylight/Minimal.h"
#include "Quorvel/Skylight/SpaceWindows.h"

namespace quorvel {

/// Which windows are on which spaces, at one moment.
class WindowSpacesMap {
public:
    void add(WindowID window, SpaceID space) { m_entries.emplace_back(window, space); }
    /// The list of spaces is unknown.
    void setUnknown() { m_isUnknown = true; }
    /// The windows of this space could not be listed.
    void addUnlisted(SpaceID space) { m_unlisted.insert(space); }
    /// Call once, after the last `add`.
    void sort();
    /// Empty for a window on no space, or only on spaces that could not be listed.
    std::set<SpaceID> spaces(WindowID) const;
    const std::set<SpaceID>& unlistedSpaces() const { return m_unlisted; }
    bool isComplete() const { return !m_isUnknown && m_unlisted.empty(); }

private:
    bool m_isUnknown = false;
    std::set<SpaceID> m_unlisted;
    std::vector<std::pair<WindowID, SpaceID>> m_entries;
};

/// One window that survived the scan filters.
struct ScannedWindowCandidate {
    std::string appName;
    std::optional<std::string> bundleID;
    std::optional<std::string> title; ///< absent when unknown
    Rect frame;
    std::set<SpaceID> spaces;
    std::set<SpaceID> unlistedSpaces; ///< it may be on these too
    bool isAXConfirmed = false;
    std::optional<bool> isMinimized; ///< absent when unknown
};

/// The result of looking at one process.
struct PIDWindowScan {
    /// The windows could not be listed: nothing is known about any of them.
    bool hasFailed = false;
    std::map<WindowID, ScannedWindowCandidate> candidates;
    /// Every window that the window server lists at layer 0, before any other filter.
    std::set<WindowID> listedWindowIDs;
    /// Listed, but currently not in the application's accessibility list.
    std::set<WindowID> softlyRejectedWindowIDs;
    bool isDockEligibleOwner = false;
};

/// Looks at processes through the window server, the accessibility tree and the spaces, and keeps
/// no memory of the results. Main thread; each look waits at most one messaging timeout per hung
/// process.
class WindowScanner {
public:
    struct SpacesMoment {
        WindowSpacesMap windows;
        std::vector<SpaceID> shown; ///< one on each display
    };

    /// What a look at several processes shares: read once, not once per process.
    struct Moment {
        Listing listing = Listing::complete;
        SpacesMoment spaces;
        std::set<ProcessID> eligiblePIDs;
        std::map<ProcessID, std::vector<CGWindowInfo>> windowsByOwner;
    };

    WindowScanner(Accessibility&, WindowServer&, Displays&, const Workspace&, const Trace&);

    AXCalls& calls() { return m_calls; }
    const SpaceWindows& spaceWindows() const { return m_spaceWindows; }

    /// The windows of these processes.
    Moment lookAt(const std::set<ProcessID>&) const;
    /// The windows of every eligible process.
    Moment lookAtAll(SpacesMoment) const;
    Moment lookAtAll() const { return lookAtAll(lookAtSpaces()); }
    SpacesMoment lookAtSpaces() const { return lookAtSpaces(m_spaceWindows.ask()); }
    SpacesMoment lookAtSpaces(const SpaceWindows::Answer&) const;

    PIDWindowScan scan(ProcessID, const Moment&);
    PIDWindowScan scanWindows(ProcessID pid) { return scan(pid, lookAt({pid})); }

    /// What a scan finds of this window: each rule that it meets, and the first that it does not.
    std::vector<ChipRuleAnswer> judge(const CGWindowInfo&);

    /// The map, and whether "AXWindows" could be read.
    std::pair<AXWindowMetadataByID, bool> copyAXWindowMetadataByID(ProcessID);
    AXWindowMetadata readMetadata(ProcessID, const AXElement&);
    std::optional<std::string> readTitle(ProcessID, const AXElement&);
    std::optional<Rect> readFrame(ProcessID, const AXElement&);

    WindowSpacesMap buildWindowSpacesMap(const std::vector<SpaceWindows::Info>&) const;
    /// Asks for one window at a time, since asking for several returns the union.
    std::set<SpaceID> querySpaces(WindowID) const;

private:
    std::optional<std::string> readTitleFromAX(ProcessID, WindowID);
    std::optional<std::string> bundleIdentifier(ProcessID) const;
    void logRejection(const CGWindowInfo&, const std::string& reason) const;
    std::vector<ChipRuleAnswer> judgeOwner(const CGWindowInfo&) const;
    bool admit(const CGWindowInfo&, const AXWindowMetadataByID&, bool hasAXWindowList,
        const Moment&, PIDWindowScan&);

    AXCalls m_calls;
    WindowServer& m_windowServer;
    SpaceWindows m_spaceWindows;
    const Workspace& m_workspace;
    const Trace& m_trace;
};

}
