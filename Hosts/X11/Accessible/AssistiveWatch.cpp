#include "Hosts/X11/Accessible/AssistiveWatch.h"

#include <cstdlib>
#include <string_view>
#include <utility>

namespace quorvel::x11 {

namespace {

constexpr char kService[] = "org.a11y.Bus";
constexpr char kPath[] = "/org/a11y/bus";
constexpr char kStatus[] = "org.a11y.Status";
constexpr char kProperties[] = "org.freedesktop.DBus.Properties";

bool isSwitchedOn(const char* variable)
{
    const char* value = std::getenv(variable);
    return value && std::string_view{value} == "1";
}

/// What toolkits and browsers go by where no desktop keeps the setting.
bool isForcedByEnvironment()
{
    return isSwitchedOn("GNOME_ACCESSIBILITY") || isSwitchedOn("ACCESSIBILITY_ENABLED")
        || isSwitchedOn("QT_LINUX_ACCESSIBILITY_ALWAYS_ON");
}

/// Takes the error. Whoever cancelled is gone, so nothing of it may be touched.
bool wasCancelled(GError* error)
{
    const bool isCancelled = g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED);
    g_clear_error(&error);
    return isCancelled;
}

bool says(GVariant* properties, const char* name)
{
    gboolean value = false;
    return g_variant_lookup(properties, name, "b", &value) && value;
}

}

AssistiveWatch::AssistiveWatch(std::function<void()> onWanted, std::function<void()> onLost)
    : m_onWanted(std::move(onWanted))
    , m_onLost(std::move(onLost))
    , m_isForced(isForcedByEnvironment())
    , m_cancellable(g_cancellable_new())
    , m_bus([this](GDBusConnection* bus) { watch(bus); })
{
}

AssistiveWatch::~AssistiveWatch()
{
    g_cancellable_cancel(m_cancellable);
    g_object_unref(m_cancellable);
    if (m_name)
        g_bus_unwatch_name(m_name);
    if (m_signal)
        g_dbus_connection_signal_unsubscribe(m_bus.connection(), m_signal);
}

void AssistiveWatch::watch(GDBusConnection* bus)
{
    if (isSwitchedOn("NO_AT_BRIDGE")) // the bridge would refuse
        return;
    m_signal = g_dbus_connection_signal_subscribe(bus, kService, kProperties, "PropertiesChanged",
        kPath, kStatus, G_DBUS_SIGNAL_FLAGS_NONE, &AssistiveWatch::onChanged, this, nullptr);
    m_name = g_bus_watch_name_on_connection(bus, kService,
        m_isForced ? G_BUS_NAME_WATCHER_FLAGS_AUTO_START : G_BUS_NAME_WATCHER_FLAGS_NONE,
        &AssistiveWatch::onAppeared, &AssistiveWatch::onVanished, this, nullptr);
}

void AssistiveWatch::onAppeared(GDBusConnection*, const char*, const char*, gpointer self)
{
    auto* watch = static_cast<AssistiveWatch*>(self);
    if (watch->m_isForced)
        watch->askForAddress();
    else
        watch->readStatus();
}

void AssistiveWatch::onVanished(GDBusConnection*, const char*, gpointer self)
{
    static_cast<AssistiveWatch*>(self)->serviceDidVanish();
}

void AssistiveWatch::serviceDidVanish()
{
    if (std::exchange(m_isWanted, false))
        m_onLost();
}

void AssistiveWatch::readStatus()
{
    g_dbus_connection_call(m_bus.connection(), kService, kPath, kProperties, "GetAll",
        g_variant_new("(s)", kStatus), G_VARIANT_TYPE("(a{sv})"), G_DBUS_CALL_FLAGS_NO_AUTO_START,
        -1, m_cancellable, &AssistiveWatch::onStatus, this);
}

void AssistiveWatch::onStatus(GObject* bus, GAsyncResult* result, gpointer self)
{
    auto* reply = g_dbus_connection_call_finish(G_DBUS_CONNECTION(bus), result, nullptr);
    if (!reply)
        return;
    auto* properties = g_variant_get_child_value(reply, 0);
    static_cast<AssistiveWatch*>(self)->take(properties);
    g_variant_unref(properties);
    g_variant_unref(reply);
}

void AssistiveWatch::onChanged(GDBusConnection*, const char*, const char*, const char*, const char*,
    GVariant* parameters, gpointer self)
{
    if (!g_variant_is_of_type(parameters, G_VARIANT_TYPE("(sa{sv}as)")))
        return;
    auto* properties = g_variant_get_child_value(parameters, 1);
    static_cast<AssistiveWatch*>(self)->take(properties);
    g_variant_unref(properties);
}

/// What has been shown once stays shown: the readers that still run would lose the bar otherwise.
void AssistiveWatch::take(GVariant* properties)
{
    if (says(properties, "IsEnabled") || says(properties, "ScreenReaderEnabled"))
        askForAddress();
}

void AssistiveWatch::askForAddress()
{
    if (std::exchange(m_isWanted, true))
        return;
    g_dbus_connection_call(m_bus.connection(), kService, kPath, kService, "GetAddress", nullptr,
        G_VARIANT_TYPE("(s)"), G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, m_cancellable,
        &AssistiveWatch::onAddress, this);
}

void AssistiveWatch::onAddress(GObject* bus, GAsyncResult* result, gpointer self)
{
    GError* error = nullptr;
    auto* reply = g_dbus_connection_call_finish(G_DBUS_CONNECTION(bus), result, &error);
    if (!reply) {
        if (!wasCancelled(error))
            static_cast<AssistiveWatch*>(self)->m_isWanted = false;
        return;
    }
    const char* address = nullptr;
    g_variant_get(reply, "(&s)", &address);
    static_cast<AssistiveWatch*>(self)->tryBus(address);
    g_variant_unref(reply);
}

/// The bridge waits for the bus when it connects. So that it need not wait long, or for ever, the
/// bus has to answer somebody who does not wait.
void AssistiveWatch::tryBus(const char* address)
{
    const auto flags
        = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT
            | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    g_dbus_connection_new_for_address(
        address, flags, nullptr, m_cancellable, &AssistiveWatch::onBus, this);
}

void AssistiveWatch::onBus(GObject*, GAsyncResult* result, gpointer self)
{
    GError* error = nullptr;
    auto* connection = g_dbus_connection_new_for_address_finish(result, &error);
    if (!connection) {
        if (!wasCancelled(error))
            static_cast<AssistiveWatch*>(self)->m_isWanted = false;
        return;
    }
    g_dbus_connection_close(connection, nullptr, nullptr, nullptr);
    g_object_unref(connection);
    auto* watch = static_cast<AssistiveWatch*>(self);
    if (watch->m_isWanted) // the service may have gone meanwhile
        watch->m_onWanted();
}

}
