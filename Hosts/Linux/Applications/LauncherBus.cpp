#include "Hosts/Linux/Applications/LauncherBus.h"

#include <utility>

#include "Hosts/Linux/Applications/DesktopEntries.h"

namespace quorvel::xdg {

namespace {

constexpr char kInterface[] = "com.canonical.Unity.LauncherEntry";
constexpr char kMember[] = "Update";
constexpr char kName[] = "com.canonical.Unity";
constexpr guint32 kAllowReplacement = 1;

/// No answer is waited for, ever: the bus may be stopped.
void tellBus(GDBusConnection* bus, const char* member, GVariant* arguments)
{
    g_dbus_connection_call(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus",
        "org.freedesktop.DBus", member, arguments, nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr,
        nullptr, nullptr);
}

/// A desktop file's id means the application whose windows say that id, or have it as their class.
std::string bundleIdentifierOf(const DesktopEntries& entries, const std::string& desktopID)
{
    return entries.bundleIdentifier({desktopID, desktopID, desktopID, std::nullopt, 0});
}

}

LauncherBus::LauncherBus(
    LauncherEntries& entries, const DesktopEntries& installed, std::function<void()> onChange)
    : m_entries(entries)
    , m_onChange(std::move(onChange))
    , m_matcher([&installed](auto& desktopID) { return bundleIdentifierOf(installed, desktopID); })
    , m_bus([this](GDBusConnection* bus) { listen(bus); },
          [this](GDBusConnection* bus) {
              leave(bus);
              if (m_entries.forgetAll())
                  m_onChange();
          })
{
    m_installedChanged = installed.changed.subscribe([this] {
        m_entries.rematch(m_matcher);
        m_onChange();
    });
}

LauncherBus::~LauncherBus()
{
    auto* bus = m_bus.connection();
    if (!bus)
        return;
    leave(bus);
    // GIO's own call for this waits for the answer.
    tellBus(bus, "ReleaseName", g_variant_new("(s)", kName));
}

void LauncherBus::listen(GDBusConnection* bus)
{
    m_signal = g_dbus_connection_signal_subscribe(bus, nullptr, kInterface, kMember, nullptr,
        nullptr, G_DBUS_SIGNAL_FLAGS_NONE, &LauncherBus::onUpdate, this, nullptr);
    // Many applications say nothing unless somebody has this name. Whoever has it keeps it, and
    // whoever wants it gets it: the signals go to all.
    tellBus(bus, "RequestName", g_variant_new("(su)", kName, kAllowReplacement));
}

void LauncherBus::onUpdate(GDBusConnection*, const char* sender, const char*, const char*,
    const char*, GVariant* parameters, gpointer self)
{
    if (sender)
        static_cast<LauncherBus*>(self)->take(sender, parameters);
}

void LauncherBus::take(const std::string& sender, GVariant* parameters)
{
    const auto update = decodeLauncherUpdate(parameters);
    if (!update)
        return;
    const auto outcome = m_entries.update(sender, *update, m_matcher);
    if (outcome == LauncherEntries::Outcome::refused)
        return;
    watch(sender);
    if (outcome == LauncherEntries::Outcome::changed)
        m_onChange();
}

void LauncherBus::watch(const std::string& sender)
{
    if (m_watches.contains(sender))
        return;
    // It may have left already; then this tells so.
    m_watches[sender] = g_bus_watch_name_on_connection(m_bus.connection(), sender.c_str(),
        G_BUS_NAME_WATCHER_FLAGS_NONE, nullptr, &LauncherBus::onVanished, this, nullptr);
}

void LauncherBus::onVanished(GDBusConnection*, const char* sender, gpointer self)
{
    static_cast<LauncherBus*>(self)->senderDidLeave(sender);
}

void LauncherBus::senderDidLeave(const std::string& sender)
{
    if (auto watch = m_watches.extract(sender))
        g_bus_unwatch_name(watch.mapped());
    if (m_entries.forget(sender))
        m_onChange();
}

void LauncherBus::leave(GDBusConnection* bus)
{
    for (auto& [sender, watch] : std::exchange(m_watches, {}))
        g_bus_unwatch_name(watch);
    g_dbus_connection_signal_unsubscribe(bus, std::exchange(m_signal, 0));
}

}
