#include "Hosts/Linux/Bus/SleepWatch.h"

#include <cstdlib>
#include <utility>

#include <gio/gio.h>
#include <unistd.h>

#include "Hosts/Linux/GHandles.h"

namespace quorvel::xdg {

namespace {

/// Where there is none, as in a container, GIO takes a thread and all its types to find that out.
bool hasSystemBus()
{
    return std::getenv("DBUS_SYSTEM_BUS_ADDRESS")
        || access("/var/run/dbus/system_bus_socket", F_OK) == 0;
}

}

struct SleepWatch::Bus {
    std::function<void()> onWake;
    GObjectHandle<GDBusConnection> connection;
    GCancellation cancellable{g_cancellable_new()};
    guint subscription = 0;

    ~Bus()
    {
        if (connection)
            g_dbus_connection_signal_unsubscribe(connection.get(), subscription);
    }

    static void connected(GObject*, GAsyncResult* result, gpointer data)
    {
        GError* error = nullptr;
        auto* connection = g_bus_get_finish(result, &error);
        const GErrorHandle owned{error};
        if (!connection)
            return; // cancelled means that the watch is gone: nothing of it may be touched
        static_cast<Bus*>(data)->listen(connection);
    }

    void listen(GDBusConnection* bus)
    {
        connection.reset(bus);
        // A lost system bus is no reason to leave.
        g_dbus_connection_set_exit_on_close(bus, FALSE);
        subscription = g_dbus_connection_signal_subscribe(bus, "org.freedesktop.login1",
            "org.freedesktop.login1.Manager", "PrepareForSleep", "/org/freedesktop/login1", nullptr,
            G_DBUS_SIGNAL_FLAGS_NONE, &Bus::prepareForSleep, this, nullptr);
    }

    static void prepareForSleep(GDBusConnection*, const gchar*, const gchar*, const gchar*,
        const gchar*, GVariant* parameters, gpointer data)
    {
        if (!g_variant_is_of_type(parameters, G_VARIANT_TYPE("(b)")))
            return;
        gboolean isGoingToSleep = FALSE;
        g_variant_get(parameters, "(b)", &isGoingToSleep);
        if (!isGoingToSleep)
            static_cast<Bus*>(data)->onWake();
    }
};

SleepWatch::SleepWatch(std::function<void()> onWake) : m_bus(std::make_unique<Bus>())
{
    m_bus->onWake = std::move(onWake);
    if (!hasSystemBus())
        return;
    g_bus_get(G_BUS_TYPE_SYSTEM, m_bus->cancellable.get(), &Bus::connected, m_bus.get());
}

SleepWatch::~SleepWatch() = default;

}
