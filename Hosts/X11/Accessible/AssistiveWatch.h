#pragma once

#include <functional>

#include <gio/gio.h>

#include "Hosts/X11/SessionBus.h"

namespace quorvel::x11 {

/// Tells when assistive programs want to see what is on the screen: the accessibility service of
/// the session bus says so, or the user's environment. The service is not started to be asked, and
/// nobody waits for it. Main thread.
class AssistiveWatch {
public:
    /// `onWanted` comes when the bus of the assistive programs has answered; `onLost` after that,
    /// when the service has gone.
    AssistiveWatch(std::function<void()> onWanted, std::function<void()> onLost);
    ~AssistiveWatch();
    AssistiveWatch(const AssistiveWatch&) = delete;
    AssistiveWatch& operator=(const AssistiveWatch&) = delete;

private:
    void watch(GDBusConnection*);
    void readStatus();
    void take(GVariant* properties);
    void askForAddress();
    void tryBus(const char* address);
    void serviceDidVanish();

    static void onAppeared(GDBusConnection*, const char*, const char*, gpointer self);
    static void onVanished(GDBusConnection*, const char*, gpointer self);
    static void onStatus(GObject*, GAsyncResult*, gpointer self);
    static void onChanged(
        GDBusConnection*, const char*, const char*, const char*, const char*, GVariant*, gpointer);
    static void onAddress(GObject*, GAsyncResult*, gpointer self);
    static void onBus(GObject*, GAsyncResult*, gpointer self);

    std::function<void()> m_onWanted;
    std::function<void()> m_onLost;
    const bool m_isForced; ///< by the environment
    bool m_isWanted = false;
    GCancellable* m_cancellable;
    guint m_name = 0;
    guint m_signal = 0;
    SessionBus m_bus;
};

}
