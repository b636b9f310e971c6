#include "Hosts/Linux/Accessible/AssistiveWatch.h"

#include <cstdlib>
#include <string_view>
#include <utility>

namespace quorvel::xdg {

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

bool says(GVariant* properties, const char* name)
{
    gboolean value = false;
    return g_variant_lookup(properties, name, "b", &value) && value;
}

/// A member of a tuple, for as long as it is looked at.
template <typename Look> void lookAt(GVariant* tuple, std::size_t index, Look look)
{
    look(GVariantHandle{g_variant_get_child_value(tuple, index)}.get());
}

}

AssistiveWatch::AssistiveWatch(std::function<void()> onWanted, std::function<void()> onLost)
    : m_onWanted(std::move(onWanted))
    , m_onLost(std::move(onLost))
    , m_isForced(isForcedByEnvironment())
    , m_cancellable(g_cancellable_new())
{
    if (isSwitchedOn("NO_AT_BRIDGE")) // the bridge would refuse
        return;
    BusService::Listener listener{[this] { serviceDidAppear(); }, [this] { serviceDidVanish(); },
        [this](GVariant* parameters) {
            if (g_variant_is_of_type(parameters, G_VARIANT_TYPE("(sa{sv}as)")))
                lookAt(parameters, 1, [this](auto* properties) { take(properties); });
        }};
    m_service.emplace(BusService::Names{kService, kPath, kProperties, "PropertiesChanged", kStatus},
        std::move(listener),
        m_isForced ? G_BUS_NAME_WATCHER_FLAGS_AUTO_START : G_BUS_NAME_WATCHER_FLAGS_NONE);
}

void AssistiveWatch::serviceDidAppear()
{
    if (m_isForced)
        return askForAddress();
    m_service->call(
        kProperties, "GetAll", g_variant_new("(s)", kStatus), "(a{sv})", [this](GVariant* reply) {
            if (reply)
                lookAt(reply, 0, [this](auto* properties) { take(properties); });
        });
}

void AssistiveWatch::serviceDidVanish()
{
    if (std::exchange(m_isWanted, false))
        m_onLost();
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
    m_service->call(kService, "GetAddress", nullptr, "(s)", [this](GVariant* reply) {
        const char* address = nullptr;
        if (!reply) {
            m_isWanted = false;
            return;
        }
        g_variant_get(reply, "(&s)", &address);
        tryBus(address);
    });
}

/// The bridge waits for the bus when it connects. So that it need not wait long, or for ever, the
/// bus has to answer somebody who does not wait.
void AssistiveWatch::tryBus(const char* address)
{
    const auto flags
        = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT
            | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    g_dbus_connection_new_for_address(
        address, flags, nullptr, m_cancellable.get(), &AssistiveWatch::onBus, this);
}

void AssistiveWatch::onBus(GObject*, GAsyncResult* result, gpointer self)
{
    GError* error = nullptr;
    const GObjectHandle<GDBusConnection> connection{
        g_dbus_connection_new_for_address_finish(result, &error)};
    if (!connection) {
        if (!wasCancelled(error))
            static_cast<AssistiveWatch*>(self)->m_isWanted = false;
        return;
    }
    g_dbus_connection_close(connection.get(), nullptr, nullptr, nullptr);
    auto* watch = static_cast<AssistiveWatch*>(self);
    if (watch->m_isWanted) // the service may have gone meanwhile
        watch->m_onWanted();
}

}
