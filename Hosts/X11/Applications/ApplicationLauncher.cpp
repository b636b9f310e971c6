#include "Hosts/X11/Applications/ApplicationLauncher.h"

#include <cstdio>
#include <memory>

#include <fmt/format.h>
#include <gio/gdesktopappinfo.h>
#include <unistd.h>

namespace quorvel::x11 {

namespace {

struct Unref {
    void operator()(void* object) const { g_object_unref(object); }
};

template <typename Type> using Owned = std::unique_ptr<Type, Unref>;

}

void ApplicationLauncher::launch(const std::string& desktopFilePath, std::uint32_t time)
{
    Owned<GDesktopAppInfo> application{
        g_desktop_app_info_new_from_filename(desktopFilePath.c_str())};
    if (!application) {
        std::fprintf(stderr, "quorvel: cannot start %s\n", desktopFilePath.c_str());
        return;
    }
    Owned<GAppLaunchContext> context{g_app_launch_context_new()};
    auto id = nextStartupID(time);
    // Both names of the same: the older of X11, the newer that toolkits read first.
    g_app_launch_context_setenv(context.get(), "DESKTOP_STARTUP_ID", id.c_str());
    g_app_launch_context_setenv(context.get(), "XDG_ACTIVATION_TOKEN", id.c_str());
    GError* error = nullptr;
    if (!g_app_info_launch(G_APP_INFO(application.get()), nullptr, context.get(), &error)) {
        std::fprintf(
            stderr, "quorvel: cannot start %s: %s\n", desktopFilePath.c_str(), error->message);
        g_error_free(error);
    }
}

/// Unique in the session; the time comes last, where window managers look for it.
std::string ApplicationLauncher::nextStartupID(std::uint32_t time)
{
    return fmt::format("quorvel-{}-{}_TIME{}", getpid(), ++m_launches, time);
}

}
