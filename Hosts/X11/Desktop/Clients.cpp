#include "Hosts/X11/Desktop/Clients.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Desktop/RequestBatch.h"

namespace quorvel::xdg::x11 {

namespace {

/// A client may nest its frames as deep as it likes.
constexpr int kDeepestAncestry = 8;

}

Clients::Clients(Connection& connection) : m_connection(connection), m_reader(connection)
{
}

bool Clients::handle(const xcb_generic_event_t* event)
{
    switch (event->response_type & 0x7f) {
    case XCB_PROPERTY_NOTIFY: {
        auto* change = reinterpret_cast<const xcb_property_notify_event_t*>(event);
        return markStale(find(change->window), m_reader.facetsOf(change->atom));
    }
    case XCB_CONFIGURE_NOTIFY: {
        auto* change = reinterpret_cast<const xcb_configure_notify_event_t*>(event);
        if (isOnlyRestacked(*change))
            return true;
        return configured(change->event, change->window);
    }
    case XCB_REPARENT_NOTIFY: {
        auto* change = reinterpret_cast<const xcb_reparent_notify_event_t*>(event);
        auto* client = find(change->window);
        if (client && change->event == change->window) {
            client->container = change->parent;
            client->isAncestryStale = m_needsAncestry = true;
        }
        // What was a top level may lie in another window now.
        auto* framed = client ? nullptr : findIn(change->window);
        if (framed && change->event == change->window)
            framed->isAncestryStale = m_needsAncestry = true;
        return configured(change->event, change->window);
    }
    case XCB_UNMAP_NOTIFY: {
        auto* change = reinterpret_cast<const xcb_unmap_notify_event_t*>(event);
        if (auto* client = find(change->window))
            client->isUnmapped = true;
        return false;
    }
    case XCB_MAP_NOTIFY: {
        auto* change = reinterpret_cast<const xcb_map_notify_event_t*>(event);
        auto* client = find(change->window);
        if (!client)
            return false;
        client->isUnmapped = false;
        if (client->leavesAt)
            *client->leavesAt += kLeaveGrace; // it was the manager that left
        return false;
    }
    case XCB_DESTROY_NOTIFY:
        return destroyed(reinterpret_cast<const xcb_destroy_notify_event_t*>(event)->window);
    default:
        return false;
    }
}

/// A frame that stays where it is comes to the front, or lets another pass.
bool Clients::isOnlyRestacked(const xcb_configure_notify_event_t& change)
{
    auto* client = findIn(change.window);
    if (!client || client->topLevel != change.window || change.event != change.window)
        return false;
    Rect place{double(change.x), double(change.y), double(change.width), double(change.height)};
    return std::exchange(client->framePlace, place) == place;
}

bool Clients::configured(xcb_window_t event, xcb_window_t window)
{
    if (event != window)
        return false;
    return markStale(findIn(window), Facet::place);
}

bool Clients::destroyed(xcb_window_t window)
{
    if (auto* framed = findIn(window); framed && framed->topLevel == window)
        forgetTopLevel(*framed);
    auto* client = find(window);
    if (!client)
        return false;
    client->isGone = m_hasGone = true;
    return true;
}

bool Clients::markStale(Client* client, Facets facets)
{
    if (!client || facets.isEmpty())
        return false;
    bool isListed = !client->stale.isEmpty();
    client->stale |= facets;
    if (!isListed)
        m_stale.push_back(client);
    return true;
}

void Clients::follow(
    const std::vector<xcb_window_t>& list, std::uint32_t currentDesktop, Instant now)
{
    std::unordered_set<xcb_window_t> listed{list.begin(), list.end()};
    for (auto& [number, client] : m_byNumber) {
        if (listed.contains(client->window)) {
            client->leavesAt.reset();
            continue;
        }
        // A window that its own client unmapped is withdrawn. One that is minimised or on another
        // desktop is unmapped as well, and tells nothing.
        auto desktop = client->desktop.value_or(currentDesktop);
        bool isHere = desktop == currentDesktop || desktop == kEveryDesktop;
        bool isWithdrawn = client->isUnmapped && isHere && !client->state.isHidden;
        if (!client->leavesAt)
            client->leavesAt = now + (isWithdrawn ? kWithdrawGrace : kLeaveGrace);
    }
    for (auto window : list) {
        auto* known = find(window);
        if (!known || known->isGone)
            add(window, now);
    }
}

void Clients::add(xcb_window_t window, Instant now)
{
    if (find(window))
        return; // it was destroyed, and the manager has not noticed yet
    m_connection.addEventMask(
        window, XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    auto client = std::make_unique<Client>();
    client->window = window;
    client->id = takeNumber();
    client->firstSeen = now;
    m_stale.push_back(client.get());
    m_byWindow[window] = client.get();
    m_byNumber.emplace(client->id, std::move(client));
    markChildrenDirty(window);
}

void Clients::markChildrenDirty(xcb_window_t parent)
{
    for (auto& [number, client] : m_byNumber) {
        if (client->parent == parent)
            client->isDirty = true;
    }
}

void Clients::cancelLeaving()
{
    for (auto& [number, client] : m_byNumber)
        client->leavesAt.reset();
}

void Clients::settleLeaving(Instant now)
{
    for (auto& [number, client] : m_byNumber) {
        if (client->leavesAt && now >= *client->leavesAt)
            client->isGone = m_hasGone = true;
    }
}

void Clients::request(RequestBatch& batch, Facets wanted)
{
    m_asked = std::exchange(m_stale, {});
    for (auto* client : m_asked)
        m_reader.request(batch, *client, wanted);
}

void Clients::settleAnswers()
{
    for (auto* client : std::exchange(m_asked, {})) {
        if (client->isGone)
            m_hasGone = true;
        else if (!client->stale.isEmpty())
            m_stale.push_back(client);
        m_needsAncestry |= client->isAncestryStale && client->container != XCB_WINDOW_NONE;
    }
}

void Clients::readAncestry()
{
    RequestBatch batch{m_connection.raw()};
    requestAncestry(batch);
    batch.finish();
    settleAncestry();
}

void Clients::requestAncestry(RequestBatch& batch)
{
    m_needsAncestry = false;
    m_walks.clear();
    for (auto& [number, client] : m_byNumber) {
        if (client->container != XCB_WINDOW_NONE && std::exchange(client->isAncestryStale, false))
            m_walks.push_back({client.get(), client->window, client->container});
    }
    advanceWalks();
    requestParents(batch);
}

void Clients::settleAncestry()
{
    advanceWalks();
    for (int depth = 0; depth < kDeepestAncestry && !m_walks.empty(); ++depth) {
        RequestBatch batch{m_connection.raw()};
        requestParents(batch);
        batch.finish();
        advanceWalks();
    }
    m_walks.clear();
}

void Clients::requestParents(RequestBatch& batch)
{
    for (auto& walk : m_walks)
        batch.parent(walk.ancestor, [&](auto parent) { walk.parent = parent.value_or(0); });
}

void Clients::advanceWalks()
{
    std::erase_if(m_walks, [&](Walk& walk) {
        bool isTop = walk.parent == m_connection.root();
        if (!isTop)
            walk.ancestor = walk.parent;
        else
            setTopLevel(*walk.client, walk.ancestor);
        return isTop || walk.parent == XCB_WINDOW_NONE;
    });
}

void Clients::setTopLevel(Client& client, xcb_window_t topLevel)
{
    if (client.topLevel == topLevel)
        return;
    forgetTopLevel(client);
    client.topLevel = topLevel;
    m_topLevelsDidChange = true;
    if (topLevel == client.window)
        return;
    m_clientByTopLevel[topLevel] = client.window;
    m_connection.addEventMask(topLevel, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    markStale(&client, Facet::place); // it may have moved before this program listened
}

/// Its number may be given to another window, which has to be listened to anew.
void Clients::forgetTopLevel(Client& client)
{
    auto framed = m_clientByTopLevel.find(client.topLevel);
    if (framed != m_clientByTopLevel.end() && framed->second == client.window) {
        m_clientByTopLevel.erase(framed);
        m_connection.forgetWindow(client.topLevel);
    }
    client.topLevel = XCB_WINDOW_NONE;
    client.framePlace.reset();
}

Client* Clients::find(xcb_window_t window)
{
    auto found = m_byWindow.find(window);
    return found == m_byWindow.end() ? nullptr : found->second;
}

Client* Clients::find(WindowID number)
{
    auto found = m_byNumber.find(number);
    return found == m_byNumber.end() ? nullptr : found->second.get();
}

Client* Clients::findIn(xcb_window_t topLevel)
{
    auto framed = m_clientByTopLevel.find(topLevel);
    return find(framed == m_clientByTopLevel.end() ? topLevel : framed->second);
}

Client* Clients::parentOf(const Client& client)
{
    if (!client.parent || *client.parent == client.window)
        return nullptr;
    auto* parent = find(*client.parent);
    return parent && !parent->isGone ? parent : nullptr;
}

void Clients::forEach(const std::function<void(Client&)>& function)
{
    for (auto& [number, client] : m_byNumber)
        function(*client);
}

void Clients::removeGone(const std::function<void(Client&)>& function)
{
    if (!std::exchange(m_hasGone, false))
        return;
    std::vector<Client*> gone;
    for (auto& [number, client] : m_byNumber) {
        if (client->isGone)
            gone.push_back(client.get());
    }
    for (auto* client : gone) {
        function(*client);
        std::erase(m_stale, client);
        forgetTopLevel(*client);
        m_byWindow.erase(client->window);
        markChildrenDirty(client->window);
        m_byNumber.erase(client->id);
    }
}

void Clients::markAllStale(Facets facets)
{
    for (auto& [number, client] : m_byNumber) {
        client->isAncestryStale = true; // until the container is read
        markStale(client.get(), facets);
    }
}

void Clients::markAllDirty()
{
    for (auto& [number, client] : m_byNumber)
        client->isDirty = true;
}

}
