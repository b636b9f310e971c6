#pragma once

#include <xcb/xcb.h>

#include "Quorvel/Platform/Published.h"

namespace quorvel::xdg::x11 {

class Connection;

/// Whether transparency works: without a compositor, transparent pixels show garbage. Followed
/// while the program runs where the server reports selections (XFIXES). Main thread.
class Compositing {
public:
    explicit Compositing(Connection&);

    const Published<bool>& isActive() const { return m_isActive; }
    /// Only some window managers blur what is behind a window; those that do announce it.
    const Published<bool>& canBlur() const { return m_canBlur; }
    /// Checks again where the server does not report changes.
    void refresh();

private:
    void handle(const xcb_generic_event_t*);
    void read();
    bool hasCompositor() const;
    bool managerSupports(xcb_atom_t feature) const;

    Connection& m_connection;
    std::uint8_t m_selectionEvent = 0; ///< 0: the server does not report selections
    bool m_isStale = false;
    Published<bool> m_isActive;
    Published<bool> m_canBlur;
    Subscription m_events;
    Subscription m_turnEnded;
};

}
