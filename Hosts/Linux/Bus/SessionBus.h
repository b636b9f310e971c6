#pragma once

#include <functional>

#include <gio/gio.h>

namespace quorvel::xdg {

/// A connection to the session bus, if there is one. It is made once the program has nothing else
/// to do, nobody waits for it, and losing it does not end the program. Main thread.
class SessionBus {
public:
    /// Called at most once, with a connection that lives as long as this object at least.
    using Connected = std::function<void(GDBusConnection*)>;

    explicit SessionBus(Connected);
    ~SessionBus();
    SessionBus(const SessionBus&) = delete;
    SessionBus& operator=(const SessionBus&) = delete;

    /// Null before, and for ever where there is no bus.
    GDBusConnection* connection() const { return m_connection; }

private:
    static void onConnected(GObject*, GAsyncResult*, gpointer);

    Connected m_connected;
    GCancellable* m_cancellable;
    GDBusConnection* m_connection = nullptr;
    guint m_start = 0;
};

}
