#pragma once

#include <list>
#include <string>

#include "Hosts/X11/Selection/SelectionFetch.h"
#include "Hosts/X11/Selection/SelectionOffer.h"
#include "Hosts/X11/ServerTime.h"
#include "Quorvel/Platform/Clipboard.h"

namespace quorvel::xdg::x11 {

/// The two selections that programs exchange texts by. No other program is waited for: what it asks
/// or answers comes as an event, in pieces if it is large. Main thread.
class X11Clipboard final : public Clipboard {
public:
    X11Clipboard(Connection&, Dispatch&);

    void setText(ClipboardKind, std::string utf8) override;
    void requestText(ClipboardKind, TextHandler) override;

private:
    xcb_atom_t selectionOf(ClipboardKind) const;
    void fetch(ClipboardKind, xcb_timestamp_t now, const TextHandler&);

    Connection& m_connection;
    Dispatch& m_dispatch;
    ServerTime m_time;
    SelectionOffer m_clipboard;
    SelectionOffer m_primary;
    std::list<SelectionFetch> m_fetches;
};

}
