#include "Hosts/X11/Capture/DrawingWatch.h"

#include <utility>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/EventWindow.h"

namespace quorvel::xdg::x11 {

bool DrawingWatch::hasDamage(xcb_connection_t* connection)
{
    const auto* extension = xcb_get_extension_data(connection, &xcb_damage_id);
    if (!extension || !extension->present)
        return false;
    // The server refuses all else of the extension to who has not asked for its version.
    auto cookie
        = xcb_damage_query_version(connection, XCB_DAMAGE_MAJOR_VERSION, XCB_DAMAGE_MINOR_VERSION);
    xcb_discard_reply(connection, cookie.sequence);
    return true;
}

DrawingWatch::DrawingWatch(Connection& connection, Holder holder)
    : m_connection(connection)
    , m_holder(std::move(holder))
    , m_event(static_cast<std::uint8_t>(
          xcb_get_extension_data(connection.raw(), &xcb_damage_id)->first_event
          + XCB_DAMAGE_NOTIFY))
    , m_events(connection.event.subscribe([this](auto* event) { handle(event); }))
{
}

DrawingWatch::~DrawingWatch() = default;

DrawingWatch::Watched::Watched(DrawingWatch& owner_, xcb_window_t client_)
    : owner(owner_.m_weak.reference())
    , client(client_)
{
    owner_.begin(client);
}

DrawingWatch::Watched::~Watched()
{
    if (auto* watch = owner.get())
        watch->end(client);
}

std::optional<Subscription> DrawingWatch::watch(xcb_window_t client, std::function<void()> onDrawn)
{
    const auto found = m_watched.find(client);
    auto watched = found == m_watched.end() ? nullptr : found->second.lock();
    if (!watched) {
        if (m_watched.size() >= kMostWatched)
            return {};
        watched = std::make_shared<Watched>(*this, client);
        m_watched[client] = watched;
    }
    auto drawn = watched->drawn.subscribe(std::move(onDrawn));
    return Subscription{std::make_shared<Watcher>(Watcher{std::move(watched), std::move(drawn)})};
}

void DrawingWatch::begin(xcb_window_t client)
{
    const auto damage = xcb_generate_id(m_connection.raw());
    xcb_damage_create(m_connection.raw(), damage, client, XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
    m_holder.hold(client);
    const std::scoped_lock lock{m_mutex};
    m_damages[client] = damage;
}

void DrawingWatch::end(xcb_window_t client)
{
    m_watched.erase(client);
    m_holder.letGo(client);
    const std::scoped_lock lock{m_mutex};
    xcb_damage_destroy(m_connection.raw(), m_damages[client]);
    m_damages.erase(client);
}

xcb_damage_damage_t DrawingWatch::damageOf(xcb_window_t client) const
{
    const std::scoped_lock lock{m_mutex};
    const auto found = m_damages.find(client);
    return found == m_damages.end() ? xcb_damage_damage_t{} : found->second;
}

void DrawingWatch::handle(const xcb_generic_event_t* event)
{
    if ((event->response_type & 0x7f) != m_event)
        return;
    const auto found = m_watched.find(as<xcb_damage_notify_event_t>(event).drawable);
    if (auto watched = found == m_watched.end() ? nullptr : found->second.lock())
        watched->drawn.emit();
}

}
