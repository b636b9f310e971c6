#include "Hosts/X11/RefreshRates.h"

#include <algorithm>
#include <span>
#include <utility>

#include "Hosts/X11/Connection.h"

namespace quorvel::xdg::x11 {

namespace {

constexpr double kLowest = 20;
constexpr double kHighest = 500;

double rateOf(const xcb_randr_mode_info_t& mode)
{
    double lines = mode.vtotal;
    if (mode.mode_flags & XCB_RANDR_MODE_FLAG_DOUBLE_SCAN)
        lines *= 2;
    if (mode.mode_flags & XCB_RANDR_MODE_FLAG_INTERLACE)
        lines /= 2;
    return lines > 0 && mode.htotal > 0 ? mode.dot_clock / (mode.htotal * lines) : 0;
}

}

RefreshRates::RefreshRates(Connection& connection)
    : m_connection(connection)
    , m_asked(xcb_randr_get_screen_resources_current(connection.raw(), connection.root()))
{
}

RefreshRates::~RefreshRates()
{
    if (m_asked)
        xcb_discard_reply(m_connection.raw(), m_asked->sequence);
    for (auto& cookie : m_askedAreas)
        xcb_discard_reply(m_connection.raw(), cookie.sequence);
}

void RefreshRates::askForAreas()
{
    if (!m_asked)
        return;
    auto* raw = m_connection.raw();
    m_resources = owned(xcb_randr_get_screen_resources_current_reply(
        raw, *std::exchange(m_asked, std::nullopt), nullptr));
    if (!m_resources)
        return;
    const std::span crtcs{
        xcb_randr_get_screen_resources_current_crtcs(m_resources.get()), m_resources->num_crtcs};
    for (auto crtc : crtcs)
        m_askedAreas.push_back(xcb_randr_get_crtc_info(raw, crtc, m_resources->config_timestamp));
}

void RefreshRates::readAreas()
{
    for (auto& cookie : std::exchange(m_askedAreas, {})) {
        auto crtc = owned(xcb_randr_get_crtc_info_reply(m_connection.raw(), cookie, nullptr));
        if (!crtc || crtc->mode == XCB_NONE)
            continue;
        m_areas.push_back(
            {{double(crtc->x), double(crtc->y), double(crtc->width), double(crtc->height)},
                rateOf(crtc->mode)});
    }
}

double RefreshRates::rateOf(xcb_randr_mode_t wanted) const
{
    const std::span modes{
        xcb_randr_get_screen_resources_current_modes(m_resources.get()), m_resources->num_modes};
    auto mode = std::ranges::find(modes, wanted, &xcb_randr_mode_info_t::id);
    double rate = mode == modes.end() ? 0 : x11::rateOf(*mode);
    // Virtual screens have modes without a clock, or with one that means nothing.
    return rate >= kLowest && rate <= kHighest ? rate : kUsual;
}

double RefreshRates::at(Point point)
{
    readAreas();
    auto area
        = std::ranges::find_if(m_areas, [&](auto& each) { return each.pixels.contains(point); });
    return area == m_areas.end() ? kUsual : area->rate;
}

}
