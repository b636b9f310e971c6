#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Tests/X11/Support/Connection.h"

namespace quorvel::x11tests {

/// Files that are dragged out of a program of the test's own, as a source of XDND. The pointer is
/// not moved: whoever drags holds it, and what it is over is told by messages alone.
class FileDrag {
public:
    struct Options {
        std::vector<std::string> types{"text/uri-list"};
        bool answers = true; ///< when it is asked for the list
        bool isInPieces = false; ///< it would send the list piece by piece
    };

    FileDrag(const std::string& display, std::string uriList, Options);
    FileDrag(const std::string& display, std::string uriList)
        : FileDrag(display, std::move(uriList), Options{})
    {
    }
    FileDrag(const FileDrag&) = delete;
    FileDrag& operator=(const FileDrag&) = delete;
    /// Without a word to the target, as when the program dies.
    ~FileDrag() = default;

    /// Says that the pointer is there now, first of all that it has come. What the target answers:
    /// whether a drop would be taken there; absent: nothing.
    std::optional<bool> moveTo(const Frame&);
    /// Drops, hands the list over, and waits for the end: whether it was taken; absent: no word.
    std::optional<bool> drop();

private:
    xcb_window_t targetAt(int x, int y);
    void send(const std::string& message, std::vector<std::uint32_t> data);
    void answer(const xcb_selection_request_event_t&);
    std::optional<bool> waitFor(const std::string& message);

    Connection m_connection;
    const std::string m_uriList;
    const Options m_options;
    xcb_window_t m_window = XCB_NONE;
    xcb_window_t m_target = XCB_NONE;
};

}
