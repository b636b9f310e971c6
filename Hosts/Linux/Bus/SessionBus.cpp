#include "Hosts/Linux/Bus/SessionBus.h"

#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>

#include <unistd.h>

namespace quorvel::xdg {

namespace {

/// The first attempt to join a bus again, in milliseconds; each further one takes twice as long.
constexpr guint kFirstAttempt = 200;
constexpr int kMostAttempts = 10;

std::string runtimeSocket()
{
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    return runtime ? std::string{runtime} + "/bus" : std::string{};
}

/// GIO would start a bus of its own where there is none.
bool hasSessionBus()
{
    if (const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS"))
        return *address != '\0';
    return !runtimeSocket().empty() && access(runtimeSocket().c_str(), R_OK | W_OK) == 0;
}

/// Empty where the bus has no place among the files.
std::string socketPath()
{
    const char* variable = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    if (!variable)
        return runtimeSocket();
    constexpr std::string_view key = "unix:path=";
    const std::string_view address{variable};
    const auto start = address.find(key);
    if (start == std::string_view::npos)
        return {};
    const std::string escaped{address.substr(
        start + key.size(), address.find_first_of(",;", start) - start - key.size())};
    const GText path{g_uri_unescape_string(escaped.c_str(), nullptr)};
    return path ? path.get() : "";
}

}

bool wasCancelled(GError* error)
{
    const bool isCancelled = g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED);
    g_clear_error(&error);
    return isCancelled;
}

SessionBus::SessionBus(Changed connected, Changed lost)
    : m_connected(std::move(connected))
    , m_lost(std::move(lost))
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
            self->connect();
            return G_SOURCE_REMOVE;
        },
        this, nullptr);
}

SessionBus::~SessionBus()
{
    if (m_start)
        g_source_remove(m_start);
    stopWaiting();
    letGo();
}

void SessionBus::connect()
{
    g_bus_get(G_BUS_TYPE_SESSION, m_cancellable.get(), &SessionBus::onConnected, this);
}

void SessionBus::onConnected(GObject*, GAsyncResult* result, gpointer data)
{
    GError* error = nullptr;
    auto* bus = g_bus_get_finish(result, &error);
    if (wasCancelled(error)) // and with it whoever asked
        return;
    static_cast<SessionBus*>(data)->take(bus);
}

/// GIO hands the lost connection out for as long as anybody has it.
void SessionBus::take(GDBusConnection* bus)
{
    if (!bus || g_dbus_connection_is_closed(bus)) {
        g_clear_object(&bus);
        return wait();
    }
    stopWaiting();
    m_connection = bus;
    g_dbus_connection_set_exit_on_close(bus, false); // the bar outlives its session bus
    m_closed = g_signal_connect(bus, "closed", G_CALLBACK(&SessionBus::onClosed), this);
    m_connected(bus);
}

void SessionBus::onClosed(GDBusConnection*, gboolean, GError*, gpointer data)
{
    auto* self = static_cast<SessionBus*>(data);
    self->m_lost(self->m_connection);
    self->letGo();
    self->m_attempts = 0;
    self->wait();
}

void SessionBus::letGo()
{
    if (!m_connection)
        return;
    g_signal_handler_disconnect(m_connection, std::exchange(m_closed, 0));
    g_clear_object(&m_connection);
}

/// A bus that is started by who connects to it keeps its socket, so nothing tells that it is back:
/// some attempts are made, and after them only the socket's coming counts.
void SessionBus::wait()
{
    watchSocket();
    if (m_attempt || m_attempts >= kMostAttempts)
        return;
    m_attempt = g_timeout_add(
        kFirstAttempt << m_attempts++,
        [](gpointer data) -> gboolean {
            auto* self = static_cast<SessionBus*>(data);
            self->m_attempt = 0;
            self->connect();
            return G_SOURCE_REMOVE;
        },
        this);
}

void SessionBus::watchSocket()
{
    if (m_socket)
        return;
    const auto path = socketPath();
    if (path.empty())
        return;
    const auto folder = path.substr(0, path.rfind('/'));
    m_socket = std::make_unique<FolderMonitors>(
        std::vector{folder}, 0, [=, this](std::string_view changed) {
            if ((changed == path || changed == folder) && access(path.c_str(), F_OK) == 0)
                socketDidAppear();
        });
}

void SessionBus::socketDidAppear()
{
    cancelAttempt(); // the next one may be minutes away
    m_attempts = 0;
    wait();
}

void SessionBus::cancelAttempt()
{
    if (m_attempt)
        g_source_remove(std::exchange(m_attempt, 0));
}

void SessionBus::stopWaiting()
{
    cancelAttempt();
    m_socket.reset();
}

}
