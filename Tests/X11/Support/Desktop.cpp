#include "Tests/X11/Support/Desktop.h"

#include <algorithm>
#include <memory>

#include <xcb/res.h>

#include "Tests/X11/Support/Eventually.h"

namespace quorvel::x11tests {

namespace {

constexpr std::uint32_t kPager = 2;
constexpr std::uint32_t kIconicState = 3;
constexpr int kSmallestOnTaskbar = 40;

}

std::vector<xcb_window_t> Desktop::clients()
{
    return m_connection.numbers(m_connection.root(), "_NET_CLIENT_LIST");
}

std::vector<xcb_window_t> Desktop::taskbarClients()
{
    auto windows = clients();
    std::erase_if(windows, [this](xcb_window_t window) { return !isOnTaskbar(window); });
    return windows;
}

bool Desktop::isOnTaskbar(xcb_window_t client)
{
    if (hasState(client, "_NET_WM_STATE_SKIP_TASKBAR") || hasState(client, "_NET_WM_STATE_MODAL"))
        return false;
    const auto place = frame(client);
    if (place.width < kSmallestOnTaskbar || place.height < kSmallestOnTaskbar)
        return false;
    const auto type = typeOf(client);
    return type == "NORMAL" || ((type.empty() || type == "DIALOG") && !parentOf(client));
}

std::vector<xcb_window_t> Desktop::docks()
{
    auto windows = clients();
    std::erase_if(windows, [this](xcb_window_t window) { return typeOf(window) != "DOCK"; });
    return windows;
}

bool Desktop::isViewable(xcb_window_t window)
{
    const auto reply = m_connection.wait(
        xcb_get_window_attributes_reply, xcb_get_window_attributes(m_connection.get(), window));
    return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}

int Desktop::depth(xcb_window_t window)
{
    const auto reply
        = m_connection.wait(xcb_get_geometry_reply, xcb_get_geometry(m_connection.get(), window));
    return reply ? reply->depth : 0;
}

std::optional<xcb_window_t> Desktop::parentOf(xcb_window_t client)
{
    const auto parent = number(client, "WM_TRANSIENT_FOR");
    const auto all = clients();
    const bool isManaged = parent && std::find(all.begin(), all.end(), *parent) != all.end();
    return isManaged && parent != client ? parent : std::nullopt;
}

std::string Desktop::typeOf(xcb_window_t client)
{
    const auto types = m_connection.numbers(client, "_NET_WM_WINDOW_TYPE");
    for (const std::string name : {"NORMAL", "DIALOG", "UTILITY", "SPLASH", "TOOLBAR", "DOCK"}) {
        if (!types.empty() && types[0] == m_connection.atom("_NET_WM_WINDOW_TYPE_" + name))
            return name;
    }
    return {};
}

std::string Desktop::applicationClass(xcb_window_t window)
{
    const auto names = m_connection.text(window, "WM_CLASS");
    const auto second = names.find('\0') + 1;
    return names.substr(second, names.find('\0', second) - second);
}

std::optional<pid_t> Desktop::processOf(xcb_window_t window)
{
    const xcb_res_client_id_spec_t spec{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    const auto reply = m_connection.wait(
        xcb_res_query_client_ids_reply, xcb_res_query_client_ids(m_connection.get(), 1, &spec));
    if (!reply)
        return std::nullopt;
    const auto ids = xcb_res_query_client_ids_ids_iterator(reply.get());
    if (ids.rem == 0 || xcb_res_client_id_value_value_length(ids.data) == 0)
        return std::nullopt;
    return static_cast<pid_t>(*xcb_res_client_id_value_value(ids.data));
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

std::uint32_t Desktop::resourcesOf(pid_t process)
{
    auto* const connection = m_connection.get();
    const auto clients
        = m_connection.wait(xcb_res_query_clients_reply, xcb_res_query_clients(connection));
    const int count = clients ? xcb_res_query_clients_clients_length(clients.get()) : 0;
    std::uint32_t resources = 0;
    for (int i = 0; i < count; ++i) {
        const auto base = xcb_res_query_clients_clients(clients.get())[i].resource_base;
        if (processOf(base) != process)
            continue;
        const auto reply = m_connection.wait(
            xcb_res_query_client_resources_reply, xcb_res_query_client_resources(connection, base));
        const int types = reply ? xcb_res_query_client_resources_types_length(reply.get()) : 0;
        for (int j = 0; j < types; ++j)
            resources += xcb_res_query_client_resources_types(reply.get())[j].count;
    }
    return resources;
}

std::optional<xcb_window_t> Desktop::focusedClient()
{
    constexpr int kDeepestNesting = 16;
    std::optional focused = activeWindow();
    for (int i = 0; i < kDeepestNesting && focused && !isOnTaskbar(*focused); ++i) {
        const auto type = typeOf(*focused);
        const bool speaksForParent
            = type.empty() || type == "DIALOG" || type == "UTILITY" || type == "SPLASH";
        focused = speaksForParent ? parentOf(*focused) : std::nullopt;
    }
    return focused;
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

Frame Desktop::contentFrame(xcb_window_t window)
{
    auto* const connection = m_connection.get();
    const auto geometry
        = m_connection.wait(xcb_get_geometry_reply, xcb_get_geometry(connection, window));
    const auto place = m_connection.wait(xcb_translate_coordinates_reply,
        xcb_translate_coordinates(connection, window, m_connection.root(), 0, 0));
    if (!geometry || !place)
        return {};
    return {place->dst_x, place->dst_y, geometry->width, geometry->height};
}

Frame Desktop::frame(xcb_window_t window)
{
    const auto content = contentFrame(window);
    auto extents = m_connection.numbers(window, "_NET_FRAME_EXTENTS");
    extents.resize(4); // left, right, top, bottom
    const auto extent = [&](std::size_t index) { return static_cast<int>(extents[index]); };
    return content == Frame{}
        ? Frame{}
        : Frame{content.x - extent(0), content.y - extent(2), content.width + extent(0) + extent(1),
              content.height + extent(2) + extent(3)};
}

xcb_window_t Desktop::windowAt(int x, int y)
{
    const auto root = m_connection.root();
    const auto cookie = xcb_translate_coordinates(
        m_connection.get(), root, root, static_cast<std::int16_t>(x), static_cast<std::int16_t>(y));
    const auto reply = m_connection.wait(xcb_translate_coordinates_reply, cookie);
    return reply ? reply->child : xcb_window_t{XCB_NONE};
}

std::string Desktop::picture(const Frame& frame)
{
    const auto cookie = xcb_get_image(m_connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP,
        m_connection.root(), static_cast<std::int16_t>(frame.x), static_cast<std::int16_t>(frame.y),
        static_cast<std::uint16_t>(frame.width), static_cast<std::uint16_t>(frame.height), ~0U);
    const auto reply = m_connection.wait(xcb_get_image_reply, cookie);
    if (!reply)
        return {};
    const auto* const pixels = reinterpret_cast<const char*>(xcb_get_image_data(reply.get()));
    return {pixels, static_cast<std::size_t>(xcb_get_image_data_length(reply.get()))};
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

testing::AssertionResult Desktop::finishRequests()
{
    xcb_delete_property(m_connection.get(), m_probe, m_connection.atom("_NET_FRAME_EXTENTS"));
    if (eventually([this] { return managerAnswers(); }))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "the window manager does not answer";
}

void Desktop::activate(xcb_window_t window)
{
    // Managers read no time as the time at which they come to the request. One that is busy would
    // take it for newer than what the user did since.
    send(window, "_NET_ACTIVE_WINDOW", {kPager, m_connection.serverTime(), XCB_NONE});
}

std::function<bool()> Desktop::activation(xcb_window_t window)
{
    return [this, window, looks = 0]() mutable {
        const auto isActive = activeWindow() == window;
        if (!isActive && looks++ % 100 == 0)
            activate(window);
        return isActive;
    };
}

void Desktop::show(bool isShown)
{
    send(m_connection.root(), "_NET_SHOWING_DESKTOP", {isShown ? 1U : 0U});
}

bool Desktop::isShown()
{
    return m_connection.numbers(m_connection.root(), "_NET_SHOWING_DESKTOP")
        == std::vector<std::uint32_t>{1};
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

void Desktop::setDesktopCount(std::uint32_t count)
{
    send(m_connection.root(), "_NET_NUMBER_OF_DESKTOPS", {count});
}

void Desktop::setState(xcb_window_t window, const std::string& state, bool isOn)
{
    send(window, "_NET_WM_STATE",
        {isOn ? 1U : 0U, m_connection.atom("_NET_WM_STATE_" + state), XCB_ATOM_NONE, kPager});
}

void Desktop::maximise(xcb_window_t window)
{
    constexpr std::uint32_t kAdd = 1;
    send(window, "_NET_WM_STATE",
        {kAdd, m_connection.atom("_NET_WM_STATE_MAXIMIZED_VERT"),
            m_connection.atom("_NET_WM_STATE_MAXIMIZED_HORZ"), kPager});
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
    m_connection.send(m_connection.root(),
        XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY, window, message,
        data);
}

}
