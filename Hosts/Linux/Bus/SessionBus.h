#pragma once

#include <functional>
#include <memory>

#include <gio/gio.h>

#include "Hosts/Linux/GHandles.h"
#include "Hosts/Linux/Loop/FolderMonitors.h"

namespace quorvel::xdg {

/// A connection to the session bus, if there is one. It is made when the program is first idle,
/// nothing blocks on it, and losing it does not end the program: the bus is joined again when its
/// socket reappears, or when it answers within a minute or two. Main thread.
class SessionBus {
public:
    using Changed = std::function<void(GDBusConnection*)>;

    /// Each connection is announced when it is made, and when it is lost, before it is released:
    /// whatever was attached to it has to be detached then.
    SessionBus(Changed connected, Changed lost);
    ~SessionBus();
    SessionBus(const SessionBus&) = delete;
    SessionBus& operator=(const SessionBus&) = delete;

    /// Null while there is none.
    GDBusConnection* connection() const { return m_connection; }

private:
    static void onConnected(GObject*, GAsyncResult*, gpointer);
    static void onClosed(GDBusConnection*, gboolean, GError*, gpointer);

    void connect();
    void take(GDBusConnection*);
    void letGo();
    void wait();
    void watchSocket();
    void socketDidAppear();
    void cancelAttempt();
    void stopWaiting();

    const Changed m_connected;
    const Changed m_lost;
    GCancellation m_cancellable;
    GDBusConnection* m_connection = nullptr;
    guint m_start = 0;
    gulong m_closed = 0;
    guint m_attempt = 0; ///< the timer of the next attempt
    int m_attempts = 0; ///< since the bus was lost, or its socket reappeared
    std::unique_ptr<FolderMonitors> m_socket; ///< of its folder, while waiting for it
};

/// Consumes the error. When it says "cancelled", the caller's object is gone and must not be
/// touched.
bool wasCancelled(GError*);

}
