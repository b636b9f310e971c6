#include "Hosts/Linux/Bus/BusService.h"

#include <memory>
#include <utility>

namespace quorvel::xdg {

namespace {

using Answered = std::function<void(GVariant*)>;

void onReply(GObject* bus, GAsyncResult* result, gpointer data)
{
    const std::unique_ptr<Answered> answered{static_cast<Answered*>(data)};
    GError* error = nullptr;
    const GVariantHandle reply{
        g_dbus_connection_call_finish(G_DBUS_CONNECTION(bus), result, &error)};
    if (!wasCancelled(error))
        (*answered)(reply.get());
}

}

BusService::BusService(const Names& names, Listener listener, GBusNameWatcherFlags watching)
    : m_names(names)
    , m_listener(std::move(listener))
    , m_watching(watching)
    , m_cancellable(g_cancellable_new())
    , m_bus(
          [this](GDBusConnection* bus) { watch(bus); }, [this](GDBusConnection* bus) { lose(bus); })
{
}

BusService::~BusService()
{
    if (m_bus.connection())
        unwatch(m_bus.connection());
}

void BusService::watch(GDBusConnection* bus)
{
    m_signal = g_dbus_connection_signal_subscribe(bus, m_names.service, m_names.signalInterface,
        m_names.signal, m_names.path, m_names.firstArgument, G_DBUS_SIGNAL_FLAGS_NONE,
        &BusService::onSignal, this, nullptr);
    m_name = g_bus_watch_name_on_connection(bus, m_names.service, m_watching,
        &BusService::onAppeared, &BusService::onVanished, this, nullptr);
}

void BusService::unwatch(GDBusConnection* bus)
{
    g_bus_unwatch_name(std::exchange(m_name, 0));
    g_dbus_connection_signal_unsubscribe(bus, std::exchange(m_signal, 0));
}

void BusService::lose(GDBusConnection* bus)
{
    unwatch(bus);
    if (m_listener.vanished)
        m_listener.vanished();
}

void BusService::call(const char* interface, const char* method, GVariant* arguments,
    const char* type, std::function<void(GVariant*)> answered)
{
    g_dbus_connection_call(m_bus.connection(), m_names.service, m_names.path, interface, method,
        arguments, G_VARIANT_TYPE(type), G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, m_cancellable.get(),
        &onReply, new Answered{std::move(answered)});
}

void BusService::onAppeared(GDBusConnection*, const char*, const char*, gpointer self)
{
    static_cast<BusService*>(self)->m_listener.appeared();
}

void BusService::onVanished(GDBusConnection*, const char*, gpointer self)
{
    if (auto& vanished = static_cast<BusService*>(self)->m_listener.vanished)
        vanished();
}

void BusService::onSignal(GDBusConnection*, const char*, const char*, const char*, const char*,
    GVariant* parameters, gpointer self)
{
    static_cast<BusService*>(self)->m_listener.signalled(parameters);
}

}
