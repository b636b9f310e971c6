#include "Quorvel/Core/AppDiscovery.h"

#include <algorithm>

#include "Quorvel/Platform/Text.h"

namespace quorvel {
namespace {

std::string_view fileName(std::string_view path)
{
    return path.substr(path.rfind('/') + 1);
}

/// What a search looks at besides the name, in the order in which it counts.
std::vector<std::string> phrasesOf(const BundleDescription& bundle)
{
    std::vector<std::string> phrases{bundle.genericName};
    phrases.insert(phrases.end(), bundle.keywords.begin(), bundle.keywords.end());
    phrases.push_back(bundle.executable);
    return phrases;
}

}

AppDiscovery::AppDiscovery(
    const Bundles& bundles, const Text& text, const std::atomic_bool& isCancelled)
    : m_bundles(bundles)
    , m_text(text)
    , m_isCancelled(isCancelled)
    , m_sources(bundles.applicationSources())
{
}

std::vector<AppInfo> AppDiscovery::discoverApplications()
{
    for (const auto& folder : m_sources.folders)
        discoverApps(folder);
    for (const auto& extra : m_sources.extras)
        offer(extra.path);
    sortByName();
    std::vector<AppInfo> apps;
    apps.reserve(m_apps.size());
    for (auto& facts : m_apps)
        apps.emplace_back(std::move(facts));
    return apps;
}

/// The uppermost folders first: what the limit cuts off is the deepest.
void AppDiscovery::discoverApps(const ApplicationFolder& folder)
{
    std::deque<Folder> folders;
    const bool isListed = discoverAppsIn({folder.path}, folder.maximumDepth, folders);
    for (; !folders.empty() && m_listedFolders < kMostFolders && !isEnough(); folders.pop_front())
        discoverAppsIn(folders.front(), folder.maximumDepth, folders);
    if (folder.watch == FolderWatch::always
        || (folder.watch == FolderWatch::whileItExists && isListed))
        m_foldersToWatch.push_back(folder.path);
}

bool AppDiscovery::discoverAppsIn(
    const Folder& folder, int maximumDepth, std::deque<Folder>& folders)
{
    auto entries = m_bundles.list(folder.path);
    if (!entries)
        return false;
    ++m_listedFolders;
    // Of two with one identity the same one counts each time, whatever the disk's order.
    std::ranges::sort(*entries, {}, &FolderEntry::name);
    for (const auto& entry : *entries) {
        if (isEnough())
            break;
        if (entry.isHidden)
            continue;
        auto path = folder.path + '/' + entry.name;
        if (isApp(path))
            offer(path);
        else if (entry.isFolder && folder.depth < maximumDepth)
            folders.push_back({std::move(path), folder.depth + 1});
    }
    return true;
}

bool AppDiscovery::isEnough() const
{
    return m_isCancelled || m_apps.size() >= kMostApps;
}

void AppDiscovery::offer(const std::string& path)
{
    if (auto app = createAppInfo({path}, m_seenBundleIDs))
        m_apps.push_back(std::move(*app));
}

std::optional<AppInfo::Facts> AppDiscovery::createAppInfo(
    const ApplicationURL& url, std::set<std::string>& seenBundleIDs) const
{
    const auto bundle = isApp(url.path) ? m_bundles.describe(url) : std::nullopt;
    if (!bundle)
        return std::nullopt;
    auto id = bundle->identifier.value_or("");
    if (id.empty())
        id = url.path;
    if (!seenBundleIDs.insert(id).second || !bundle->isOffered)
        return std::nullopt;
    auto name = nameOf(url, *bundle);
    if (name.empty())
        return std::nullopt;
    SearchTerms terms{name, phrasesOf(*bundle), m_text};
    return AppInfo::Facts{std::move(id), std::move(name), url, std::move(terms)};
}

bool AppDiscovery::isApp(std::string_view path) const
{
    const auto name = fileName(path);
    const auto& extension = m_sources.extension;
    return name.size() > extension.size() + 1 && name.ends_with(extension)
        && name[name.size() - extension.size() - 1] == '.';
}

std::string AppDiscovery::nameOf(const ApplicationURL& url, const BundleDescription& bundle) const
{
    if (bundle.displayName)
        return *bundle.displayName;
    if (bundle.name)
        return *bundle.name;
    const auto name = fileName(url.path);
    return std::string{name.substr(0, name.size() - m_sources.extension.size() - 1)};
}

void AppDiscovery::sortByName()
{
    const auto isBefore
        = [this](const auto& a, const auto& b) { return m_text.compare(a.name, b.name) < 0; };
    std::ranges::stable_sort(m_apps, isBefore);
    for (std::size_t i = 1; i < m_apps.size(); ++i) {
        const bool isSame = !isBefore(m_apps[i - 1], m_apps[i]);
        m_apps[i].nameOrder = m_apps[i - 1].nameOrder + (isSame ? 0 : 1);
    }
}

}
