#include "Tests/X11/Support/InputMethodServer.h"

#include <utility>

#include <gtest/gtest.h>
#include <xcb-imdkit/encoding.h>

namespace quorvel::x11tests {

namespace {

std::uint32_t lengthOf(const std::string& utf8)
{
    std::uint32_t length = 0;
    for (const char byte : utf8)
        length += (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
    return length;
}

}

InputMethodServer::InputMethodServer(const std::string& display, std::string encoding)
    : m_connection(display)
    , m_encoding(std::move(encoding))
{
    xcb_compound_text_init();
    auto* const connection = m_connection.get();
    const auto window = xcb_generate_id(connection);
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, m_connection.root(), -1, -1, 1, 1,
        0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    std::uint32_t style = XCB_IM_PreeditCallbacks | XCB_IM_StatusNothing;
    const xcb_im_styles_t styles{1, &style};
    xcb_im_encoding_t name = const_cast<char*>(m_encoding.c_str());
    const xcb_im_encodings_t encodings{1, &name};
    m_server = xcb_im_create(connection, 0, window, kName, XCB_IM_ALL_LOCALES, &styles, nullptr,
        nullptr, &encodings, 0, &InputMethodServer::called, this);
    EXPECT_TRUE(xcb_im_open_im(m_server));
    serve();
}

InputMethodServer::~InputMethodServer()
{
    xcb_im_close_im(m_server);
    xcb_im_destroy(m_server);
}

void InputMethodServer::serve()
{
    auto* const connection = m_connection.get();
    while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(connection)})
        xcb_im_filter_event(m_server, event.get());
    xcb_flush(connection);
}

void InputMethodServer::called(xcb_im_t*, xcb_im_client_t*, xcb_im_input_context_t* context,
    const xcb_im_packet_header_fr_t* header, void*, void* argument, void* self)
{
    static_cast<InputMethodServer*>(self)->call(header->major_opcode, context, argument);
}

void InputMethodServer::call(std::uint8_t opcode, xcb_im_input_context_t* context, void* argument)
{
    switch (opcode) {
    case XCB_XIM_CREATE_IC:
        ++m_contexts;
        break;
    case XCB_XIM_SET_IC_FOCUS:
        m_focused = context;
        break;
    case XCB_XIM_UNSET_IC_FOCUS:
    case XCB_XIM_DESTROY_IC:
        if (m_focused == context)
            m_focused = nullptr;
        break;
    case XCB_XIM_FORWARD_EVENT: {
        auto* const key = static_cast<xcb_key_press_event_t*>(argument);
        m_keys.push_back(key->detail);
        if (const auto found = uses.find(key->detail); found != uses.end())
            found->second();
        else
            xcb_im_forward_event(m_server, context, key);
        break;
    }
    default:
        break;
    }
}

void InputMethodServer::compose(const std::string& utf8, std::uint32_t caret)
{
    const auto text = encode(utf8);
    std::vector<std::uint32_t> feedback(lengthOf(utf8), XCB_XIM_UNDERLINE);
    if (m_composed == 0)
        xcb_im_preedit_start_callback(m_server, m_focused);
    xcb_im_preedit_draw_fr_t frame{};
    frame.caret = caret;
    frame.chg_length = std::exchange(m_composed, lengthOf(utf8));
    frame.status = utf8.empty() ? 1 : 0;
    frame.length_of_preedit_string = static_cast<std::uint16_t>(text.size());
    frame.preedit_string
        = reinterpret_cast<std::uint8_t*>(const_cast<char*>(text.data())); // it only reads
    frame.feedback_array.size = static_cast<std::uint32_t>(feedback.size());
    frame.feedback_array.items = feedback.data();
    xcb_im_preedit_draw_callback(m_server, m_focused, &frame);
    if (m_composed == 0)
        xcb_im_preedit_done_callback(m_server, m_focused);
    xcb_flush(m_connection.get());
}

void InputMethodServer::commit(const std::string& utf8)
{
    const auto text = encode(utf8);
    xcb_im_commit_string(m_server, m_focused, XCB_XIM_LOOKUP_CHARS, text.data(),
        static_cast<std::uint32_t>(text.size()), 0);
    xcb_flush(m_connection.get());
}

std::string InputMethodServer::encode(const std::string& utf8) const
{
    if (m_encoding == "UTF8_STRING" || utf8.empty())
        return utf8;
    std::size_t size = 0;
    const std::unique_ptr<char, xdg::x11::FreeReply> text{
        xcb_utf8_to_compound_text(utf8.data(), utf8.size(), &size)};
    return {text.get(), size};
}

xcb_point_t InputMethodServer::spot() const
{
    const auto* const attributes
        = m_focused ? xcb_im_input_context_get_preedit_attr(m_focused) : nullptr;
    return attributes ? attributes->spot_location : xcb_point_t{};
}

}
