#include "Tests/X11/Support/FileDrag.h"

#include <memory>

#include "Tests/X11/Support/Eventually.h"

namespace quorvel::x11tests {

namespace {

constexpr std::uint32_t kVersion = 5;

}

FileDrag::FileDrag(const std::string& display, std::string uriList, Options options)
    : m_connection(display)
    , m_uriList(std::move(uriList))
    , m_options(std::move(options))
    , m_window(xcb_generate_id(m_connection.get()))
{
    xcb_create_window(m_connection.get(), XCB_COPY_FROM_PARENT, m_window, m_connection.root(), 0, 0,
        1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    std::vector<std::uint32_t> types;
    for (const auto& type : m_options.types)
        types.push_back(m_connection.atom(type));
    m_connection.setNumbers(m_window, "XdndTypeList", "ATOM", types);
    xcb_set_selection_owner(
        m_connection.get(), m_window, m_connection.atom("XdndSelection"), XCB_CURRENT_TIME);
    m_connection.sync();
}

/// The first window on the way from the root to the pointer that takes drops.
xcb_window_t FileDrag::targetAt(int x, int y)
{
    auto window = m_connection.root();
    while (window != XCB_NONE && m_connection.numbers(window, "XdndAware").empty()) {
        const auto cookie = xcb_translate_coordinates(m_connection.get(), m_connection.root(),
            window, static_cast<std::int16_t>(x), static_cast<std::int16_t>(y));
        const auto reply = m_connection.wait(xcb_translate_coordinates_reply, cookie);
        window = reply ? reply->child : xcb_window_t{XCB_NONE};
    }
    return window;
}

std::optional<bool> FileDrag::moveTo(const Frame& frame)
{
    const int x = frame.x + frame.width / 2;
    const int y = frame.y + frame.height / 2;
    if (m_target == XCB_NONE) {
        m_target = targetAt(x, y);
        std::vector<std::uint32_t> enter{kVersion << 24 | (m_options.types.size() > 3 ? 1U : 0U)};
        for (std::size_t i = 0; i < 3 && i < m_options.types.size(); ++i)
            enter.push_back(m_connection.atom(m_options.types[i]));
        send("XdndEnter", enter);
    }
    send("XdndPosition",
        {0, static_cast<std::uint32_t>(x << 16 | y), XCB_CURRENT_TIME,
            m_connection.atom("XdndActionMove")});
    return waitFor("XdndStatus");
}

std::optional<bool> FileDrag::drop()
{
    send("XdndDrop", {0, XCB_CURRENT_TIME});
    const auto isTaken = waitFor("XdndFinished");
    m_target = XCB_NONE;
    return isTaken;
}

void FileDrag::send(const std::string& message, std::vector<std::uint32_t> data)
{
    data.insert(data.begin(), m_window);
    m_connection.send(m_target, XCB_EVENT_MASK_NO_EVENT, m_target, message, data);
}

void FileDrag::answer(const xcb_selection_request_event_t& request)
{
    if (!m_options.answers)
        return;
    if (m_options.isInPieces)
        m_connection.setNumbers(request.requestor, "XdndSelection", "INCR", {1 << 20});
    else
        m_connection.setText(request.requestor, "XdndSelection", "text/uri-list", m_uriList);
    xcb_selection_notify_event_t event{};
    event.response_type = XCB_SELECTION_NOTIFY;
    event.time = request.time;
    event.requestor = request.requestor;
    event.selection = request.selection;
    event.target = request.target;
    event.property = request.property;
    xcb_send_event(m_connection.get(), 0, request.requestor, XCB_EVENT_MASK_NO_EVENT,
        reinterpret_cast<const char*>(&event));
    m_connection.sync();
}

std::optional<bool> FileDrag::waitFor(const std::string& message)
{
    std::optional<bool> isTaken;
    const auto hasCome = [&] {
        while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(m_connection.get())}) {
            const auto kind = event->response_type & 0x7f;
            const auto& said = reinterpret_cast<const xcb_client_message_event_t&>(*event);
            if (kind == XCB_SELECTION_REQUEST)
                answer(reinterpret_cast<const xcb_selection_request_event_t&>(*event));
            else if (kind == XCB_CLIENT_MESSAGE && said.type == m_connection.atom(message))
                isTaken = (said.data.data32[1] & 1) != 0;
        }
        return isTaken.has_value();
    };
    static_cast<void>(eventually(hasCome));
    return isTaken;
}

}
