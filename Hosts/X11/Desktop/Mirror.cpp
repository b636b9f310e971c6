#include "Hosts/X11/Desktop/Mirror.h"

#include <algorithm>
#include <utility>

#include "Hosts/Linux/Desktop/DesktopTracker.h"
#include "Hosts/Linux/PanelEnvironment.h"
#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Desktop/Coverage.h"
#include "Hosts/X11/Desktop/RequestBatch.h"
#include "Hosts/X11/Monitors.h"

namespace quorvel::xdg::x11 {

namespace {

/// Parents that name each other in a circle end here.
constexpr int kLongestParentChain = 16;
constexpr Facets kAllFacets = kFirstFacets | Facet::strut;
/// The list; what is said of a new window; a second question that an answer led to. None leads
/// further.
constexpr int kReadPasses = 4;

}

Mirror::Mirror(Connection& connection, Dispatch& dispatch, Monitors& monitors,
    PanelEnvironment& environment, const SharedModel& model, DesktopTracker& tracker)
    : m_connection(connection)
    , m_dispatch(dispatch)
    , m_monitors(monitors)
    , m_environment(environment)
    , m_model(model)
    , m_tracker(tracker)
    , m_root(connection)
    , m_manager(connection, dispatch)
    , m_clients(connection)
    , m_buttons(connection)
{
    connection.addEventMask(
        connection.root(), XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    m_events = connection.event.subscribe([this](auto* event) { handle(event); });
    m_turnEnded = connection.turnEnded.subscribe([this] { turnEnded(); });
    m_monitorsChanged = monitors.changed.subscribe([this] {
        m_clients.markAllDirty();
        m_isCoverageStale = true;
        scheduleUpdate();
    });
    m_trackerHasNews = tracker.hasNews.subscribe([this] { scheduleUpdate(); });
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
    if (type == XCB_CONFIGURE_NOTIFY && concernsClients)
        m_root.markStackingStale();
    if (type != XCB_PROPERTY_NOTIFY)
        return;

    auto* change = reinterpret_cast<const xcb_property_notify_event_t*>(event);
    if (change->window == m_connection.root()) {
        m_needsUpdate |= m_root.propertyDidChange(change->atom);
        m_isUrgent |= change->atom == m_connection.atoms().netClientList;
    } else if (change->atom == m_connection.atoms().netWmIcon) {
        auto* client = m_clients.find(change->window);
        if (!client)
            return;
        m_tracker.iconDidChange(client->id);
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
        return update();
    if (m_paced.isPending() && m_pacedDue <= due)
        return;
    m_pacedDue = due;
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
    m_environment.activeSpace.set(
        m_model.read([](const DesktopModel& model) { return model.activeSpace; }));
    m_tracker.announce();
    m_environment.isShowingDesktop.set(m_root.isShowingDesktop());
    if (std::exchange(m_reservationsDidChange, false))
        reservationsDidChange.emit();
    if (!m_clients.needsAncestry())
        m_ancestry = {};
    else if (!m_ancestry.isPending())
        m_ancestry = m_dispatch.main().after(kAncestryDelay, [this] { update(); });
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
    readTogether(now, true);
    for (int pass = 1; pass < kReadPasses && (isRootStale() || m_clients.hasStale()); ++pass)
        readTogether(now, false);
    m_clients.settleLeaving(now);
    m_clients.removeGone([this](Client& client) { remove(client); });
}

bool Mirror::isRootStale() const
{
    return m_manager.isPresent() && m_root.isStale();
}

void Mirror::readTogether(Instant now, bool isFirst)
{
    bool isPresent = m_manager.isPresent();
    bool listIsStale = isPresent && m_root.isListStale();
    RequestBatch batch{m_connection.raw()};
    // Only of those that have their chip already.
    if (isFirst && m_clients.needsAncestry())
        m_clients.requestAncestry(batch);
    if (isPresent)
        m_root.request(batch);
    if (!listIsStale)
        m_clients.request(batch, isPresent ? kAllFacets : kAllFacets.without(kManagerFacets));
    batch.finish();
    m_clients.settleAnswers();
    m_clients.settleAncestry();
    // The order is asked for when their frames are listened to, or a change could be missed.
    if (m_clients.takeTopLevelsDidChange())
        m_root.markStackingStale();
    if (!isPresent)
        return;
    m_root.setKeepsLastWords(true);
    if (m_root.takeSwitchesDidChange())
        m_clients.markAllDirty();
    if (m_root.takeListDidChange())
        m_clients.follow(m_root.clients(), m_root.currentDesktop(), now);
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
        m_root.currentDesktop(), m_root.hasDesktops(), m_root.switches()};
}

void Mirror::translateSpaces()
{
    if (!m_manager.isPresent())
        return;
    auto count = m_root.desktopCount();
    auto names = m_root.desktopNames();
    names.resize(count);
    SpaceID active{std::uint64_t{std::min(m_root.currentDesktop(), count - 1)} + 1};
    if (m_tracker.setSpaces(std::move(names), active))
        m_clients.markAllDirty();
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
        m_tracker.setActive(activeClient());
    // While the user drags, only the end counts.
    if (m_tracker.hasMoves() && !m_buttons.isWaiting() && !m_buttons.wait())
        m_tracker.reportMoves();
    translateStacking();
    updateCoverage();
}

void Mirror::translate(Client& client)
{
    m_showingDesktop.update(client, m_dispatch.now());
    if (client.isGone || !isReady(client))
        return;

    client.isDirty = false;
    auto* parent = m_clients.parentOf(client);
    auto record = xdg::x11::recordOf(client, parent != nullptr, context());
    if (parent)
        record.parent = parent->id;
    m_reservationsDidChange |= client.type == WindowType::dock;
    if (std::exchange(client.hasOtherIcon, false) && client.isAnnounced)
        m_tracker.iconDidChange(client.id);
    client.isAnnounced = true;
    auto clientMask = xcb_get_setup(m_connection.raw())->resource_id_mask;
    m_tracker.setWindow(std::move(record), originOf(client, clientMask));
}

bool Mirror::isReady(Client& client)
{
    if (client.isAnnounced || client.desktop || !m_root.hasDesktops())
        return true;
    return m_manager.isPresent() && m_dispatch.now() >= client.firstSeen + kDesktopWait;
}

void Mirror::remove(Client& client)
{
    // Withdrawn, it still exists; but its end will not be seen, and its number may come back.
    if (!isOwn(client.window))
        m_connection.forgetWindow(client.window);
    m_reservationsDidChange |= client.isAnnounced && client.type == WindowType::dock;
    m_tracker.removeWindow(client.id);
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

void Mirror::translateStacking()
{
    if (!m_root.takeStackingDidChange())
        return;
    std::vector<WindowID> order;
    auto& stacking = m_root.bottomToTop();
    for (auto window = stacking.rbegin(); window != stacking.rend(); ++window) {
        if (auto* client = m_clients.findIn(*window))
            order.push_back(client->id);
    }
    m_tracker.setFrontToBack(std::move(order));
}

void Mirror::updateCoverage()
{
    bool isStale = m_tracker.takeLayoutDidChange();
    if (!std::exchange(m_isCoverageStale, false) && !isStale)
        return;
    m_environment.isCovered.set(m_model.read([this](const DesktopModel& model) {
        return coveredMonitors(model, m_monitors.list(), m_monitors.coordinates());
    }));
}

void Mirror::scheduleNext()
{
    std::optional<Instant> next = m_manager.deadline();
    auto consider = [&](std::optional<Instant> due) {
        if (due && (!next || *due < *next))
            next = due;
    };
    consider(m_tracker.deadline());
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

bool Mirror::isOwn(xcb_window_t window) const
{
    return m_connection.isOwn(window);
}

}
