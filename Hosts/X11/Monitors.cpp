#include "Hosts/X11/Monitors.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include <xcb/randr.h>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/MonitorFacts.h"
#include "Hosts/X11/Reply.h"

namespace quorvel::xdg::x11 {

namespace {

constexpr std::uint32_t kResourceWords = 16384;

bool hasRandr(xcb_connection_t* connection)
{
    auto* extension = xcb_get_extension_data(connection, &xcb_randr_id);
    return extension && extension->present;
}

double scaleFrom(const xcb_get_property_reply_t* resources)
{
    if (!resources || resources->format != 8)
        return 1;
    return scaleFromResources({static_cast<const char*>(xcb_get_property_value(resources)),
        static_cast<std::size_t>(xcb_get_property_value_length(resources))});
}

std::optional<std::string> identifierFrom(const xcb_randr_get_output_property_reply_t* reply)
{
    if (!reply || reply->format != 8)
        return std::nullopt;
    return identifierFromEdid({xcb_randr_get_output_property_data(reply),
        static_cast<std::size_t>(xcb_randr_get_output_property_data_length(reply))});
}

/// One monitor of the server's answer with the two questions that it leads to.
struct Asked {
    const xcb_randr_monitor_info_t* info;
    xcb_get_atom_name_cookie_t name;
    std::optional<xcb_randr_get_output_property_cookie_t> edid;
};

std::string nameOf(xcb_connection_t* connection, xcb_get_atom_name_cookie_t cookie)
{
    auto reply = owned(xcb_get_atom_name_reply(connection, cookie, nullptr));
    if (!reply)
        return "monitor";
    return {xcb_get_atom_name_name(reply.get()),
        static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get()))};
}

std::vector<Asked> askAbout(
    xcb_connection_t* connection, const xcb_randr_get_monitors_reply_t* reply, xcb_atom_t edid)
{
    std::vector<Asked> asked;
    auto entry = xcb_randr_get_monitors_monitors_iterator(reply);
    for (; entry.rem > 0; xcb_randr_monitor_info_next(&entry)) {
        asked.push_back({entry.data, xcb_get_atom_name(connection, entry.data->name), {}});
        bool hasOutput = xcb_randr_monitor_info_outputs_length(entry.data) > 0;
        if (hasOutput && edid != XCB_ATOM_NONE) {
            asked.back().edid = xcb_randr_get_output_property(connection,
                *xcb_randr_monitor_info_outputs(entry.data), edid, XCB_ATOM_ANY, 0, kEdidBlock / 4,
                0, 0);
        }
    }
    return asked;
}

/// The primary one first, the others in the server's order.
std::vector<Monitor> monitorsFrom(xcb_connection_t* connection,
    const xcb_randr_get_monitors_reply_t* reply, xcb_atom_t edidAtom, RefreshRates& rates)
{
    std::vector<Monitor> monitors;
    std::set<std::string> taken;
    const auto all = askAbout(connection, reply, edidAtom);
    rates.askForAreas();
    for (auto& asked : all) {
        auto name = nameOf(connection, asked.name);
        std::optional<std::string> edid;
        if (asked.edid) {
            edid = identifierFrom(
                owned(xcb_randr_get_output_property_reply(connection, *asked.edid, nullptr)).get());
        }
        auto identifier = edid.value_or(name);
        // Two monitors of one model may give the same number.
        if (!taken.insert(identifier).second)
            taken.insert(identifier += "-" + name);
        auto& info = *asked.info;
        const Rect pixels{double(info.x), double(info.y), double(info.width), double(info.height)};
        Monitor monitor{
            DisplayNumber{info.name}, std::move(identifier), pixels, rates.at(pixels.centre())};
        monitors.insert(info.primary ? monitors.begin() : monitors.end(), std::move(monitor));
    }
    return monitors;
}

}

bool hasMonitorBelow(const Rect& monitor, const std::vector<Monitor>& all)
{
    return std::ranges::any_of(all, [&](const Monitor& other) {
        return other.pixels.y >= monitor.maxY() && other.pixels.x < monitor.maxX()
            && monitor.x < other.pixels.maxX();
    });
}

