#include "Hosts/Linux/Desktop/DesktopTracker.h"

#include <algorithm>
#include <limits>
#include <utility>

#include <unistd.h>

#include "Hosts/Linux/Applications/DesktopEntries.h"
#include "Hosts/Linux/Desktop/ObserverRegistry.h"
#include "Quorvel/Platform/Accessibility.h"

namespace quorvel::xdg {

namespace {

/// The desktop itself has the focus when no window has.
constexpr std::string_view kDesktopIdentifier = "session.desktop";
/// Its window is on no list, so no chip is lit for it.
constexpr WindowID kDesktopWindow{std::numeric_limits<std::uint32_t>::max()};

/// Else it is announced as destroyed and created anew: nobody looks again at what it is.
bool isOfSameKind(const WindowRecord& a, const WindowRecord& b)
{
    return a.isStandard == b.isStandard && a.isModal == b.isModal && a.layer == b.layer
        && (a.alpha > 0) == (b.alpha > 0);
}

/// The most frequent change of all, which neither the screen nor the application is concerned by.
bool differsInTitleAlone(WindowRecord a, const WindowRecord& b)
{
    a.title = b.title;
    return a == b;
}

bool isOurs(ProcessID pid)
{
    return raw(pid) == static_cast<std::int32_t>(getpid());
}

}

DesktopTracker::DesktopTracker(
    Dispatch& dispatch, DesktopEntries& entries, SharedModel& model, ObserverRegistry& observers)
    : m_dispatch(dispatch)
    , m_model(model)
    , m_observers(observers)
    , m_processes(dispatch, entries)
    , m_icons(dispatch)
    , m_desktopProcess(m_processes.takePrivateNumber())
{
    m_model.write([this](DesktopModel& desktop) {
        desktop.applications[m_desktopProcess]
            = {m_desktopProcess, std::string{kDesktopIdentifier}, "Desktop", false, kDesktopWindow};
    });
    m_entriesChanged = entries.changed.subscribe([this] { entriesDidChange(); });
    m_processEnded = m_processes.processDidEnd.subscribe(
        [this](std::uint32_t process) { processDidEnd(process); });
}

WindowOrigin DesktopTracker::Known::present() const
{
    auto present = origin;
    if (hasProcessEnded)
        present.process.reset();
    return present;
}

bool DesktopTracker::setSpaces(std::vector<std::string> names, SpaceID active)
{
    auto [spacesChanged, activeChanged] = m_model.write([&](DesktopModel& model) {
        bool isOtherSpace = std::exchange(model.activeSpace, active) != active;
        bool areOtherSpaces = model.spaceNames != names;
        model.spaceNames = std::move(names);
        return std::pair{areOtherSpaces, isOtherSpace};
    });
    m_changes.spaces |= spacesChanged;
    m_changes.activeSpace |= activeChanged;
    m_layoutDidChange |= spacesChanged || activeChanged;
    return spacesChanged;
}

void DesktopTracker::setWindow(WindowRecord record, const WindowOrigin& origin)
{
    record.owner = assign(record.id, origin);
    auto before = m_model.write([&](DesktopModel& model) -> std::optional<WindowRecord> {
        auto [slot, isNew] = model.windows.try_emplace(record.id, record);
        if (isNew)
            return std::nullopt;
        record.activation = slot->second.activation;
        return std::exchange(slot->second, record);
    });
    if (before && *before == record)
        return;
    if (!before || !differsInTitleAlone(*before, record)) {
        m_layoutDidChange = true;
        m_touched.insert(record.owner);
    }
    if (before)
        noteDifference(*before, record);
    else
        noteNew(record);
}

ProcessID DesktopTracker::assign(WindowID id, const WindowOrigin& origin)
{
    auto& known = m_known[id];
    if (known.bundleIdentifier.empty() || known.origin != origin) {
        known.hasProcessEnded &= known.origin.process == origin.process;
        known.origin = origin;
        known.bundleIdentifier = m_processes.bundleIdentifierOf(id, known.present());
    }
    auto& pair = m_processes.pairFor(known.present(), known.bundleIdentifier);
    pair.windows.insert(id);
    return pair.pid;
}

std::optional<WindowIdentity> DesktopTracker::identityOf(WindowID id) const
{
    auto known = m_known.find(id);
    if (known == m_known.end())
        return std::nullopt;
    return ProcessTable::identityOf(id, known->second.present());
}

void DesktopTracker::reassign(WindowID id)
{
    auto record = recordOf(id);
    if (!record)
        return;
    auto origin = m_known[id].origin;
    setWindow(std::move(*record), origin);
}

void DesktopTracker::noteNew(const WindowRecord& window)
{
    m_changes.attention |= window.asksForAttention;
    noteLaunch(window);
    notifyApplication(window.owner, window.id, ax::windowCreated);
}

void DesktopTracker::noteLaunch(const WindowRecord& window)
{
    auto* pair = m_processes.find(window.owner);
    bool counts = pair && window.isStandard && window.layer == 0 && !isOurs(window.owner);
    if (!counts || std::exchange(pair->isLaunched, true))
        return;
    m_changes.launched.push_back(applicationOf(*pair).running());
}

void DesktopTracker::noteDifference(const WindowRecord& before, const WindowRecord& after)
{
    m_changes.spacesOfWindows |= before.space != after.space;
    m_changes.attention |= before.asksForAttention != after.asksForAttention;
    notePresence(before, after);
    if (before.owner != after.owner || !isOfSameKind(before, after))
        return;
    if (before.title != after.title)
        notifyWindow(after, ax::titleChanged);
    if (before.isMinimized != after.isMinimized) {
        notifyWindow(after, after.isMinimized ? ax::windowMiniaturized : ax::windowDeminiaturized);
        // Whoever forgot the focus of a minimised window hears of it again.
        if (!after.isMinimized && m_focus.window() == after.id)
            notifyApplication(after.owner, after.id, ax::focusedWindowChanged);
    }
    noteGeometry(before, after);
}

void DesktopTracker::notePresence(const WindowRecord& before, const WindowRecord& after)
{
    bool isOtherOwner = before.owner != after.owner;
    if (isOtherOwner) {
        m_touched.insert(before.owner);
        if (auto* pair = m_processes.find(before.owner))
            pair->windows.erase(after.id);
    }
    if (!isOtherOwner && isOfSameKind(before, after))
        return;
    notifyWindow(before, ax::elementDestroyed);
    noteNew(after);
}

void DesktopTracker::noteGeometry(const WindowRecord& before, const WindowRecord& after)
{
    bool moved = before.frame.origin() != after.frame.origin();
    bool resized = before.frame.size() != after.frame.size();
    if (!moved && !resized)
        return;
    auto& moves = m_moves[after.id];
    moves.moved |= moved;
    moves.resized |= resized;
}

void DesktopTracker::reportMoves()
{
    for (auto& [id, moves] : std::exchange(m_moves, {})) {
        auto window = recordOf(id);
        if (window && moves.moved)
            notifyWindow(*window, ax::windowMoved);
        if (window && moves.resized)
            notifyWindow(*window, ax::windowResized);
    }
}

void DesktopTracker::removeWindow(WindowID id)
{
    m_moves.erase(id);
    m_known.erase(id);
    auto window = m_model.write([&](DesktopModel& model) {
        model.wantedSpaces.erase(id);
        auto node = model.windows.extract(id);
        return node ? std::optional{std::move(node.mapped())} : std::nullopt;
    });
    if (!window)
        return;
    m_layoutDidChange = true;
    m_touched.insert(window->owner);
    if (auto* pair = m_processes.find(window->owner))
        pair->windows.erase(id);
    m_changes.attention |= window->asksForAttention;
    notifyWindow(*window, ax::elementDestroyed);
}

void DesktopTracker::iconDidChange(WindowID id)
{
    auto known = m_known.find(id);
    if (known != m_known.end())
        m_icons.note(known->second.bundleIdentifier);
}

void DesktopTracker::setActive(const FocusTracker::Active& active)
{
    m_focus.update(active, m_dispatch.now());
    auto window = m_focus.window();
    if (!window) {
        setFocus(m_desktopProcess, std::nullopt);
        return;
    }
    if (auto record = recordOf(*window))
        setFocus(record->owner, *window);
}

void DesktopTracker::setFocus(ProcessID frontmost, std::optional<WindowID> window)
{
    bool isOtherWindow = window && std::exchange(m_lastFocused, window) != window;
    if (isOtherWindow)
        m_touched.insert(frontmost);
    if (!window)
        m_changes.focusLost |= std::exchange(m_lastFocused, std::nullopt).has_value();

    auto [isOtherProcess, knownWindow] = m_model.write([&](DesktopModel& model) {
        if (isOtherWindow)
            model.windows[*window].activation = ++m_lastActivation;
        bool isOther = std::exchange(model.frontmost, frontmost) != frontmost;
        auto* application = model.application(frontmost);
        return std::pair{isOther, application ? application->focusedWindow : std::nullopt};
    });
    if (isOtherProcess)
        m_activated = frontmost;
    // It may be known already as the one to follow a window that was closed.
    if (isOtherWindow && (knownWindow != window || !isOtherProcess))
        notifyApplication(frontmost, *window, ax::focusedWindowChanged);
}

void DesktopTracker::setFrontToBack(std::vector<WindowID> order)
{
    m_model.write([&](DesktopModel& model) { model.frontToBack = std::move(order); });
    m_layoutDidChange = true;
}

void DesktopTracker::updateApplications()
{
    for (auto pid : std::exchange(m_touched, {})) {
        auto* pair = m_processes.find(pid);
        if (!pair)
            continue;
        auto record = applicationOf(*pair);
        m_model.write([&](DesktopModel& model) { model.applications[pid] = std::move(record); });
    }
    if (auto pid = std::exchange(m_activated, std::nullopt)) {
        m_changes.activated = m_model.read([&](const DesktopModel& model) {
            auto* application = model.application(*pid);
            return application ? std::optional{application->running()} : std::nullopt;
        });
    }
}

ApplicationRecord DesktopTracker::applicationOf(const ProcessTable::Pair& pair) const
{
    ApplicationRecord record{pair.pid, pair.bundleIdentifier, pair.name, false, std::nullopt};
    m_model.read([&](const DesktopModel& model) {
        record.focusedWindow = model.lastActive(pair.windows);
        record.isRegular = !isOurs(pair.pid) && std::ranges::any_of(pair.windows, [&](WindowID id) {
            auto* window = model.window(id);
            return window && window->isStandard && window->layer == 0;
        });
    });
    return record;
}

void DesktopTracker::takeEndedApplications()
{
    for (auto& pair : m_processes.takeEnded()) {
        auto record = applicationOf(pair);
        m_model.write([&](DesktopModel& model) { model.applications.erase(pair.pid); });
        if (pair.isLaunched)
            m_changes.terminated.push_back(record.running(true));
    }
}

void DesktopTracker::announce()
{
    updateApplications();
    takeEndedApplications();
    auto changes = std::exchange(m_changes, {});
    for (auto& application : changes.launched)
        applicationDidLaunch.emit(application);
    m_observers.deliver(changes.notifications);
    m_icons.announce();
    if (changes.spaces)
        spacesDidChange.emit();
    if (changes.spacesOfWindows)
        spacesOfWindowsDidChange.emit();
    if (changes.activeSpace)
        activeSpaceDidChange.emit();
    if (changes.activated)
        applicationDidActivate.emit(*changes.activated);
    if (changes.attention)
        attentionDidChange.emit();
    if (changes.focusLost)
        focusWasLost.emit();
    for (auto& application : changes.terminated)
        applicationDidTerminate.emit(application);
}

void DesktopTracker::processDidEnd(std::uint32_t process)
{
    std::vector<WindowID> left;
    for (auto& [id, known] : m_known) {
        if (known.origin.process != process)
            continue;
        known.hasProcessEnded = true;
        left.push_back(id);
    }
    for (auto id : left)
        reassign(id);
    hasNews.emit();
}

void DesktopTracker::entriesDidChange()
{
    m_processes.refreshNames();
    m_model.read([this](const DesktopModel& model) {
        for (auto& [pid, application] : model.applications)
            m_touched.insert(pid);
    });
    std::vector<WindowID> all;
    for (auto& [id, known] : m_known) {
        known.bundleIdentifier.clear();
        all.push_back(id);
    }
    for (auto id : all)
        reassign(id);
    hasNews.emit();
}

std::optional<WindowRecord> DesktopTracker::recordOf(WindowID id) const
{
    return m_model.read([&](const DesktopModel& model) {
        auto* found = model.window(id);
        return found ? std::optional{*found} : std::nullopt;
    });
}

void DesktopTracker::notifyWindow(const WindowRecord& window, std::string_view name)
{
    m_changes.notifications.push_back({window.owner, window.id, window.id, name});
}

void DesktopTracker::notifyApplication(ProcessID pid, WindowID window, std::string_view name)
{
    m_changes.notifications.push_back({pid, std::nullopt, window, name});
}

}
