#pragma once

#include <functional>

#include <gio/gio.h>

#include "Hosts/Linux/Bus/SessionBus.h"
#include "Hosts/Linux/GHandles.h"

namespace quorvel::xdg {

/// A service that others offer on the session bus: when it comes and goes, one signal of it, and
/// questions to it. Nobody waits for it, and it is not started to be asked.
/// When the bus is lost the service has gone, until the bus is joined again. Main thread.
class BusService {
public:
    struct Names {
        const char* service;
        const char* path;
        const char* signalInterface;
        const char* signal;
        const char* firstArgument; ///< only signals that begin with it are heard
    };
    struct Listener {
        std::function<void()> appeared;
        std::function<void()> vanished;
        std::function<void(GVariant* parameters)> signalled;
    };

    /// The names must last as long as the service.
    BusService(
        const Names&, Listener, GBusNameWatcherFlags watching = G_BUS_NAME_WATCHER_FLAGS_NONE);
    ~BusService();
    BusService(const BusService&) = delete;
    BusService& operator=(const BusService&) = delete;

    /// Only while it is there. `answered` comes with a tuple of the type, or null; never after
    /// the end of this object.
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