Monitors::Monitors(Connection& connection, Dispatch& dispatch, const Published<DesktopLooks>& looks)
    : m_connection(connection)
    , m_dispatch(dispatch)
    , m_looks(looks)
{
    connection.addEventMask(
        connection.root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE);
    std::optional<std::uint8_t> randrEvent;
    if (hasRandr(connection.raw())) {
        randrEvent = xcb_get_extension_data(connection.raw(), &xcb_randr_id)->first_event;
        xcb_randr_select_input(connection.raw(), connection.root(),
            XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE
                | XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
    }
    m_events = connection.event.subscribe([this, randrEvent](const xcb_generic_event_t* event) {
        int kind = event->response_type & 0x7f;
        if (kind == XCB_CONFIGURE_NOTIFY) {
            auto* change = reinterpret_cast<const xcb_configure_notify_event_t*>(event);
            m_isStale |= change->window == m_connection.root();
        } else if (kind == XCB_PROPERTY_NOTIFY) {
            auto* change = reinterpret_cast<const xcb_property_notify_event_t*>(event);
            m_isStale |= change->window == m_connection.root()
                && change->atom == m_connection.atoms().resourceManager;
        } else if (randrEvent) {
            m_isStale |= kind == *randrEvent + XCB_RANDR_SCREEN_CHANGE_NOTIFY
                || kind == *randrEvent + XCB_RANDR_NOTIFY;
        }
    });
    m_turnEnded = connection.turnEnded.subscribe([this] {
        if (std::exchange(m_isStale, false))
            settle();
    });
    m_looksChanged = looks.subscribe([this](auto&) { settle(); });
    read();
}

Duration Monitors::frameInterval(DisplayNumber display) const
{
    auto monitor = std::ranges::find(m_list, display, &Monitor::number);
    return seconds(1 / (monitor == m_list.end() ? RefreshRates::kUsual : monitor->refreshRate));
}

void Monitors::settle()
{
    auto now = m_dispatch.now();
    if (!m_settling.isPending())
        m_staleSince = now;
    auto due = std::min<Instant>(now + kSettleTime, m_staleSince + kLongestSettleTime);
    m_settling = m_dispatch.main().after(std::max<Duration>(due - now, {}), [this] { follow(); });
}

void Monitors::follow()
{
    auto before = std::tuple{m_list, m_coordinates, m_screenPixels};
    read();
    if (before != std::tuple{m_list, m_coordinates, m_screenPixels})
        changed.emit();
}

void Monitors::read()
{
    auto* raw = m_connection.raw();
    auto root = m_connection.root();
    bool knowsMonitors = hasRandr(raw);
    constexpr std::string_view edidName = "EDID";
    auto edidCookie = xcb_intern_atom(raw, 1, edidName.size(), edidName.data());
    auto sizeCookie = xcb_get_geometry(raw, root);
    auto resourcesCookie = xcb_get_property(
        raw, 0, root, m_connection.atoms().resourceManager, XCB_ATOM_STRING, 0, kResourceWords);
    std::optional<xcb_randr_get_monitors_cookie_t> monitorsCookie;
    std::optional<RefreshRates> rates;
    if (knowsMonitors) {
        monitorsCookie = xcb_randr_get_monitors(raw, root, 1);
        rates.emplace(m_connection);
    }

    auto edid = owned(xcb_intern_atom_reply(raw, edidCookie, nullptr));
    auto size = owned(xcb_get_geometry_reply(raw, sizeCookie, nullptr));
    auto resources = owned(xcb_get_property_reply(raw, resourcesCookie, nullptr));
    if (size)
        m_screenPixels = {double(size->width), double(size->height)};
    m_list.clear();
    if (monitorsCookie) {
        if (auto reply = owned(xcb_randr_get_monitors_reply(raw, *monitorsCookie, nullptr)))
            m_list = monitorsFrom(
                raw, reply.get(), edid ? edid->atom : xcb_atom_t{XCB_ATOM_NONE}, *rates);
    } else {
        m_list.push_back({DisplayNumber{1}, "screen", Rect::from({}, m_screenPixels)});
    }
    auto& said = m_looks.value().scale;
    m_coordinates.scale = said ? std::clamp(*said, 1.0, kLargestScale) : scaleFrom(resources.get());
    // While no monitor is connected, frames keep the place they had.
    if (!m_list.empty())
        m_coordinates.primaryPixels = m_list.front().pixels;
}

}
