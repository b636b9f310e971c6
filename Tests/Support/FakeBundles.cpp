#include "Tests/Support/FakeBundles.h"

#include "Hosts/MacOS/Rules/ApplicationPlaces.h"

namespace quorvel::test {

namespace {

std::string folderOf(const std::string& path)
{
    return path.substr(0, path.rfind('/'));
}

bool isInFolder(const std::string& path, const std::string& folder)
{
    return path.size() > folder.size() && folderOf(path) == folder;
}

bool isBelow(const std::string& path, const std::string& folder)
{
    return path == folder || path.starts_with(folder + '/');
}

}

FakeBundles::FakeBundles() : m_sources(applicationPlaces(kHome, std::nullopt))
{
}

std::optional<std::vector<FolderEntry>> FakeBundles::list(const std::string& folder) const
{
    if (onQuestion)
        onQuestion();
    if (!m_folders.contains(folder) || m_unreadable.contains(folder))
        return std::nullopt;
    std::vector<FolderEntry> entries;
    auto add = [&](const std::string& path) {
        if (isInFolder(path, folder))
            entries.push_back({path.substr(folder.size() + 1), true, m_hidden.contains(path)});
    };
    for (auto& [path, bundle] : m_bundles)
        add(path);
    for (auto& path : m_folders)
        add(path);
    return entries;
}

std::optional<BundleDescription> FakeBundles::describe(const ApplicationURL& url) const
{
    if (onQuestion)
        onQuestion();
    auto found = m_bundles.find(url.path);
    return found == m_bundles.end() ? std::nullopt : std::optional{found->second};
}

void FakeBundles::install(const std::string& path, BundleDescription description)
{
    makeFolder(folderOf(path));
    m_bundles.insert_or_assign(path, std::move(description));
}

void FakeBundles::makeFolder(const std::string& path)
{
    for (auto folder = path; !folder.empty(); folder = folderOf(folder))
        m_folders.insert(folder);
}

void FakeBundles::remove(const std::string& path)
{
    std::erase_if(m_bundles, [&](auto& entry) { return isBelow(entry.first, path); });
    std::erase_if(m_folders, [&](auto& folder) { return isBelow(folder, path); });
}

}
