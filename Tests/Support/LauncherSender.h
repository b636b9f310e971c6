#pragma once

#include <string>

#include <gio/gio.h>

#include "Hosts/Linux/GHandles.h"

namespace quorvel::test {

/// An application with an entry at the launcher, on the session bus of this address. It leaves the
/// bus with its end.
class LauncherSender {
public:
    explicit LauncherSender(const std::string& address)
        : m_connection(g_dbus_connection_new_for_address_sync(address.c_str(),
              static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT
                  | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
              nullptr, nullptr, nullptr))
    {
    }
    ~LauncherSender()
    {
        if (m_connection)
            g_dbus_connection_close_sync(m_connection.get(), nullptr, nullptr);
    }

    GDBusConnection* connection() const { return m_connection.get(); }
    /// The arguments as text, "('application://mail.desktop', {'count': <int64 3>})".
    void say(const char* arguments)
    {
        g_dbus_connection_emit_signal(connection(), nullptr, "/com/example/Sender",
            "com.canonical.Unity.LauncherEntry", "Update", g_variant_new_parsed(arguments),
            nullptr);
        g_dbus_connection_flush_sync(connection(), nullptr, nullptr);
    }

private:
    xdg::GObjectHandle<GDBusConnection> m_connection;
};

}
