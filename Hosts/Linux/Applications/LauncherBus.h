#pragma once

#include <functional>
#include <map>
#include <string>

#include "Hosts/Linux/Applications/LauncherEntries.h"
#include "Hosts/Linux/Bus/SessionBus.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel::xdg {

class DesktopEntries;

/// Receives from the session bus what applications want shown at their launchers. An entry lasts as
/// long as its sender is on the bus. Main thread.
class LauncherBus {
public:
    LauncherBus(LauncherEntries&, const DesktopEntries&, std::function<void()> onChange);
    ~LauncherBus();
    LauncherBus(const LauncherBus&) = delete;
    LauncherBus& operator=(const LauncherBus&) = delete;

private:
    void listen(GDBusConnection*);
    void take(const std::string& sender, GVariant* parameters);
    void watch(const std::string& sender);
    void senderDidLeave(const std::string& sender);
    void leave(GDBusConnection*);

    static void onUpdate(GDBusConnection*, const char* sender, const char*, const char*,
        const char*, GVariant* parameters, gpointer self);
    static void onVanished(GDBusConnection*, const char* sender, gpointer self);

    LauncherEntries& m_entries;
    std::function<void()> m_onChange;
    LauncherEntries::Matcher m_matcher;
    std::map<std::string, guint> m_watches; ///< by sender
    guint m_signal = 0;
    SessionBus m_bus;
    Subscription m_installedChanged;
};

}
