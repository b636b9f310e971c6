#include "Hosts/Linux/Applications/ApplicationLauncher.h"

#include <filesystem>
#include <utility>

#include <fmt/format.h>
#include <gio/gdesktopappinfo.h>

#include "Hosts/Linux/Applications/ActivationMessage.h"
#include "Hosts/Linux/Applications/DesktopKeyFile.h"
#include "Hosts/Linux/Applications/EntryRules.h"
#include "Hosts/Linux/Applications/LaunchEntry.h"
#include "Hosts/Linux/Applications/LaunchRequest.h"
#include "Hosts/Linux/Applications/ProgramStart.h"
#include "Hosts/Linux/Applications/TerminalProgram.h"
#include "Hosts/Posix/StandardStreams.h"

namespace quorvel::xdg {

namespace {

constexpr int kDefaultTimeout = -1; ///< GIO's own, 25 s

}

/// A message that has not been answered.
struct ApplicationLauncher::BusCall {
    ApplicationLauncher* launcher; ///< not to be touched once the call was cancelled
    LaunchRequest request;
    LaunchEntry entry;
};

/// A file whose application is looked for.
struct ApplicationLauncher::Opening {
    ApplicationLauncher* launcher; ///< not to be touched once this was cancelled
    LaunchRequest request;
};

/// A program whose end is waited for.
struct ApplicationLauncher::Started {
    ApplicationLauncher* launcher;
    LaunchRequest request;
    std::string name;
    guint watch = 0;
};

ApplicationLauncher::ApplicationLauncher(Failed failed)
    : m_failed(std::move(failed))
    , m_cancellable(g_cancellable_new())
    , m_bus([](GDBusConnection*) { }, [](GDBusConnection*) { })
{
}

ApplicationLauncher::~ApplicationLauncher()
{
    for (const auto watch : m_watches)
        g_source_remove(watch);
}

void ApplicationLauncher::start(const LaunchRequest& request)
{
    const auto file = DesktopKeyFile::read(request.desktopFile);
    const auto fileName = std::filesystem::path{request.desktopFile}.stem().string();
    if (!file)
        return fail(request, fileName, "its desktop file is missing or cannot be read");
    const auto entry = LaunchEntry::of(*file, request.desktopFile, request.action);
    if (!entry)
        return fail(request, fileName, "it no longer offers this action");
    if (const auto missing = whatIsMissing(*file))
        return fail(request, entry->name, *missing);
    if (entry->busName && m_bus.connection())
        startByMessage(request, *entry);
    else
        startAsProgram(request, *entry);
}

void ApplicationLauncher::startByMessage(LaunchRequest request, LaunchEntry entry)
{
    const auto message = activationMessage(request);
    const auto name = *entry.busName;
    auto* call = new BusCall{this, std::move(request), std::move(entry)};
    g_dbus_connection_call(m_bus.connection(), name.c_str(), objectPath(name).c_str(),
        kApplicationInterface, message.method, message.parameters, nullptr, G_DBUS_CALL_FLAGS_NONE,
        kDefaultTimeout, m_cancellable.get(), &ApplicationLauncher::onAnswered, call);
}

void ApplicationLauncher::onAnswered(GObject* bus, GAsyncResult* result, gpointer data)
{
    const std::unique_ptr<BusCall> call{static_cast<BusCall*>(data)};
    GError* error = nullptr;
    const GVariantHandle answer{
        g_dbus_connection_call_finish(G_DBUS_CONNECTION(bus), result, &error)};
    if (answer)
        return;
    const bool isUncertain = mayStillCome(error);
    g_dbus_error_strip_remote_error(error);
    const std::string reason = error->message;
    if (wasCancelled(error)) // and with it the launcher
        return;
    // Its service may be missing, or be of an older version that is still running.
    if (!call->entry.exec.empty() && !isUncertain)
        return call->launcher->startAsProgram(call->request, call->entry);
    call->launcher->fail(call->request, call->entry.name, reason);
}

void ApplicationLauncher::startAsProgram(const LaunchRequest& request, const LaunchEntry& entry)
{
    if (entry.exec.empty())
        return fail(request, entry.name, "its desktop file names no program");
    const auto commands = commandsOf(entry.exec, entry.fields, request.files);
    if (commands.empty())
        return fail(request, entry.name, "its command line is none");
    Arguments prefix;
    if (entry.isForTerminal) {
        const auto terminal = terminalPrefix();
        if (!terminal)
            return fail(request, entry.name, "it runs in a terminal, and none is installed");
        prefix = *terminal;
    }
    for (const auto& command : commands) {
        if (!programPath(command.front()))
            return fail(request, entry.name, fmt::format("{} is not installed", command.front()));
        ProgramStart start{prefix, entry.folder, entry.takesToken ? request.token : ""};
        start.arguments.insert(start.arguments.end(), command.begin(), command.end());
        const auto outcome = start.run();
        if (const auto* reason = std::get_if<std::string>(&outcome))
            return fail(request, entry.name, *reason);
        watch(std::get<GPid>(outcome), request, entry);
    }
}

/// Only its end shows that a program was found, but not what it needs.
void ApplicationLauncher::watch(
    GPid process, const LaunchRequest& request, const LaunchEntry& entry)
{
    auto* started = new Started{this, request, entry.name};
    const auto onEnd = [](GPid, gint status, gpointer data) {
        auto& ended = *static_cast<Started*>(data);
        ended.launcher->m_watches.erase(ended.watch);
        if (neverStarted(status))
            ended.launcher->fail(
                ended.request, ended.name, "a program or library that it needs is missing");
    };
    started->watch = g_child_watch_add_full(G_PRIORITY_DEFAULT, process, onEnd, started,
        [](gpointer data) { delete static_cast<Started*>(data); });
    m_watches.insert(started->watch);
}

void ApplicationLauncher::fail(
    const LaunchRequest& request, const std::string& name, const std::string& reason)
{
    posix::tell(fmt::format("cannot start {}: {}", name, reason));
    m_failed(request.desktopFile);
}

void ApplicationLauncher::openFile(const std::string& path, const std::string& token)
{
    const GObjectHandle<GFile> file{g_file_new_for_path(path.c_str())};
    auto* opening = new Opening{this, {.desktopFile = {}, .files = {path}, .token = token}};
    g_file_query_default_handler_async(file.get(), G_PRIORITY_DEFAULT, m_cancellable.get(),
        &ApplicationLauncher::onHandlerFound, opening);
}

void ApplicationLauncher::onHandlerFound(GObject* file, GAsyncResult* result, gpointer data)
{
    const std::unique_ptr<Opening> opening{static_cast<Opening*>(data)};
    GError* error = nullptr;
    const GObjectHandle<GAppInfo> handler{
        g_file_query_default_handler_finish(G_FILE(file), result, &error)};
    const std::string reason = error ? error->message : "";
    if (wasCancelled(error)) // and with it the launcher
        return;
    const auto path = opening->request.files.front();
    if (!handler)
        return posix::tell(fmt::format("cannot open {}: {}", path, reason));
    const char* desktopFile = g_desktop_app_info_get_filename(G_DESKTOP_APP_INFO(handler.get()));
    opening->request.desktopFile = desktopFile ? desktopFile : "";
    opening->launcher->start(opening->request);
}

std::optional<std::string> ApplicationLauncher::handlerOf(const std::string& url)
{
    const char* scheme = g_uri_peek_scheme(url.c_str());
    if (!scheme || !g_uri_is_valid(url.c_str(), G_URI_FLAGS_NONE, nullptr))
        return std::nullopt;
    const GObjectHandle<GAppInfo> handler{g_app_info_get_default_for_uri_scheme(scheme)};
    const char* file
        = handler ? g_desktop_app_info_get_filename(G_DESKTOP_APP_INFO(handler.get())) : nullptr;
    return file ? std::optional<std::string>{file} : std::nullopt;
}

bool ApplicationLauncher::opensManyWindows(const std::string& desktopFile)
{
    const auto file = DesktopKeyFile::read(desktopFile);
    return file && !file->flag("SingleMainWindow").value_or(false);
}

std::vector<ApplicationAction> ApplicationLauncher::actions(const std::string& desktopFile)
{
    std::vector<ApplicationAction> actions;
    const auto file = DesktopKeyFile::read(desktopFile);
    if (!file)
        return actions;
    for (auto& action : file->list("Actions").value_or(std::vector<std::string>{})) {
        auto title = file->localText(actionGroup(action).c_str(), "Name");
        const auto entry = LaunchEntry::of(*file, desktopFile, action);
        // A menu would take a nameless entry for a separator.
        if (!title.empty() && entry && (entry->busName || !entry->exec.empty()))
            actions.push_back({std::move(action), std::move(title)});
    }
    return actions;
}

}
