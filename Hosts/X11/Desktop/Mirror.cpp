#include "Hosts/X11/Desktop/Mirror.h"

#include <algorithm>
#include <utility>

#include <unistd.h>

#include "Hosts/Linux/Applications/DesktopEntries.h"
#include "Hosts/Linux/Desktop/ObserverRegistry.h"
#include "Hosts/Linux/PanelEnvironment.h"
#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Desktop/Coverage.h"
#include "Hosts/X11/Desktop/RequestBatch.h"
#include "Hosts/X11/Monitors.h"
#include "Quorvel/Platform/Accessibility.h"

namespace quorvel::xdg::x11 {

namespace {

/// Parents that name each other in a circle end here.
constexpr int kLongestParentChain = 16;
constexpr std::string_view kDesktopIdentifier = "x11.desktop";

/// Else it is announced as destroyed and created anew: nobody looks again at what it is.
bool isOfSameKind(const WindowRecord& a, const WindowRecord& b)
{
    return a.isStandard == b.isStandard && a.isModal == b.isModal && a.layer == b.layer
        && (a.alpha > 0) == (b.alpha > 0);
}

}

Mirror::Mirror(Connection& connection, Dispatch& dispatch, Monitors& monitors,
    PanelEnvironment& environment, DesktopEntries& entries, SharedModel& model,
    ObserverRegistry& observers)
    : m_connection(connection)
    , m_dispatch(dispatch)
    , m_monitors(monitors)
    , m_environment(environment)
    , m_model(model)
    , m_observers(observers)
    , m_root(connection)
    , m_manager(connection, dispatch)
    , m_clients(connection)
    , m_processes(dispatch, entries)
    , m_buttons(connection)
    , m_desktopProcess(m_processes.takePrivateNumber())
    , m_rootNumber(m_clients.takeNumber())
{
    m_model.write([this](DesktopModel& desktop) {
        desktop.applications[m_desktopProcess]
            = {m_desktopProcess, std::string{kDesktopIdentifier}, "Desktop", false, m_rootNumber};
    });
    connection.addEventMask(
        connection.root(), XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    m_events = connection.event.subscribe([this](auto* event) { handle(event); });
    m_turnEnded = connection.turnEnded.subscribe([this] { turnEnded(); });
    m_monitorsChanged = monitors.changed.subscribe([this] {
        m_clients.markAllDirty();
        m_isCoverageStale = true;
        scheduleUpdate();
    });
    m_entriesChanged = entries.changed.subscribe([this] {
        m_processes.refreshNames();
        m_clients.forEach([this](Client& client) {
            client.bundleIdentifier.clear();
            client.isDirty = true;
        });
        scheduleUpdate();
    });
    m_processEnded = m_processes.processDidEnd.subscribe(
        [this](std::uint32_t process) { processDidEnd(process); });
    update();
}

void Mirror::handle(const xcb_generic_event_t* event)
{
    bool concernsManager = m_manager.handle(event);
    bool concernsClients = m_clients.handle(event);
    bool endsMove = m_buttons.handle(event);
    m_needsUpdate |= concernsManager || concernsClients || endsMove;
    auto type = event->response_type & 0x7f;
    m_isUrgent |= type == XCB_DESTROY_NOTIFY && concernsClients;
    if (type != XCB_PROPERTY_NOTIFY)
        return;

    auto* change = reinterpret_cast<const xcb_property_notify_event_t*>(event);
    if (change->window == m_connection.root()) {
        m_needsUpdate |= m_root.propertyDidChange(change->atom);
        m_isUrgent |= change->atom == m_connection.atoms().netClientList;
    } else if (change->atom == m_connection.atoms().netWmIcon) {
        auto* client = m_clients.find(change->window);
        if (!client || client->bundleIdentifier.empty())
            return;
        m_changes.icons.insert(client->bundleIdentifier);
        m_needsUpdate = true;
    }
}

void Mirror::turnEnded()
{
    if (!m_needsUpdate)
        return;
    auto due = (m_isUrgent ? m_lastUrgentUpdate : m_lastUpdate) + kPace;
    auto now = m_dispatch.now();
    if (now >= due)
        update();
    else if (m_isUrgent || !m_paced.isPending())
        m_paced = m_dispatch.main().after(due - now, [this] { update(); });
}

void Mirror::scheduleUpdate()
{
    m_needsUpdate = true;
    m_next = m_dispatch.main().after(Duration{0}, [this] { update(); });
}

void Mirror::update()
{
    bool isUrgent = std::exchange(m_isUrgent, false);
    m_needsUpdate = false;
    m_paced = {};
    readAll();
    translateSpaces();
    translateClients();
    announce();
    if (m_clients.needsAncestry()) {
        // Off the way from a new window to its announcement.
        m_clients.readAncestry();
        if (m_manager.isPresent() && m_clients.read(Facet::place)) {
            translateClients();
            announce();
        }
    }
    m_lastUpdate = m_dispatch.now();
    if (isUrgent)
        m_lastUrgentUpdate = m_lastUpdate;
    if (!m_needsUpdate)
        scheduleNext();
}

void Mirror::readAll()
{
    auto now = m_dispatch.now();
    followManager();
    m_clients.removeGone([this](Client& client) { remove(client); });
    bool isPresent = m_manager.isPresent();
    if (isPresent && m_root.isStale()) {
        RequestBatch batch{m_connection.raw()};
        m_root.request(batch);
        batch.finish();
        m_root.setKeepsLastWords(true);
        if (m_root.takeListDidChange())
            m_clients.follow(m_root.clients(), m_root.currentDesktop(), now);
    }
    m_clients.settleLeaving(now);
    auto wanted = kFirstFacets | Facet::strut;
    m_clients.read(isPresent ? wanted : wanted.without(kManagerFacets));
    m_clients.removeGone([this](Client& client) { remove(client); });
}

void Mirror::followManager()
{
    m_manager.update();
    bool isPresent = m_manager.isPresent();
    if (isPresent == std::exchange(m_wasPresent, isPresent))
        return;
    if (!isPresent) {
        m_clients.cancelLeaving();
        return;
    }
    m_root.setKeepsLastWords(false);
    m_root.markAllStale();
    m_clients.markAllStale(kFirstFacets);
}

TranslationContext Mirror::context() const
{
    return {m_monitors.coordinates(), m_monitors.list(), m_root.desktopCount(),
        m_root.currentDesktop(), m_root.hasDesktops()};
}

void Mirror::translateSpaces()
{
    if (!m_manager.isPresent())
        return;
    auto count = m_root.desktopCount();
    auto names = m_root.desktopNames();
    names.resize(count);
    SpaceID active{std::uint64_t{std::min(m_root.currentDesktop(), count - 1)} + 1};
    auto [spacesChanged, activeChanged] = m_model.write([&](DesktopModel& model) {
        bool isOtherSpace = std::exchange(model.activeSpace, active) != active;
        bool areOtherSpaces = model.spaceNames != names;
        model.spaceNames = std::move(names);
        return std::pair{areOtherSpaces, isOtherSpace};
    });
    if (spacesChanged)
        m_clients.markAllDirty();
    m_changes.spaces |= spacesChanged;
    m_changes.activeSpace |= activeChanged;
    m_isCoverageStale |= spacesChanged || activeChanged;
}

void Mirror::translateClients()
{
    auto now = m_dispatch.now();
    m_showingDesktop.update(m_root.isShowingDesktop(), m_clients, now);
    m_clients.forEach([this](Client& client) {
        if (client.isDirty || client.minimizedSettlesAt)
            translate(client);
    });
    if (m_manager.isPresent())
        translateFocus();
    translateApplications();
    takeEndedApplications();
    reportMoves();
    translateStacking();
    updateCoverage();
}

void Mirror::translate(Client& client)
{
    m_showingDesktop.update(client, m_dispatch.now());
    if (client.isGone || !isReady(client))
        return;

    client.isDirty = false;
    auto record = xdg::x11::recordOf(client, m_clients.parentOf(client) != nullptr, context());
    record.owner = assign(client);
    forgetHonouredSize(client, record.frame.size());
    if (client.type == WindowType::dock)
        m_changes.reservations = true;

    auto before = m_model.write([&](DesktopModel& model) -> std::optional<WindowRecord> {
        auto [slot, isNew] = model.windows.try_emplace(record.id, record);
        if (isNew)
            return std::nullopt;
        return std::exchange(slot->second, record);
    });
    if (before && *before == record)
        return;
    m_isCoverageStale = true;
    m_touched.insert(record.owner);
    if (before)
        noteDifference(*before, record);
    else
        noteNew(record);
    client.isAnnounced = true;
}

/// A client that has obeyed once can be asked again; one that has not would not end refusing.
void Mirror::forgetHonouredSize(Client& client, Size size)
{
    auto& asked = client.askedSize;
    if (!asked || client.frame() == asked->second)
        return;
    if (size.width <= asked->first.width && size.height <= asked->first.height)
        asked.reset();
}

bool Mirror::isReady(Client& client)
{
    if (client.isAnnounced || client.desktop || !m_root.hasDesktops())
        return true;
    return m_manager.isPresent() && m_dispatch.now() >= client.firstSeen + kDesktopWait;
}

ProcessID Mirror::assign(Client& client)
{
    if (client.bundleIdentifier.empty())
        client.bundleIdentifier = m_processes.bundleIdentifierOf(client);
    auto base = client.window & ~xcb_get_setup(m_connection.raw())->resource_id_mask;
    auto& pair
        = m_processes.pairFor(m_processes.processOf(client), base, client.bundleIdentifier, client);
    pair.windows.insert(client.id);
    return pair.pid;
}

void Mirror::noteNew(const WindowRecord& window)
{
    m_changes.attention |= window.asksForAttention;
    noteLaunch(window);
    notifyApplication(window.owner, window.id, ax::windowCreated);
}

void Mirror::noteLaunch(const WindowRecord& window)
{
    auto* pair = m_processes.find(window.owner);
    bool counts = pair && window.isStandard && window.layer == 0
        && raw(window.owner) != static_cast<std::int32_t>(getpid());
    if (!counts || std::exchange(pair->isLaunched, true))
        return;
    auto record = recordOf(*pair);
    m_changes.launched.push_back(record.running());
}

void Mirror::noteDifference(const WindowRecord& before, const WindowRecord& after)
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

void Mirror::notePresence(const WindowRecord& before, const WindowRecord& after)
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

void Mirror::noteGeometry(const WindowRecord& before, const WindowRecord& after)
{
    bool moved = before.frame.origin() != after.frame.origin();
    bool resized = before.frame.size() != after.frame.size();
    if (!moved && !resized)
        return;
    auto& moves = m_moves[after.id];
    moves.moved |= moved;
    moves.resized |= resized;
}

void Mirror::reportMoves()
{
    // While the user drags, only the end counts.
    if (m_moves.empty() || m_buttons.isWaiting() || m_buttons.wait())
        return;
    for (auto& [id, moves] : std::exchange(m_moves, {})) {
        auto window = m_model.read([&](const DesktopModel& model) {
            auto* found = model.window(id);
            return found ? std::optional{*found} : std::nullopt;
        });
        if (window && moves.moved)
            notifyWindow(*window, ax::windowMoved);
        if (window && moves.resized)
            notifyWindow(*window, ax::windowResized);
    }
}

void Mirror::remove(Client& client)
{
    m_moves.erase(client.id);
    // Withdrawn, it still exists; but its end will not be seen, and its number may come back.
    if (!isOwn(client.window))
        m_connection.forgetWindow(client.window);
    auto window = m_model.write([&](DesktopModel& model) {
        model.wantedSpaces.erase(client.id);
        auto node = model.windows.extract(client.id);
        return node ? std::optional{std::move(node.mapped())} : std::nullopt;
    });
    if (!window)
        return;
    m_isCoverageStale = true;
    m_touched.insert(window->owner);
    if (auto* pair = m_processes.find(window->owner))
        pair->windows.erase(client.id);
    m_changes.reservations |= client.type == WindowType::dock;
    m_changes.attention |= window->asksForAttention;
    notifyWindow(*window, ax::elementDestroyed);
}

FocusTracker::Active Mirror::activeClient()
{
    auto active = m_root.activeWindow();
    if (active == XCB_WINDOW_NONE)
        return FocusTracker::None{};
    if (isOwn(active))
        return FocusTracker::Own{};
    auto* client = m_clients.find(active);
    if (!client || !client->isAnnounced || client->isGone)
        return FocusTracker::Unknown{};

    auto* focused = client;
    for (int i = 0; i < kLongestParentChain; ++i) {
        auto* parent = m_clients.parentOf(*focused);
        if (xdg::x11::isStandardWindow(*focused, parent) || !speaksForParent(*focused, parent))
            break;
        focused = parent;
    }
    if (!xdg::x11::isStandardWindow(*focused, m_clients.parentOf(*focused))
        || !focused->isAnnounced)
        focused = client;
    return focused->id;
}

void Mirror::translateFocus()
{
    m_focus.update(activeClient(), m_dispatch.now());
    auto window = m_focus.window();
    if (!window) {
        setFocus(m_desktopProcess, std::nullopt);
        return;
    }
    auto owner = m_model.read([&](const DesktopModel& model) {
        auto* found = model.window(*window);
        return found ? std::optional{found->owner} : std::nullopt;
    });
    if (owner)
        setFocus(*owner, *window);
}

void Mirror::setFocus(ProcessID frontmost, std::optional<WindowID> window)
{
    bool isOtherWindow = window && std::exchange(m_lastFocused, window) != window;
    if (isOtherWindow) {
        if (auto* client = m_clients.find(*window))
            client->activation = ++m_lastActivation;
        m_touched.insert(frontmost);
    }
    if (!window)
        m_changes.focusLost |= std::exchange(m_lastFocused, std::nullopt).has_value();

    auto [isOtherProcess, knownWindow] = m_model.write([&](DesktopModel& model) {
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

void Mirror::translateApplications()
{
    for (auto pid : std::exchange(m_touched, {})) {
        auto* pair = m_processes.find(pid);
        if (!pair)
            continue;
        auto record = recordOf(*pair);
        m_model.write([&](DesktopModel& model) { model.applications[pid] = std::move(record); });
    }
    if (auto pid = std::exchange(m_activated, std::nullopt)) {
        m_changes.activated = m_model.read([&](const DesktopModel& model) {
            auto* application = model.application(*pid);
            return application ? std::optional{application->running()} : std::nullopt;
        });
    }
}

ApplicationRecord Mirror::recordOf(const ProcessTable::Pair& pair)
{
    ApplicationRecord record{pair.pid, pair.bundleIdentifier, pair.name, false, std::nullopt};
    const Client* last = nullptr;
    for (auto id : pair.windows) {
        auto* client = m_clients.find(id);
        if (client && client->activation > (last ? last->activation : 0))
            last = client;
    }
    if (last)
        record.focusedWindow = last->id;
    bool isOurs = raw(pair.pid) == static_cast<std::int32_t>(getpid());
    record.isRegular = !isOurs && m_model.read([&](const DesktopModel& model) {
        return std::ranges::any_of(pair.windows, [&](WindowID id) {
            auto* window = model.window(id);
            return window && window->isStandard && window->layer == 0;
        });
    });
    return record;
}

void Mirror::takeEndedApplications()
{
    for (auto& pair : m_processes.takeEnded()) {
        auto record = recordOf(pair);
        m_model.write([&](DesktopModel& model) { model.applications.erase(pair.pid); });
        if (pair.isLaunched)
            m_changes.terminated.push_back(record.running(true));
    }
}

void Mirror::translateStacking()
{
    if (!m_root.takeStackingDidChange())
        return;
    std::vector<WindowID> order;
    auto& stacking = m_root.bottomToTop();
    for (auto window = stacking.rbegin(); window != stacking.rend(); ++window) {
        if (auto* client = m_clients.find(*window))
            order.push_back(client->id);
    }
    m_model.write([&](DesktopModel& model) { model.frontToBack = std::move(order); });
    m_isCoverageStale = true;
}

void Mirror::updateCoverage()
{
    if (!std::exchange(m_isCoverageStale, false))
        return;
    m_environment.isCovered.set(m_model.read([this](const DesktopModel& model) {
        return coveredMonitors(model, m_monitors.list(), m_monitors.coordinates());
    }));
}

void Mirror::announce()
{
    auto changes = std::exchange(m_changes, {});
    if (changes.activeSpace)
        m_environment.activeSpace.set(
            m_model.read([](const DesktopModel& model) { return model.activeSpace; }));
    for (auto& application : changes.launched)
        applicationDidLaunch.emit(application);
    m_observers.deliver(changes.notifications);
    for (auto& bundleIdentifier : changes.icons)
        iconDidChange.emit(bundleIdentifier);
    if (changes.spaces)
        spacesDidChange.emit();
    if (changes.spacesOfWindows)
        spacesOfWindowsDidChange.emit();
    if (changes.activeSpace)
        activeSpaceDidChange.emit();
    if (changes.activated)
        applicationDidActivate.emit(*changes.activated);
    if (changes.reservations)
        reservationsDidChange.emit();
    if (changes.attention)
        attentionDidChange.emit();
    if (changes.focusLost)
        focusWasLost.emit();
    for (auto& application : changes.terminated)
        applicationDidTerminate.emit(application);
}

void Mirror::scheduleNext()
{
    std::optional<Instant> next = m_manager.deadline();
    auto consider = [&](std::optional<Instant> due) {
        if (due && (!next || *due < *next))
            next = due;
    };
    consider(m_focus.deadline());
    m_clients.forEach([&](const Client& client) {
        consider(client.leavesAt);
        consider(client.minimizedSettlesAt);
        if (!client.isAnnounced && m_manager.isPresent())
            consider(client.firstSeen + kDesktopWait);
    });
    m_next = {};
    if (next) {
        auto delay = std::max(Duration{0}, *next - m_dispatch.now());
        m_next = m_dispatch.main().after(delay, [this] { update(); });
    }
}

void Mirror::processDidEnd(std::uint32_t process)
{
    m_clients.forEach([&](Client& client) {
        if (m_processes.processOf(client) != process)
            return;
        client.hasProcessEnded = true;
        client.isDirty = true;
    });
    scheduleUpdate();
}

bool Mirror::isOwn(xcb_window_t window) const
{
    auto* setup = xcb_get_setup(m_connection.raw());
    return (window & ~setup->resource_id_mask) == setup->resource_id_base;
}

void Mirror::notifyWindow(const WindowRecord& window, std::string_view name)
{
    m_changes.notifications.push_back({window.owner, window.id, window.id, name});
}

void Mirror::notifyApplication(ProcessID pid, WindowID window, std::string_view name)
{
    m_changes.notifications.push_back({pid, std::nullopt, window, name});
}

}
