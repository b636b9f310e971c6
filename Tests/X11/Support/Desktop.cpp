#include "Tests/X11/Support/Desktop.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace quorvel::x11tests {

namespace {

constexpr std::uint32_t kPager = 2;
constexpr std::uint32_t kIconicState = 3;

struct Free {
    void operator()(void* reply) const { std::free(reply); }
};

}

std::vector<xcb_window_t> Desktop::clients()
{
    return m_connection.numbers(m_connection.root(), "_NET_CLIENT_LIST");
}

std::vector<xcb_window_t> Desktop::taskbarClients()
{
    const auto isElsewhere = [this](xcb_window_t window) {
        const auto types = m_connection.numbers(window, "_NET_WM_WINDOW_TYPE");
        return hasState(window, "_NET_WM_STATE_SKIP_TASKBAR")
            || (!types.empty() && types[0] != m_connection.atom("_NET_WM_WINDOW_TYPE_NORMAL"));
    };
    auto windows = clients();
    std::erase_if(windows, isElsewhere);
    return windows;
}

std::optional<xcb_window_t> Desktop::clientTitled(const std::string& wanted)
{
    for (const auto window : clients()) {
        if (title(window) == wanted)
            return window;
    }
    return std::nullopt;
}

std::string Desktop::title(xcb_window_t window)
{
    const auto name = m_connection.text(window, "_NET_WM_NAME");
    return name.empty() ? m_connection.text(window, "WM_NAME") : name;
}

std::optional<std::uint32_t> Desktop::desktopOf(xcb_window_t window)
{
    return number(window, "_NET_WM_DESKTOP");
}

bool Desktop::isHidden(xcb_window_t window)
{
    return hasState(window, "_NET_WM_STATE_HIDDEN");
}

xcb_window_t Desktop::activeWindow()
{
    return number(m_connection.root(), "_NET_ACTIVE_WINDOW").value_or(XCB_NONE);
}

std::uint32_t Desktop::currentDesktop()
{
    return number(m_connection.root(), "_NET_CURRENT_DESKTOP").value_or(0);
}

std::uint32_t Desktop::desktopCount()
{
    return number(m_connection.root(), "_NET_NUMBER_OF_DESKTOPS").value_or(1);
}

Frame Desktop::workArea()
{
    const auto areas = m_connection.numbers(m_connection.root(), "_NET_WORKAREA");
    const auto first = std::size_t{4} * currentDesktop();
    if (areas.size() < first + 4)
        return {};
    const auto at = [&](std::size_t index) { return static_cast<int>(areas[first + index]); };
    return {at(0), at(1), at(2), at(3)};
}

Frame Desktop::frame(xcb_window_t window)
{
    auto* const connection = m_connection.get();
    const auto geometryCookie = xcb_get_geometry(connection, window);
    const auto placeCookie
        = xcb_translate_coordinates(connection, window, m_connection.root(), 0, 0);
    const std::unique_ptr<xcb_get_geometry_reply_t, Free> geometry{
        xcb_get_geometry_reply(connection, geometryCookie, nullptr)};
    const std::unique_ptr<xcb_translate_coordinates_reply_t, Free> place{
        xcb_translate_coordinates_reply(connection, placeCookie, nullptr)};
    if (!geometry || !place)
        return {};
    auto extents = m_connection.numbers(window, "_NET_FRAME_EXTENTS");
    extents.resize(4); // left, right, top, bottom
    const auto extent = [&](std::size_t index) { return static_cast<int>(extents[index]); };
    return {place->dst_x - extent(0), place->dst_y - extent(2),
        geometry->width + extent(0) + extent(1), geometry->height + extent(2) + extent(3)};
}

bool Desktop::hasWindowManager()
{
    // The property outlives its manager; the window it names does not.
    const auto check = number(m_connection.root(), "_NET_SUPPORTING_WM_CHECK");
    return check && number(*check, "_NET_SUPPORTING_WM_CHECK") == check
        && number(m_connection.root(), "_NET_CURRENT_DESKTOP");
}

bool Desktop::managerAnswers()
{
    if (m_probe == XCB_NONE) {
        m_probe = xcb_generate_id(m_connection.get());
        xcb_create_window(m_connection.get(), XCB_COPY_FROM_PARENT, m_probe, m_connection.root(), 0,
            0, 100, 100, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    }
    send(m_probe, "_NET_REQUEST_FRAME_EXTENTS", {});
    return !m_connection.numbers(m_probe, "_NET_FRAME_EXTENTS").empty();
}

void Desktop::activate(xcb_window_t window)
{
    send(window, "_NET_ACTIVE_WINDOW", {kPager, XCB_CURRENT_TIME, XCB_NONE});
}

void Desktop::minimise(xcb_window_t window)
{
    send(window, "WM_CHANGE_STATE", {kIconicState});
}

void Desktop::close(xcb_window_t window)
{
    send(window, "_NET_CLOSE_WINDOW", {XCB_CURRENT_TIME, kPager});
}

void Desktop::moveToDesktop(xcb_window_t window, std::uint32_t desktop)
{
    send(window, "_NET_WM_DESKTOP", {desktop, kPager});
}

void Desktop::switchTo(std::uint32_t desktop)
{
    send(m_connection.root(), "_NET_CURRENT_DESKTOP", {desktop, XCB_CURRENT_TIME});
}

void Desktop::addStates(xcb_window_t window, const std::string& first, const std::string& second)
{
    constexpr std::uint32_t kAdd = 1;
    send(window, "_NET_WM_STATE",
        {kAdd, m_connection.atom(first), m_connection.atom(second), kPager});
}

bool Desktop::hasState(xcb_window_t window, const std::string& state)
{
    const auto states = m_connection.numbers(window, "_NET_WM_STATE");
    return std::find(states.begin(), states.end(), m_connection.atom(state)) != states.end();
}

std::optional<std::uint32_t> Desktop::number(xcb_window_t window, const std::string& property)
{
    const auto values = m_connection.numbers(window, property);
    return values.empty() ? std::nullopt : std::optional{values[0]};
}

void Desktop::send(
    xcb_window_t window, const std::string& message, const std::vector<std::uint32_t>& data)
{
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = m_connection.atom(message);
    std::copy(data.begin(), data.end(), event.data.data32);
    xcb_send_event(m_connection.get(), 0, m_connection.root(),
        XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
        reinterpret_cast<const char*>(&event));
    m_connection.sync();
}

}
