#include "Hosts/Linux/Desktop/DesktopWorkspace.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <utility>

#include "Hosts/Linux/Applications/DesktopEntries.h"
#include "Hosts/Linux/Applications/Icons.h"
#include "Hosts/Linux/Desktop/DesktopRequests.h"
#include "Hosts/Linux/Desktop/DesktopTracker.h"
#include "Hosts/Linux/Desktop/LaunchTokens.h"
#include "Hosts/Linux/Desktop/WindowIcons.h"

namespace quorvel::xdg {

namespace {

/// The windows of an application that are asked for their icon; it is mostly the same in all.
constexpr std::size_t kIconWindows = 3;

}

DesktopWorkspace::DesktopWorkspace(const SharedModel& model, DesktopTracker& tracker,
    DesktopRequests& requests, LaunchTokens& tokens, WindowIcons& windowIcons,
    DesktopEntries& entries, Icons& icons)
    : m_model(model)
    , m_tracker(tracker)
    , m_requests(requests)
    , m_tokens(tokens)
    , m_windowIcons(windowIcons)
    , m_entries(entries)
    , m_icons(icons)
    , m_launcher(
          [this](const std::string& desktopFile) { launchDidFail.emit(launchOf(desktopFile)); })
    , m_sleep([this] { didWake.emit(); })
{
    m_subscriptions.push_back(tracker.applicationDidLaunch.subscribe(
        [this](const RunningApplication& application) { didLaunch.emit(application); }));
    m_subscriptions.push_back(tracker.applicationDidTerminate.subscribe(
        [this](const RunningApplication& application) { didTerminate.emit(application); }));
    m_subscriptions.push_back(tracker.applicationDidActivate.subscribe(
        [this](const RunningApplication& application) { didActivate.emit(application); }));
    m_subscriptions.push_back(
        tracker.activeSpaceDidChange.subscribe([this] { activeSpaceDidChange.emit(); }));
    m_subscriptions.push_back(tracker.icons().didChange.subscribe(
        [this](const std::string& bundleIdentifier) { iconDidChange.emit(bundleIdentifier); }));
    m_subscriptions.push_back(entries.changed.subscribe([this] { entriesDidChange(); }));
    m_subscriptions.push_back(icons.themeDidChange.subscribe([this] { iconDidChange.emit({}); }));
}

/// An application may have been installed, with its icon, while it runs.
void DesktopWorkspace::entriesDidChange()
{
    std::set<std::string> running;
    enumerateRunningApplications([&](const RunningApplication& application) {
        if (application.bundleIdentifier)
            running.insert(*application.bundleIdentifier);
    });
    for (auto& bundleIdentifier : running)
        iconDidChange.emit(bundleIdentifier);
}

void DesktopWorkspace::enumerateRunningApplications(
    const std::function<void(const RunningApplication&)>& visitor) const
{
    m_model.read([&](const DesktopModel& model) {
        for (auto& [pid, application] : model.applications)
            visitor(application.running());
    });
}

std::optional<RunningApplication> DesktopWorkspace::runningApplication(ProcessID pid) const
{
    return m_model.read([&](const DesktopModel& model) -> std::optional<RunningApplication> {
        auto* application = model.application(pid);
        return application ? std::optional{application->running()} : std::nullopt;
    });
}

std::optional<ProcessID> DesktopWorkspace::frontmostApplication() const
{
    return m_model.read([](const DesktopModel& model) {
        bool isThere = model.frontmost && model.application(*model.frontmost);
        return isThere ? model.frontmost : std::nullopt;
    });
}

std::optional<ApplicationURL> DesktopWorkspace::applicationURL(
    std::string_view bundleIdentifier) const
{
    auto path = m_entries.path(bundleIdentifier);
    return path ? std::optional{ApplicationURL{*path}} : std::nullopt;
}

Image DesktopWorkspace::icon(const ApplicationURL& url) const
{
    return m_icons.forEntry(url.path);
}

std::optional<IconPicture> DesktopWorkspace::renderIcon(const ApplicationURL& url, int pixels) const
{
    return m_icons.render(url.path, pixels);
}

Image DesktopWorkspace::runningApplicationIcon(ProcessID pid) const
{
    return windowIcon(pid);
}

Image DesktopWorkspace::windowIcon(ProcessID pid) const
{
    auto application = runningApplication(pid);
    if (!application || !application->bundleIdentifier)
        return nullptr;
    auto identifier = *application->bundleIdentifier;
    auto reload = [this, identifier] { return pixelsOf(windowsOf(identifier)); };
    return m_icons.fromPixels(pixelsOf(windowsOf(pid)), std::move(reload));
}

std::vector<IconPixels> DesktopWorkspace::pixelsOf(const std::vector<WindowID>& windows) const
{
    for (std::size_t i = 0; i < std::min(windows.size(), kIconWindows); ++i) {
        if (auto pixels = m_windowIcons.of(windows[i]); !pixels.empty())
            return pixels;
    }
    return {};
}

/// Whatever process it runs in by now.
std::vector<WindowID> DesktopWorkspace::windowsOf(const std::string& bundleIdentifier) const
{
    return m_model.read([&](const DesktopModel& model) {
        std::vector<WindowID> all;
        for (auto& [id, window] : model.windows) {
            auto* owner = model.application(window.owner);
            if (owner && owner->bundleIdentifier == bundleIdentifier)
                all.push_back(id);
        }
        return all;
    });
}

std::vector<WindowID> DesktopWorkspace::windowsOf(ProcessID pid) const
{
    return m_model.read([&](const DesktopModel& model) { return model.windowsOf(pid); });
}

Image DesktopWorkspace::genericApplicationIcon() const
{
    return m_icons.generic();
}

void DesktopWorkspace::openApplication(const ApplicationURL& url)
{
    if (auto window = lastActiveWindow(url))
        m_requests.activate(*window);
    else
        openNewInstance(url);
}

void DesktopWorkspace::openNewInstance(const ApplicationURL& url)
{
    launch({.desktopFile = url.path});
}

void DesktopWorkspace::openFiles(const std::vector<std::string>& paths, const ApplicationURL& url)
{
    launch({.desktopFile = url.path, .files = paths});
}

void DesktopWorkspace::openFile(const std::string& path)
{
    m_tokens.request([this, path](const std::string& token) { m_launcher.openFile(path, token); });
}

/// The application is known at once, and started like any other.
bool DesktopWorkspace::openURL(const std::string& url)
{
    if (const GText path{g_filename_from_uri(url.c_str(), nullptr, nullptr)}) {
        openFile(path.get());
        return true;
    }
    const auto desktopFile = ApplicationLauncher::handlerOf(url);
    if (desktopFile)
        launch({.desktopFile = *desktopFile, .files = {url}});
    return desktopFile.has_value();
}

void DesktopWorkspace::launch(LaunchRequest request)
{
    launchDidBegin.emit(launchOf(request.desktopFile));
    m_tokens.request([this, request = std::move(request)](const std::string& token) mutable {
        request.token = token;
        m_launcher.start(request);
    });
}

ApplicationLaunch DesktopWorkspace::launchOf(const std::string& desktopFile) const
{
    auto stem = std::filesystem::path{desktopFile}.stem().string();
    return {m_entries.identifier(desktopFile),
        m_entries.nameInFile(desktopFile).value_or(std::move(stem))};
}

std::vector<ApplicationAction> DesktopWorkspace::actions(const ApplicationURL& url) const
{
    return ApplicationLauncher::actions(url.path);
}

void DesktopWorkspace::perform(const ApplicationAction& action, const ApplicationURL& url)
{
    launch({.desktopFile = url.path, .action = action.identifier});
}

void DesktopWorkspace::requestTermination(ProcessID pid)
{
    for (auto window : windowsOf(pid))
        m_requests.close(window);
}

std::optional<WindowID> DesktopWorkspace::lastActiveWindow(const ApplicationURL& url) const
{
    std::optional<WindowID> last;
    std::uint64_t activation = 0;
    m_model.read([&](const DesktopModel& model) {
        for (auto& [id, window] : model.windows) {
            auto* owner = model.application(window.owner);
            bool isLater = !last || window.activation > activation;
            if (!owner || !window.isStandard || window.layer != 0 || !isLater
                || m_entries.path(owner->bundleIdentifier) != url.path)
                continue;
            last = id;
            activation = window.activation;
        }
    });
    return last;
}

bool DesktopWorkspace::isSelfActive() const
{
    return m_tracker.isSelfActive();
}

bool DesktopWorkspace::activateCooperatively(ProcessID pid)
{
    if (windowsOf(pid).empty())
        return false;
    m_requests.activateApplication(pid);
    return true;
}

bool DesktopWorkspace::activateDirectly(ProcessID pid)
{
    return activateCooperatively(pid);
}

}
