#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include <xcb-imdkit/imdkit.h>

#include "Tests/X11/Support/Connection.h"

namespace quorvel::x11tests {

/// A user's input method that does what a test says. It does nothing while it is not served, like
/// one that hangs, and dies with this object.
class InputMethodServer {
public:
    static constexpr const char* kName = "sample";

    /// The encoding of its texts: "UTF8_STRING" or "COMPOUND_TEXT".
    InputMethodServer(const std::string& display, std::string encoding);
    InputMethodServer(const InputMethodServer&) = delete;
    InputMethodServer& operator=(const InputMethodServer&) = delete;
    ~InputMethodServer();

    /// Does what has been asked of it by now.
    void serve();
    /// What it makes of a key, by the key's place; all others it returns.
    std::map<std::uint8_t, std::function<void()>> uses;
    void compose(const std::string& utf8, std::uint32_t caret);
    void commit(const std::string& utf8);

    bool hasFocus() const { return m_focused != nullptr; }
    /// Pixels of the program's window.
    xcb_point_t spot() const;
    int contexts() const { return m_contexts; }
    const std::vector<std::uint8_t>& keys() const { return m_keys; }

private:
    static void called(xcb_im_t*, xcb_im_client_t*, xcb_im_input_context_t*,
        const xcb_im_packet_header_fr_t*, void* frame, void* argument, void* self);
    void call(std::uint8_t opcode, xcb_im_input_context_t*, void* argument);
    std::string encode(const std::string& utf8) const;

    Connection m_connection;
    const std::string m_encoding;
    xcb_im_t* m_server;
    xcb_im_input_context_t* m_focused = nullptr;
    int m_contexts = 0;
    std::uint32_t m_composed = 0; ///< characters that are shown
    std::vector<std::uint8_t> m_keys;
};

}
