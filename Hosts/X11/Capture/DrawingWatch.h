#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>

#include <xcb/damage.h>
#include <xcb/xcb.h>

#include "Quorvel/Platform/Published.h"
#include "Quorvel/Platform/WeakOwner.h"

namespace quorvel::xdg::x11 {

class Connection;

/// Which windows draw something (DAMAGE). The server reports a window once, and again only after
/// its damage was emptied, which the capture does: a window that never stops drawing wakes this
/// program no more often than it is captured. Main thread but where it says otherwise.
class DrawingWatch {
public:
    /// Windows that the server only draws on the screen are not reported where they are covered:
    /// while a client is watched, somebody holds it as a picture of its own. Held for each capture
    /// alone, it would draw itself for that, which would be reported and captured again.
    struct Holder {
        std::function<void(xcb_window_t)> hold;
        std::function<void(xcb_window_t)> letGo;
    };

    static constexpr std::size_t kMostWatched = 12;

    /// Whether the server has the extension. It must be asked on each connection that uses it.
    static bool hasDamage(xcb_connection_t*);

    /// The connection outlives it.
    DrawingWatch(Connection&, Holder);
    ~DrawingWatch();

    /// Absent while as many windows as possible are watched: without a compositor the server holds
    /// each of them in full size.
    std::optional<Subscription> watch(xcb_window_t client, std::function<void()> onDrawn);
    /// None for a client that is not watched. Any thread.
    xcb_damage_damage_t damageOf(xcb_window_t client) const;

private:
    /// One for each client, with any number of watchers.
    struct Watched {
        Watched(DrawingWatch&, xcb_window_t);
        ~Watched();
        Watched(const Watched&) = delete;
        Watched& operator=(const Watched&) = delete;

        WeakReference<DrawingWatch> owner;
        const xcb_window_t client;
        Signal<> drawn;
    };
    struct Watcher {
        std::shared_ptr<Watched> watched;
        Subscription drawn;
    };

    void handle(const xcb_generic_event_t*);
    void begin(xcb_window_t);
    void end(xcb_window_t);

    Connection& m_connection;
    const Holder m_holder;
    const std::uint8_t m_event;
    std::map<xcb_window_t, std::weak_ptr<Watched>> m_watched;
    mutable std::mutex m_mutex; ///< guards what follows
    std::map<xcb_window_t, xcb_damage_damage_t> m_damages;
    Subscription m_events;
    WeakOwner<DrawingWatch> m_weak{*this};
};

}
