#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include <xcb/xcb.h>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel::xdg::x11 {

class Connection;

/// One question for the text of a selection, with a window of its own, so that an answer that comes
/// too late goes nowhere. Main thread.
class SelectionFetch {
public:
    /// What is longer is not taken, so that no program can fill the memory.
    static constexpr std::size_t kLongestText = 16 * 1024 * 1024;

    /// Absent if there is no text or the owner takes too long. Called once, in a later turn; it may
    /// destroy the fetch.
    using Handler = std::function<void(const SelectionFetch&, std::optional<std::string> utf8)>;

    /// `now` is the server's time of the question.
    SelectionFetch(Connection&, Dispatch&, xcb_atom_t selection, xcb_timestamp_t now, Handler);
    ~SelectionFetch();
    SelectionFetch(const SelectionFetch&) = delete;
    SelectionFetch& operator=(const SelectionFetch&) = delete;

private:
    /// Asks for the next of the formats.
    void ask();
    void handle(const xcb_generic_event_t*);
    void receive(const xcb_selection_notify_event_t&);
    void receivePiece();
    void wait();
    void finish(std::optional<std::string> utf8);

    Connection& m_connection;
    Dispatch& m_dispatch;
    const xcb_atom_t m_selection;
    const Handler m_handler;
    const xcb_window_t m_window;
    const xcb_timestamp_t m_time;
    std::size_t m_formatsAsked = 0;
    bool m_isLatin1 = false;
    bool m_comesInPieces = false;
    std::string m_bytes;
    const Instant m_latest; ///< the end of all patience
    WorkItem m_patience;
    Subscription m_events;
};

}
