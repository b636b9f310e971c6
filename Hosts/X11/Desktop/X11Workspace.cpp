#include "Hosts/X11/Desktop/X11Workspace.h"

#include <set>

#include "Hosts/Linux/Applications/DesktopEntries.h"
#include "Hosts/Linux/Applications/Icons.h"
#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Desktop/Mirror.h"
#include "Hosts/X11/Desktop/RequestBatch.h"
#include "Hosts/X11/Desktop/WindowRequests.h"

namespace quorvel::xdg::x11 {

namespace {

/// The windows of an application that are asked for their icon; it is mostly the same in all.
constexpr std::size_t kIconWindows = 3;

}

X11Workspace::X11Workspace(Connection& connection, const SharedModel& model, Mirror& mirror,
    WindowRequests& requests, DesktopEntries& entries, Icons& icons)
    : m_connection(connection)
    , m_model(model)
    , m_mirror(mirror)
    , m_requests(requests)
    , m_entries(entries)
    , m_icons(icons)
    , m_time(connection)
    , m_sleep([this] { didWake.emit(); })
{
    m_subscriptions.push_back(mirror.applicationDidLaunch.subscribe(
        [this](const RunningApplication& application) { didLaunch.emit(application); }));
    m_subscriptions.push_back(mirror.applicationDidTerminate.subscribe(
        [this](const RunningApplication& application) { didTerminate.emit(application); }));
    m_subscriptions.push_back(mirror.applicationDidActivate.subscribe(
        [this](const RunningApplication& application) { didActivate.emit(application); }));
    m_subscriptions.push_back(
        mirror.activeSpaceDidChange.subscribe([this] { activeSpaceDidChange.emit(); }));
    m_subscriptions.push_back(mirror.iconDidChange.subscribe(
        [this](const std::string& bundleIdentifier) { iconDidChange.emit(bundleIdentifier); }));
    m_subscriptions.push_back(entries.changed.subscribe([this] { entriesDidChange(); }));
}

/// An application may have been installed, with its icon, while it runs.
void X11Workspace::entriesDidChange()
{
    std::set<std::string> running;
    enumerateRunningApplications([&](const RunningApplication& application) {
        if (application.bundleIdentifier)
            running.insert(*application.bundleIdentifier);
    });
    for (auto& bundleIdentifier : running)
        iconDidChange.emit(bundleIdentifier);
}

void X11Workspace::enumerateRunningApplications(
    const std::function<void(const RunningApplication&)>& visitor) const
{
    m_model.read([&](const DesktopModel& model) {
        for (auto& [pid, application] : model.applications)
            visitor(application.running());
    });
}

std::optional<RunningApplication> X11Workspace::runningApplication(ProcessID pid) const
{
    return m_model.read([&](const DesktopModel& model) -> std::optional<RunningApplication> {
        auto* application = model.application(pid);
        return application ? std::optional{application->running()} : std::nullopt;
    });
}

std::optional<ProcessID> X11Workspace::frontmostApplication() const
{
    return m_model.read([](const DesktopModel& model) {
        bool isThere = model.frontmost && model.application(*model.frontmost);
        return isThere ? model.frontmost : std::nullopt;
    });
}

std::optional<ApplicationURL> X11Workspace::applicationURL(std::string_view bundleIdentifier) const
{
    auto path = m_entries.path(bundleIdentifier);
    return path ? std::optional{ApplicationURL{*path}} : std::nullopt;
}

Image X11Workspace::icon(const ApplicationURL& url) const
{
    return m_icons.forEntry(url.path);
}

Image X11Workspace::runningApplicationIcon(ProcessID pid) const
{
    return windowIcon(pid);
}

Image X11Workspace::windowIcon(ProcessID pid) const
{
    auto* pair = m_mirror.processes().find(pid);
    if (!pair)
        return nullptr;
    std::size_t asked = 0;
    for (auto id : pair->windows) {
        auto* client = m_mirror.clients().find(id);
        if (!client || asked++ >= kIconWindows)
            break;
        std::vector<IconPixels> pixels;
        RequestBatch batch{m_connection.raw()};
        batch.property(client->window, m_connection.atoms().netWmIcon, limits::icons,
            [&](const RawProperty& raw) { pixels = decodeIcons(raw); });
        batch.finish();
        if (auto image = pixels.empty() ? Image{} : m_icons.fromPixels(std::move(pixels)))
            return image;
    }
    return nullptr;
}

Image X11Workspace::genericApplicationIcon() const
{
    return m_icons.generic();
}

void X11Workspace::openApplication(const ApplicationURL& url)
{
    if (auto window = lastActiveWindow(url))
        m_requests.activate(*window);
    else
        openNewInstance(url);
}

void X11Workspace::openNewInstance(const ApplicationURL& url)
{
    m_time.ask([this, path = url.path](auto time) { m_launcher.launch(path, time); });
}

void X11Workspace::openFiles(const std::vector<std::string>& paths, const ApplicationURL& url)
{
    m_time.ask([this, paths, path = url.path](auto time) { m_launcher.launch(path, time, paths); });
}

std::vector<ApplicationAction> X11Workspace::actions(const ApplicationURL& url) const
{
    return ApplicationLauncher::actions(url.path);
}

void X11Workspace::perform(const ApplicationAction& action, const ApplicationURL& url)
{
    m_time.ask([this, id = action.identifier, path = url.path](
                   auto time) { m_launcher.perform(path, id, time); });
}

void X11Workspace::requestTermination(ProcessID pid)
{
    auto* pair = m_mirror.processes().find(pid);
    if (!pair)
        return;
    for (auto window : pair->windows)
        m_requests.close(window);
}

std::optional<WindowID> X11Workspace::lastActiveWindow(const ApplicationURL& url) const
{
    std::vector<std::pair<WindowID, std::string>> candidates;
    m_model.read([&](const DesktopModel& model) {
        for (auto& [id, window] : model.windows) {
            auto* owner = model.application(window.owner);
            if (owner && window.isStandard && window.layer == 0)
                candidates.emplace_back(id, owner->bundleIdentifier);
        }
    });
    const Client* last = nullptr;
    for (auto& [id, bundleIdentifier] : candidates) {
        auto* client = m_mirror.clients().find(id);
        if (client && (!last || client->activation > last->activation)
            && m_entries.path(bundleIdentifier) == url.path)
            last = client;
    }
    return last ? std::optional{last->id} : std::nullopt;
}

bool X11Workspace::isSelfActive() const
{
    return m_mirror.isSelfActive();
}

bool X11Workspace::activateCooperatively(ProcessID pid)
{
    auto* pair = m_mirror.processes().find(pid);
    if (!pair || pair->windows.empty())
        return false;
    m_requests.activateApplication(pid);
    return true;
}

bool X11Workspace::activateDirectly(ProcessID pid)
{
    return activateCooperatively(pid);
}

}
