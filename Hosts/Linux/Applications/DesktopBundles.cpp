#include "Hosts/Linux/Applications/DesktopBundles.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "Hosts/Linux/Applications/DesktopEntries.h"
#include "Hosts/Linux/Applications/DesktopEntryFile.h"
#include "Hosts/Linux/Applications/DesktopEntryIndex.h"
#include "Hosts/Linux/Applications/DesktopKeyFile.h"
#include "Hosts/Linux/Applications/EntryRules.h"

namespace quorvel::xdg {
namespace {

constexpr std::string_view kExtension = "desktop";

/// A folder that leads back to itself would be listed again on each level below.
bool leadsUpwards(const std::filesystem::directory_entry& entry)
{
    std::error_code error;
    if (!entry.is_symlink(error))
        return false;
    const auto target = std::filesystem::canonical(entry.path(), error).string() + '/';
    const auto own = std::filesystem::canonical(entry.path().parent_path(), error).string() + '/';
    return own.starts_with(target);
}

}

ApplicationSources DesktopBundles::applicationSources() const
{
    ApplicationSources sources;
    sources.extension = kExtension;
    for (const auto& folder : m_entries.folders())
        sources.folders.push_back({folder, DesktopEntryIndex::kDeepestFolder, FolderWatch::always});
    return sources;
}

std::optional<std::vector<FolderEntry>> DesktopBundles::list(const std::string& folder) const
{
    std::error_code error;
    std::filesystem::directory_iterator files{folder, error};
    if (error)
        return std::nullopt;
    std::vector<FolderEntry> entries;
    for (; !error && files != std::filesystem::directory_iterator{}; files.increment(error)) {
        std::error_code unknown;
        const bool isFolder = files->is_directory(unknown) && !leadsUpwards(*files);
        entries.push_back({files->path().filename().string(), isFolder});
    }
    return entries;
}

std::optional<BundleDescription> DesktopBundles::describe(const ApplicationURL& url) const
{
    std::error_code error;
    if (!std::filesystem::exists(url.path, error))
        return std::nullopt;
    BundleDescription description;
    description.identifier = identifier(url.path);
    const auto file = DesktopKeyFile::read(url.path);
    description.isOffered = file && isForMenus(*file) && !whatIsMissing(*file);
    if (!file)
        return description;
    if (auto name = file->localText("Name"); !name.empty())
        description.displayName = std::move(name);
    description.genericName = file->localText("GenericName");
    description.keywords = file->localList("Keywords").value_or(std::vector<std::string>{});
    description.executable = commandName(file->text("Exec"));
    return description;
}

/// Its place in the folder, with a hyphen for each slash and without the ending.
std::optional<std::string> DesktopBundles::identifier(const std::string& path) const
{
    for (const auto& folder : m_entries.folders()) {
        if (!path.starts_with(folder + '/') || !path.ends_with(kExtension))
            continue;
        const auto start = folder.size() + 1;
        auto id = path.substr(start, path.size() - start - kExtension.size() - 1);
        std::replace(id.begin(), id.end(), '/', '-');
        return id;
    }
    return std::nullopt;
}

}
