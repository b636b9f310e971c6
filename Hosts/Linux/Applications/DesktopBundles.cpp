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
        entries.push_back({files->path().filename().string(), files->is_directory(unknown)});
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
