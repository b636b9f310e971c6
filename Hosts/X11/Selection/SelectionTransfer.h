#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

#include <xcb/xcb.h>

#include "Quorvel/Platform/Dispatch.h"

namespace quorvel::xdg::x11 {

class Connection;

/// A text on its way to another program in pieces, because it is too large for one request: the
/// next piece is sent when the program has taken the last one away. Main thread.
class SelectionTransfer {
public:
    /// Texts up to this size are sent whole.
    static constexpr std::size_t kPiece = 64 * 1024;

    struct Target {
        xcb_window_t window;
        xcb_atom_t property;
        xcb_atom_t type;
    };

    using EndHandler = std::function<void(const SelectionTransfer&)>;

    /// Announces the text. The handler is called in a later turn, when the text has been taken or
    /// the program has not asked for a piece for some seconds.
    SelectionTransfer(
        Connection&, Dispatch&, const Target&, std::shared_ptr<const std::string>, EndHandler);
    SelectionTransfer(const SelectionTransfer&) = delete;
    SelectionTransfer& operator=(const SelectionTransfer&) = delete;

    /// Whether the event was the one it waited for.
    bool handle(const xcb_property_notify_event_t&);

private:
    void sendPiece();
    void endAfter(Duration);

    Connection& m_connection;
    Dispatch& m_dispatch;
    const Target m_target;
    const std::shared_ptr<const std::string> m_bytes;
    std::size_t m_sent = 0;
    bool m_isComplete = false; ///< the empty piece has been sent, which is the end
    const EndHandler m_onEnd;
    WorkItem m_end;
};

}
