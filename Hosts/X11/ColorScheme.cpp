#include "Hosts/X11/ColorScheme.h"

#include <string_view>
#include <utility>

namespace quorvel::x11 {

namespace {

constexpr char kPortal[] = "org.freedesktop.portal.Desktop";
constexpr char kPath[] = "/org/freedesktop/portal/desktop";
constexpr char kInterface[] = "org.freedesktop.portal.Settings";
constexpr char kNamespace[] = "org.freedesktop.appearance";
constexpr char kKey[] = "color-scheme";

enum Preference : guint32 { noPreference, prefersDark, prefersLight };

/// The value inside any number of variants.
GVariant* unwrapped(GVariant* value)
{
    value = g_variant_ref(value);
    while (g_variant_is_of_type(value, G_VARIANT_TYPE_VARIANT)) {
        auto* inner = g_variant_get_variant(value);
        g_variant_unref(std::exchange(value, inner));
    }
    return value;
}

}

ColorScheme::ColorScheme(Changed changed)
    : m_changed(std::move(changed))
    , m_cancellable(g_cancellable_new())
    , m_bus([this](GDBusConnection* bus) { watch(bus); })
{
}

ColorScheme::~ColorScheme()
{
    g_cancellable_cancel(m_cancellable);
    g_object_unref(m_cancellable);
    if (m_name)
        g_bus_unwatch_name(m_name);
    if (m_signal)
        g_dbus_connection_signal_unsubscribe(m_bus.connection(), m_signal);
}

void ColorScheme::watch(GDBusConnection* bus)
{
    m_signal = g_dbus_connection_signal_subscribe(bus, kPortal, kInterface, "SettingChanged", kPath,
        kNamespace, G_DBUS_SIGNAL_FLAGS_NONE, &ColorScheme::onSignal, this, nullptr);
    // The portal is asked when it is there, never started for this.
    m_name = g_bus_watch_name_on_connection(
        bus, kPortal, G_BUS_NAME_WATCHER_FLAGS_NONE,
        [](GDBusConnection*, const char*, const char*, gpointer self) {
            static_cast<ColorScheme*>(self)->read();
        },
        nullptr, this, nullptr);
}

void ColorScheme::read()
{
    g_dbus_connection_call(m_bus.connection(), kPortal, kPath, kInterface, "Read",
        g_variant_new("(ss)", kNamespace, kKey), G_VARIANT_TYPE("(v)"),
        G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, m_cancellable, &ColorScheme::onRead, this);
}

void ColorScheme::onRead(GObject* bus, GAsyncResult* result, gpointer self)
{
    auto* reply = g_dbus_connection_call_finish(G_DBUS_CONNECTION(bus), result, nullptr);
    if (!reply)
        return;
    auto* value = g_variant_get_child_value(reply, 0);
    static_cast<ColorScheme*>(self)->take(value);
    g_variant_unref(value);
    g_variant_unref(reply);
}

void ColorScheme::onSignal(GDBusConnection*, const char*, const char*, const char*, const char*,
    GVariant* parameters, gpointer self)
{
    if (!g_variant_is_of_type(parameters, G_VARIANT_TYPE("(ssv)")))
        return;
    const char* space = nullptr;
    const char* key = nullptr;
    GVariant* value = nullptr;
    g_variant_get(parameters, "(&s&sv)", &space, &key, &value);
    if (std::string_view{space} == kNamespace && std::string_view{key} == kKey)
        static_cast<ColorScheme*>(self)->take(value);
    g_variant_unref(value);
}

void ColorScheme::take(GVariant* wrapped)
{
    auto* value = unwrapped(wrapped);
    std::optional<bool> isDark;
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_UINT32)) {
        auto preference = g_variant_get_uint32(value);
        if (preference == prefersDark || preference == prefersLight)
            isDark = preference == prefersDark;
    }
    g_variant_unref(value);
    m_changed(isDark);
}

}
