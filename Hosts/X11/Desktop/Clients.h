#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "Hosts/X11/Desktop/Client.h"
#include "Hosts/X11/Desktop/ClientReader.h"

namespace quorvel::xdg::x11 {

class Connection;

/// The managed clients, oldest first, and what has to be read of them. Main thread.
class Clients {
public:
    /// A client that leaves the list without being destroyed or unmapped may have lost its manager
    /// rather than its window: so long it is kept.
    static constexpr auto kLeaveGrace = std::chrono::milliseconds{100};

    /// openbox unmaps each client when it leaves, and maps it again a moment later.
    static constexpr auto kWithdrawGrace = std::chrono::milliseconds{50};

    explicit Clients(Connection&);

    /// Takes note of what an event says of a client; true if anything has to be read or dropped.
    bool handle(const xcb_generic_event_t*);
    /// Follows the manager's list: new clients are added, those that left are marked as gone.
    void follow(const std::vector<xcb_window_t>& list, std::uint32_t currentDesktop, Instant now);
    /// While there is no manager, nobody leaves by missing from a list.
    void cancelLeaving();
    /// Clients whose time to leave has come are marked as gone.
    void settleLeaving(Instant now);
    /// Reads what is stale among `wanted`. True if anything was read.
    bool read(Facets wanted);
    /// Finds the ancestors below the root of the clients that were reparented, and listens to them.
    void readAncestry();
    bool needsAncestry() const { return m_needsAncestry; }

    Client* find(xcb_window_t);
    Client* find(WindowID);
    /// The client that `WM_TRANSIENT_FOR` of this one names, if that is another managed client.
    Client* parentOf(const Client&);
    /// Oldest first; the function must not add or remove clients.
    void forEach(const std::function<void(Client&)>&);
    /// Removes the clients that are gone, giving each to the function first.
    void removeGone(const std::function<void(Client&)>&);
    void markAllStale(Facets);
    void markAllDirty();

    WindowID takeNumber() { return WindowID{++m_lastNumber}; }

private:
    void add(xcb_window_t, Instant now);
    void setTopLevel(Client&, xcb_window_t topLevel);
    void markChildrenDirty(xcb_window_t parent);
    bool configured(xcb_window_t event, xcb_window_t window);
    bool destroyed(xcb_window_t);
    bool markStale(Client*, Facets);

    Connection& m_connection;
    ClientReader m_reader;
    std::uint32_t m_lastNumber = 0;
    std::map<WindowID, std::unique_ptr<Client>> m_byNumber;
    std::unordered_map<xcb_window_t, Client*> m_byWindow;
    std::unordered_map<xcb_window_t, xcb_window_t> m_clientByTopLevel;
    std::vector<Client*> m_stale; ///< those of which something is to be read
    bool m_needsAncestry = false;
    bool m_hasGone = false;
};

}
