#include "Hosts/X11/Surface/FrameIntervals.h"

#include <algorithm>
#include <optional>
#include <vector>

#include <xcb/randr.h>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Monitors.h"
#include "Hosts/X11/Reply.h"

namespace quorvel::xdg::x11 {

namespace {

constexpr double kUsualRate = 60;
constexpr double kLowestRate = 20;
constexpr double kHighestRate = 500;

double rateOf(const xcb_randr_mode_info_t& mode)
{
    double lines = mode.vtotal;
    if (mode.mode_flags & XCB_RANDR_MODE_FLAG_DOUBLE_SCAN)
        lines *= 2;
    if (mode.mode_flags & XCB_RANDR_MODE_FLAG_INTERLACE)
        lines /= 2;
    return lines > 0 && mode.htotal > 0 ? mode.dot_clock / (mode.htotal * lines) : 0;
}

std::optional<xcb_randr_mode_t> modeAt(xcb_connection_t* raw,
    const xcb_randr_get_screen_resources_current_reply_t* resources, Point centre)
{
    auto* crtcs = xcb_randr_get_screen_resources_current_crtcs(resources);
    std::vector<xcb_randr_get_crtc_info_cookie_t> asked;
    asked.reserve(resources->num_crtcs);
    for (int i = 0; i < resources->num_crtcs; ++i)
        asked.push_back(xcb_randr_get_crtc_info(raw, crtcs[i], resources->config_timestamp));
    std::optional<xcb_randr_mode_t> mode;
    for (auto& cookie : asked) {
        auto crtc = owned(xcb_randr_get_crtc_info_reply(raw, cookie, nullptr));
        if (mode || !crtc || crtc->mode == XCB_NONE)
            continue;
        Rect area{double(crtc->x), double(crtc->y), double(crtc->width), double(crtc->height)};
        if (area.contains(centre))
            mode = crtc->mode;
    }
    return mode;
}

double rateAt(Connection& connection, Point centre)
{
    auto* raw = connection.raw();
    auto* extension = xcb_get_extension_data(raw, &xcb_randr_id);
    if (!extension || !extension->present)
        return kUsualRate;
    auto resources = owned(xcb_randr_get_screen_resources_current_reply(
        raw, xcb_randr_get_screen_resources_current(raw, connection.root()), nullptr));
    auto mode = resources ? modeAt(raw, resources.get(), centre) : std::nullopt;
    if (!mode)
        return kUsualRate;
    auto* modes = xcb_randr_get_screen_resources_current_modes(resources.get());
    auto* end = modes + xcb_randr_get_screen_resources_current_modes_length(resources.get());
    auto* found = std::find_if(modes, end, [&](auto& info) { return info.id == *mode; });
    double rate = found == end ? 0 : rateOf(*found);
    // Virtual screens have modes without a clock, or with one that means nothing.
    return rate >= kLowestRate && rate <= kHighestRate ? rate : kUsualRate;
}

}

FrameIntervals::FrameIntervals(Connection& connection, const Monitors& monitors)
    : m_connection(connection)
    , m_monitors(monitors)
    , m_changes(monitors.changed.subscribe([this] { m_known.clear(); }))
{
}

Duration FrameIntervals::of(DisplayNumber display)
{
    if (auto known = m_known.find(display); known != m_known.end())
        return known->second;
    auto& list = m_monitors.list();
    auto monitor = std::ranges::find(list, display, &Monitor::number);
    double rate
        = monitor == list.end() ? kUsualRate : rateAt(m_connection, monitor->pixels.centre());
    return m_known[display] = seconds(1 / rate);
}

}
