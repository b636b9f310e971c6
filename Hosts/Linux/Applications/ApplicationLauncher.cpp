#include "Hosts/Linux/Applications/ApplicationLauncher.h"

#include <algorithm>

#include <fmt/format.h>
#include <gio/gdesktopappinfo.h>

#include "Hosts/Linux/GHandles.h"
#include "Hosts/Linux/Text.h"
#include "Hosts/Posix/StandardStreams.h"

namespace quorvel::xdg {

namespace {

using DesktopFile = GObjectHandle<GDesktopAppInfo>;
using LaunchContext = GObjectHandle<GAppLaunchContext>;

DesktopFile read(const std::string& path)
{
    return DesktopFile{g_desktop_app_info_new_from_filename(path.c_str())};
}

void tellFailure(const std::string& what, GError* error)
{
    posix::tell(fmt::format(
        "cannot start {}: {}", what, error ? error->message : "the desktop file names no program"));
    g_clear_error(&error);
}

LaunchContext makeContext(const std::string& token)
{
    LaunchContext context{g_app_launch_context_new()};
    // Both names of the same: the older of X11, the newer that toolkits read first.
    g_app_launch_context_setenv(context.get(), "DESKTOP_STARTUP_ID", token.c_str());
    g_app_launch_context_setenv(context.get(), "XDG_ACTIVATION_TOKEN", token.c_str());
    return context;
}

}

void ApplicationLauncher::launch(const std::string& desktopFilePath, const std::string& token,
    const std::vector<std::string>& files)
{
    auto application = read(desktopFilePath);
    if (!application)
        return tellFailure(desktopFilePath, nullptr);
    GList* list = nullptr;
    for (auto& file : files)
        list = g_list_append(list, g_file_new_for_path(file.c_str()));
    GError* error = nullptr;
    if (!g_app_info_launch(G_APP_INFO(application.get()), list, makeContext(token).get(), &error))
        tellFailure(desktopFilePath, error);
    g_list_free_full(list, g_object_unref);
}

bool ApplicationLauncher::opensManyWindows(const std::string& desktopFilePath)
{
    auto application = read(desktopFilePath);
    return application && !g_desktop_app_info_get_boolean(application.get(), "SingleMainWindow");
}

std::vector<ApplicationAction> ApplicationLauncher::actions(const std::string& desktopFilePath)
{
    std::vector<ApplicationAction> actions;
    auto application = read(desktopFilePath);
    if (!application)
        return actions;
    for (auto* action = g_desktop_app_info_list_actions(application.get()); *action; ++action) {
        const GText title{g_desktop_app_info_get_action_name(application.get(), *action)};
        // A menu would take a nameless entry for a separator.
        if (title && *title)
            actions.push_back({*action, validUtf8(title.get())});
    }
    return actions;
}

void ApplicationLauncher::perform(
    const std::string& desktopFilePath, const std::string& action, const std::string& token)
{
    // The file may be another one since the menu was made.
    auto offered = actions(desktopFilePath);
    auto isOffered = [&](auto& candidate) { return candidate.identifier == action; };
    auto application = read(desktopFilePath);
    if (!application || std::none_of(offered.begin(), offered.end(), isOffered))
        return tellFailure(desktopFilePath, nullptr);
    g_desktop_app_info_launch_action(application.get(), action.c_str(), makeContext(token).get());
}

void ApplicationLauncher::openFile(const std::string& path)
{
    const GObjectHandle<GFile> file{g_file_new_for_path(path.c_str())};
    const GText uri{g_file_get_uri(file.get())};
    g_app_info_launch_default_for_uri_async(
        uri.get(), nullptr, nullptr,
        [](GObject*, GAsyncResult* result, void*) {
            GError* error = nullptr;
            if (!g_app_info_launch_default_for_uri_finish(result, &error))
                tellFailure("a file", error);
        },
        nullptr);
}

}
