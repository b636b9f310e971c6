#pragma once

#include <functional>

#include <gio/gio.h>

#include "Hosts/Linux/Bus/SessionBus.h"
#include "Hosts/Linux/GHandles.h"

namespace quorvel::xdg {

/// A service of another process on the session bus: its presence, one of its signals, and calls to
/// it. Nothing blocks, and the service is not started for a call. Losing the bus means losing the
/// service, until the bus is joined again. Main thread.
class BusService {
public:
    struct Names {
        const char* service;
        const char* path;
        const char* signalInterface;
        const char* signal;
        const char* firstArgument; ///< only signals with this first argument are received
    };
    struct Listener {
        std::function<void()> appeared;
        std::function<void()> vanished;
        std::function<void(GVariant* parameters)> signalled;
    };

    /// The names must outlive the service.
    BusService(
        const Names&, Listener, GBusNameWatcherFlags watching = G_BUS_NAME_WATCHER_FLAGS_NONE);
    ~BusService();
    BusService(const BusService&) = delete;
    BusService& operator=(const BusService&) = delete;

    /// Only while the service is present. `answered` gets a tuple of the type, or null; it is never
    /// called after the destruction of this object.
    void call(const char* interface, const char* method, GVariant* arguments, const char* type,
        std::function<void(GVariant* reply)> answered);

private:
    void watch(GDBusConnection*);
    void unwatch(GDBusConnection*);
    void lose(GDBusConnection*);

    static void onAppeared(GDBusConnection*, const char*, const char*, gpointer self);
    static void onVanished(GDBusConnection*, const char*, gpointer self);
    static void onSignal(
        GDBusConnection*, const char*, const char*, const char*, const char*, GVariant*, gpointer);

    const Names m_names;
    const Listener m_listener;
    const GBusNameWatcherFlags m_watching;
    GCancellation m_cancellable;
    guint m_name = 0;
    guint m_signal = 0;
    SessionBus m_bus;
};

}
