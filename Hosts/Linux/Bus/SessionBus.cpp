#include "Hosts/Linux/Bus/SessionBus.h"

#include <cstdlib>
#include <string>
#include <utility>

#include <unistd.h>

namespace quorvel::xdg {

namespace {

/// GIO would start a bus of its own where there is none.
bool hasSessionBus()
{
    if (std::getenv("DBUS_SESSION_BUS_ADDRESS"))
        return true;
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    return runtime && access((std::string{runtime} + "/bus").c_str(), R_OK | W_OK) == 0;
}

}

SessionBus::SessionBus(Connected connected)
    : m_connected(std::move(connected))
    , m_cancellable(g_cancellable_new())
{
    if (!hasSessionBus())
        return;
    // The bus costs a thread and some libraries: not before the bar is on the screen.
    m_start = g_idle_add_full(
        G_PRIORITY_LOW,
        [](gpointer data) -> gboolean {
            auto* self = static_cast<SessionBus*>(data);
            self->m_start = 0;
            g_bus_get(G_BUS_TYPE_SESSION, self->m_cancellable, &SessionBus::onConnected, self);
            return G_SOURCE_REMOVE;
        },
        this, nullptr);
}

SessionBus::~SessionBus()
{
    if (m_start)
        g_source_remove(m_start);
    g_cancellable_cancel(m_cancellable);
    g_object_unref(m_cancellable);
    g_clear_object(&m_connection);
}

void SessionBus::onConnected(GObject*, GAsyncResult* result, gpointer data)
{
    GError* error = nullptr;
    auto* bus = g_bus_get_finish(result, &error);
    const bool isCancelled = g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED);
    g_clear_error(&error);
    if (!bus || isCancelled) // cancelled, and with it whoever asked
        return;
    auto* self = static_cast<SessionBus*>(data);
    self->m_connection = bus;
    g_dbus_connection_set_exit_on_close(bus, false); // the bar outlives its session bus
    self->m_connected(bus);
}

}
