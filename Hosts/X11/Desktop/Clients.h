#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Hosts/X11/Desktop/Client.h"
#include "Hosts/X11/Desktop/ClientReader.h"

namespace quorvel::xdg::x11 {

class Connection;
class RequestBatch;

/// The managed clients, oldest first, and which of their facts must be read. Main thread.
class Clients {
public:
    /// A client that leaves the list without being destroyed or unmapped may have lost its manager
    /// rather than its window, so it is kept this long.
    static constexpr auto kLeaveGrace = std::chrono::milliseconds{100};

    /// openbox unmaps every client when it exits, and maps it again a moment later.
    static constexpr auto kWithdrawGrace = std::chrono::milliseconds{50};

    explicit Clients(Connection&);

    /// Notes what an event says about a client; true if anything has to be read or dropped.
    bool handle(const xcb_generic_event_t*);
    /// Follows the manager's list: new clients are added, those that left are marked as gone.
    void follow(const std::vector<xcb_window_t>& list, std::uint32_t currentDesktop, Instant now);
    /// While there is no manager, being absent from its list removes nobody.
    void cancelLeaving();
    /// Marks clients as gone whose time to leave has come.
    void settleLeaving(Instant now);
    /// Asks for what is stale among `wanted`. After the batch, and before a client is removed, the
    /// answers must be settled.
    void request(RequestBatch&, Facets wanted);
    void settleAnswers();
    bool hasStale() const { return !m_stale.empty(); }

    /// Finds the ancestors below the root of reparented clients, and listens to them.
    void readAncestry();
    bool needsAncestry() const { return m_needsAncestry; }
    /// The same in two steps, of which the first shares its batch with other questions.
    void requestAncestry(RequestBatch&);
    void settleAncestry();
    /// Whether other windows below the root are clients' now than at the last call.
    bool takeTopLevelsDidChange() { return std::exchange(m_topLevelsDidChange, false); }

    Client* find(xcb_window_t);
    Client* find(WindowID);
    /// The one in this window below the root; null if there is none.
    Client* findIn(xcb_window_t topLevel);
    /// The client that this one's `WM_TRANSIENT_FOR` names, if it is another managed client.
    Client* parentOf(const Client&);
    /// Oldest first; the function must not add or remove clients.
    void forEach(const std::function<void(Client&)>&);
    /// Removes the clients that are gone, passing each to the function first.
    void removeGone(const std::function<void(Client&)>&);
    void markAllStale(Facets);
    void markAllDirty();

    WindowID takeNumber() { return WindowID{++m_lastNumber}; }

private:
    /// From a client up to the root.
    struct Walk {
        Client* client;
        xcb_window_t ancestor; ///< so far
        xcb_window_t parent; ///< of the ancestor
    };

    void add(xcb_window_t, Instant now);
    /// Moves each walk to the parent; ends those that are there, or nowhere.
    void advanceWalks();
    void requestParents(RequestBatch&);
    void setTopLevel(Client&, xcb_window_t topLevel);
    void forgetTopLevel(Client&);
    void markChildrenDirty(xcb_window_t parent);
    bool isOnlyRestacked(const xcb_configure_notify_event_t&);
    bool configured(xcb_window_t event, xcb_window_t window);
    bool destroyed(xcb_window_t);
    bool markStale(Client*, Facets);

    Connection& m_connection;
    ClientReader m_reader;
    std::uint32_t m_lastNumber = 0;
    std::map<WindowID, std::unique_ptr<Client>> m_byNumber;
    std::unordered_map<xcb_window_t, Client*> m_byWindow;
    std::unordered_map<xcb_window_t, xcb_window_t> m_clientByTopLevel;
    std::vector<Client*> m_stale; ///< those with something to read
    std::vector<Client*> m_asked; ///< whose answers are not settled
    std::vector<Walk> m_walks; ///< whose next parent has been asked for
    bool m_needsAncestry = false;
    bool m_topLevelsDidChange = false;
    bool m_hasGone = false;
};

}
