#include "Quorvel/Skylight/WindowScanner.h"

#include <algorithm>

#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Platform/Workspace.h"

namespace quorvel {

namespace {

bool isOlder(const std::pair<WindowID, SpaceID>& entry, WindowID window)
{
    return entry.first < window;
}

}

void WindowSpacesMap::sort()
{
    std::sort(m_entries.begin(), m_entries.end());
}

std::set<SpaceID> WindowSpacesMap::spaces(WindowID window) const
{
    std::set<SpaceID> spaces;
    auto entry = std::lower_bound(m_entries.begin(), m_entries.end(), window, isOlder);
    for (; entry != m_entries.end() && entry->first == window; ++entry)
        spaces.insert(spaces.end(), entry->second);
    return spaces;
}

WindowScanner::WindowScanner(Accessibility& accessibility, WindowServer& windowServer,
    Displays& displays, const Workspace& workspace, const Trace& trace)
    : m_calls(accessibility)
    , m_windowServer(windowServer)
    , m_spaceWindows(windowServer, displays)
    , m_workspace(workspace)
    , m_trace(trace)
{
}

WindowSpacesMap WindowScanner::buildWindowSpacesMap(
    const std::vector<SpaceWindows::Info>& spaces) const
{
    WindowSpacesMap map;
    if (spaces.empty())
        map.setUnknown();
    for (auto& info : spaces) {
        auto windows = m_windowServer.windowsOfSpaces({info.spaceID}, kSpaceWindowOptions);
        if (!windows)
            map.addUnlisted(info.spaceID);
        for (auto window : windows.value_or(std::vector<WindowID>{}))
            map.add(window, info.spaceID);
    }
    map.sort();
    return map;
}

std::set<SpaceID> WindowScanner::querySpaces(WindowID window) const
{
    auto spaces = m_windowServer.spacesOfWindows(kAllSpacesMask, {window});
    return spaces ? std::set<SpaceID>(spaces->begin(), spaces->end()) : std::set<SpaceID>{};
}

WindowScanner::SpacesMoment WindowScanner::lookAtSpaces(const SpaceWindows::Answer& answer) const
{
    return {buildWindowSpacesMap(answer.spaces), answer.shown};
}

WindowScanner::Moment WindowScanner::lookAt(const std::set<ProcessID>& pids) const
{
    Moment moment;
    moment.spaces = lookAtSpaces();
    moment.eligiblePIDs = dockEligibleOwnerPIDs(m_workspace);
    for (auto pid : pids)
        moment.windowsByOwner[pid];
    auto keep = [&](const CGWindowInfo& window) {
        if (window.ownerPID && pids.contains(*window.ownerPID))
            moment.windowsByOwner[*window.ownerPID].push_back(window);
    };
    moment.listing = pids.size() == 1
        ? m_windowServer.enumerateWindows(*pids.begin(), kWindowListExcludeDesktopElements, keep)
        : m_windowServer.enumerateWindows(kWindowListExcludeDesktopElements, keep);
    return moment;
}

WindowScanner::Moment WindowScanner::lookAtAll(SpacesMoment spaces) const
{
    Moment moment;
    moment.spaces = std::move(spaces);
    moment.eligiblePIDs = dockEligibleOwnerPIDs(m_workspace);
    moment.listing = m_windowServer.enumerateWindows(
        kWindowListExcludeDesktopElements, [&](const CGWindowInfo& window) {
            if (window.ownerPID && moment.eligiblePIDs.contains(*window.ownerPID))
                moment.windowsByOwner[*window.ownerPID].push_back(window);
        });
    return moment;
}

PIDWindowScan WindowScanner::scan(ProcessID pid, const Moment& moment)
{
    AXCalls::Scan hungOnlyOnce(m_calls);
    PIDWindowScan result;
    result.hasFailed = moment.listing == Listing::failed;
    result.isDockEligibleOwner = moment.eligiblePIDs.contains(pid);
    if (result.hasFailed)
        return result;
    auto owned = moment.windowsByOwner.find(pid);
    if (owned == moment.windowsByOwner.end() || owned->second.empty())
        return result;

    auto [metadataByID, hasAXWindowList] = copyAXWindowMetadataByID(pid);
    auto bundleID = bundleIdentifier(pid);
    for (auto& window : owned->second) {
        if (!window.windowNumber)
            continue;
        if (window.layer == 0)
            result.listedWindowIDs.insert(*window.windowNumber);
        if (!result.isDockEligibleOwner)
            continue;
        if (admit(window, metadataByID, hasAXWindowList, moment, result))
            result.candidates.at(*window.windowNumber).bundleID = bundleID;
    }
    return result;
}

bool WindowScanner::admit(const CGWindowInfo& window, const AXWindowMetadataByID& metadataByID,
    bool hasAXWindowList, const Moment& moment, PIDWindowScan& result)
{
    if (auto filter = windowFilter(window); filter != WindowFilter::passed) {
        if (m_trace.isOn())
            logRejection(window, rejectionReason(filter, window));
        return false;
    }
    auto id = *window.windowNumber;
    auto admission = cgWindowAXAdmission(id, metadataByID, hasAXWindowList);
    if (admission.rejectionReason) {
        logRejection(window, *admission.rejectionReason);
        if (admission.isSoft)
            result.softlyRejectedWindowIDs.insert(id);
        return false;
    }
    auto metadata = metadataByID.find(id);
    bool isKnown = metadata != metadataByID.end();
    ScannedWindowCandidate candidate;
    candidate.appName = window.ownerName.value_or(tr("Unknown"));
    if (isKnown)
        candidate.title = metadata->second.title;
    if (!candidate.title)
        candidate.title = readTitleFromAX(*window.ownerPID, id);
    candidate.frame = *window.bounds;
    candidate.spaces = moment.spaces.windows.spaces(id);
    candidate.unlistedSpaces = moment.spaces.windows.unlistedSpaces();
    candidate.isAXConfirmed = admission.isConfirmed;
    if (isKnown)
        candidate.isMinimized = metadata->second.isMinimized;
    // The lists of the spaces leave minimised windows out.
    bool mayBeUnlisted
        = candidate.isMinimized.value_or(false) || !moment.spaces.windows.isComplete();
    if (candidate.spaces.empty() && mayBeUnlisted)
        candidate.spaces = querySpaces(id);
    return result.candidates.emplace(id, std::move(candidate)).second;
}

void WindowScanner::logRejection(const CGWindowInfo& window, const std::string& reason) const
{
    if (!m_trace.isOn())
        return;
    m_trace.line("rejected id={} owner={} title={} reason={}", orNil(window.windowNumber),
        sanitizeLogField(window.ownerName), sanitizeLogField(window.windowName),
        sanitizeLogField(reason));
}

std::pair<AXWindowMetadataByID, bool> WindowScanner::copyAXWindowMetadataByID(ProcessID pid)
{
    AXWindowMetadataByID metadataByID;
    auto elements = m_calls.windows(pid);
    if (!elements)
        return {std::move(metadataByID), false};
    for (auto& element : *elements) {
        auto id = m_calls.windowID(pid, element);
        if (!id)
            continue;
        auto metadata = readMetadata(pid, element);
        // Half an answer would make a window of another kind of it, and take its chip away.
        if (m_calls.hasTimedOut(pid))
            break;
        metadataByID.insert_or_assign(*id, std::move(metadata));
    }
    return {std::move(metadataByID), true};
}

AXWindowMetadata WindowScanner::readMetadata(ProcessID pid, const AXElement& element)
{
    return {
        .title = m_calls.read<std::string>(pid, element, ax::title),
        .role = m_calls.read<std::string>(pid, element, ax::role),
        .subrole = m_calls.read<std::string>(pid, element, ax::subrole),
        .isModal = m_calls.read<bool>(pid, element, ax::modal),
        .isMinimized = m_calls.read<bool>(pid, element, ax::minimized),
    };
}

std::optional<std::string> WindowScanner::readTitle(ProcessID pid, const AXElement& element)
{
    return m_calls.read<std::string>(pid, element, ax::title);
}

std::optional<std::string> WindowScanner::readTitleFromAX(ProcessID pid, WindowID window)
{
    auto elements = m_calls.windows(pid);
    if (!elements)
        return {};
    for (auto& element : *elements) {
        if (m_calls.windowID(pid, element) == window)
            return readTitle(pid, element);
    }
    return {};
}

std::optional<Rect> WindowScanner::readFrame(ProcessID pid, const AXElement& element)
{
    auto position = m_calls.read<Point>(pid, element, ax::position);
    auto size = m_calls.read<Size>(pid, element, ax::size);
    if (!position || !size)
        return {};
    return Rect::from(*position, *size);
}

std::optional<std::string> WindowScanner::bundleIdentifier(ProcessID pid) const
{
    auto application = m_workspace.runningApplication(pid);
    return application ? application->bundleIdentifier : std::nullopt;
}

}
