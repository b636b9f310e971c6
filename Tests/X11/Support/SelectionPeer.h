#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Tests/X11/Support/Connection.h"

namespace quorvel::x11tests {

/// Another program, with texts to give and to take. It does nothing while it is not served, like
/// one that hangs, and its death is that of this object.
class SelectionPeer {
public:
    explicit SelectionPeer(const std::string& display);

    /// Offers these bytes, by the names of their formats.
    void own(const std::string& selection, std::map<std::string, std::string> texts);
    /// As a large text is given: so much at a time, and no more than so many pieces.
    std::size_t piece = 64 * 1024;
    std::size_t mostPieces = SIZE_MAX;

    void request(const std::string& selection, const std::string& format);
    /// Several formats in one request; those that are refused are empty.
    void requestSeveral(const std::string& selection, const std::vector<std::string>& formats);
    bool hasAnswer() const { return m_hasAnswer; }
    /// Absent: refused.
    const std::optional<std::string>& answer() const { return m_answer; }
    /// By the place in `requestSeveral`.
    std::string partOfAnswer(std::size_t);
    xcb_window_t ownerOf(const std::string& selection);
    /// Deals with what has come by now.
    void serve();

private:
    void give(const xcb_selection_request_event_t&);
    void givePiece(const xcb_property_notify_event_t&);
    void take(const xcb_selection_notify_event_t&);
    void takePiece();
    void finish(std::optional<std::string>);
    std::string partName(std::size_t place) const { return "PART" + std::to_string(place); }
    xcb_timestamp_t now();

    Connection m_connection;
    xcb_window_t m_window;
    std::map<xcb_atom_t, std::string> m_texts;

    xcb_window_t m_requestor = XCB_NONE; ///< who takes a large text
    xcb_atom_t m_requestorProperty = XCB_NONE;
    xcb_atom_t m_format = XCB_NONE;
    std::size_t m_given = 0;
    std::size_t m_pieces = 0;

    bool m_hasAnswer = false;
    bool m_comesInPieces = false;
    std::string m_taken;
    std::optional<std::string> m_answer;
};

}
