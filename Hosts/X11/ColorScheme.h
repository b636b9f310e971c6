#pragma once

#include <functional>
#include <optional>

#include <gio/gio.h>

#include "Hosts/X11/SessionBus.h"

namespace quorvel::x11 {

/// Whether the desktop wants dark programs, from the settings portal on the session bus. Nothing
/// waits for it: the answer comes when it comes, and again whenever it changes. Main thread.
class ColorScheme {
public:
    /// Absent: the desktop has no preference, or no longer says.
    using Changed = std::function<void(std::optional<bool> prefersDark)>;

    explicit ColorScheme(Changed);
    ~ColorScheme();
    ColorScheme(const ColorScheme&) = delete;
    ColorScheme& operator=(const ColorScheme&) = delete;

private:
    void watch(GDBusConnection*);
    void read();
    void take(GVariant* value);

    static void onRead(GObject*, GAsyncResult*, gpointer);
    static void onSignal(
        GDBusConnection*, const char*, const char*, const char*, const char*, GVariant*, gpointer);

    Changed m_changed;
    GCancellable* m_cancellable;
    guint m_signal = 0;
    guint m_name = 0;
    SessionBus m_bus;
};

}
