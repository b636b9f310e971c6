#include "Tests/Support/FakeWorkspace.h"

#include <algorithm>

#include "Tests/Support/Contract.h"
#include "Tests/Support/FakeDesktop.h"

namespace quorvel::test {

void FakeWorkspace::enumerateRunningApplications(
    const std::function<void(const RunningApplication&)>& visitor) const
{
    if (!m_desktop.dispatch().isOnMain())
        contractBroken("running applications were listed away from the main thread");
    for (auto& [pid, application] : m_desktop.model().applications)
        visitor(application.info);
}

std::optional<RunningApplication> FakeWorkspace::runningApplication(ProcessID pid) const
{
    auto* application = m_desktop.model().application(pid);
    return application ? std::optional{application->info} : std::nullopt;
}

std::optional<ProcessID> FakeWorkspace::frontmostApplication() const
{
    return m_desktop.model().frontmost;
}

std::optional<ApplicationURL> FakeWorkspace::applicationURL(std::string_view bundleIdentifier) const
{
    auto found = m_installed.find(bundleIdentifier);
    return found == m_installed.end() ? std::nullopt : std::optional{ApplicationURL{found->second}};
}

void FakeWorkspace::install(std::string bundleIdentifier, std::string path)
{
    m_installed.insert_or_assign(std::move(bundleIdentifier), std::move(path));
}

void FakeWorkspace::uninstall(const std::string& path)
{
    std::erase_if(m_installed, [&](auto& application) { return application.second == path; });
}

Image FakeWorkspace::image(const std::string& name) const
{
    ++m_iconLookups;
    auto& image = m_images[name];
    if (!image)
        image = makeIcon ? makeIcon() : std::make_shared<FakeImage>(name);
    return image;
}

Image FakeWorkspace::icon(const ApplicationURL& url) const
{
    return image(url.path);
}

std::optional<IconPicture> FakeWorkspace::renderIcon(const ApplicationURL& url, int pixels) const
{
    m_renderedIcons.push_back(url.path);
    if (brokenIcons.contains(url.path))
        return std::nullopt;
    auto bytes = static_cast<std::size_t>(pixels) * static_cast<std::size_t>(pixels) * 4;
    auto size = std::to_string(pixels);
    return IconPicture{std::make_shared<FakeImage>(url.path + " in " + size), bytes};
}

Image FakeWorkspace::runningApplicationIcon(ProcessID pid) const
{
    auto* application = m_desktop.model().application(pid);
    return application ? image("running " + application->info.localizedName) : nullptr;
}

Image FakeWorkspace::genericApplicationIcon() const
{
    return image("generic");
}

void FakeWorkspace::openApplication(const ApplicationURL& url)
{
    m_opened.push_back(url.path);
    if (!isRunning(url))
        beginLaunch(url);
}

void FakeWorkspace::openNewInstance(const ApplicationURL& url)
{
    m_opened.push_back("new " + url.path);
    beginLaunch(url);
}

void FakeWorkspace::openFiles(const std::vector<std::string>& paths, const ApplicationURL& url)
{
    for (auto& path : paths)
        m_opened.push_back(path + " with " + url.path);
    beginLaunch(url);
}

std::vector<ApplicationAction> FakeWorkspace::actions(const ApplicationURL& url) const
{
    auto offered = offeredActions.find(url.path);
    return offered == offeredActions.end() ? std::vector<ApplicationAction>{} : offered->second;
}

void FakeWorkspace::perform(const ApplicationAction& action, const ApplicationURL& url)
{
    m_opened.push_back(action.identifier + " of " + url.path);
    beginLaunch(url);
}

void FakeWorkspace::failToLaunch(const std::string& bundleIdentifier)
{
    launchDidFail.emit({bundleIdentifier, bundleIdentifier});
}

void FakeWorkspace::beginLaunch(const ApplicationURL& url)
{
    auto bundleIdentifier = identifier(url);
    launchDidBegin.emit({bundleIdentifier, bundleIdentifier.value_or(url.path)});
}

bool FakeWorkspace::isRunning(const ApplicationURL& url) const
{
    auto bundleIdentifier = identifier(url);
    auto& running = m_desktop.model().applications;
    return bundleIdentifier && std::ranges::any_of(running, [&](auto& entry) {
        return entry.second.info.bundleIdentifier == bundleIdentifier;
    });
}

std::optional<std::string> FakeWorkspace::identifier(const ApplicationURL& url) const
{
    auto found
        = std::ranges::find_if(m_installed, [&](auto& entry) { return entry.second == url.path; });
    return found == m_installed.end() ? std::nullopt : std::optional{found->first};
}

bool FakeWorkspace::activateCooperatively(ProcessID pid)
{
    return activate(pid, Activation::cooperative);
}

bool FakeWorkspace::activateDirectly(ProcessID pid)
{
    return activate(pid, Activation::direct);
}

bool FakeWorkspace::activate(ProcessID pid, Activation activation)
{
    m_activations.push_back({activation, pid});
    auto* application = m_desktop.model().application(pid);
    if (!application || application->faults.refusesActivation)
        return false;
    m_isSelfActive = false;
    m_desktop.activate(pid);
    return true;
}

}
