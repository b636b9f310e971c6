#include "Hosts/Linux/Loop/FolderMonitors.h"

#include <algorithm>
#include <filesystem>
#include <set>

#include <glib.h>

namespace quorvel::xdg {

namespace {

/// Each takes one of the few thousand watches that a user has.
constexpr std::size_t kMostFolders = 500;

bool isFolder(const std::string& path)
{
    return g_file_test(path.c_str(), G_FILE_TEST_IS_DIR);
}

bool isBelow(std::string_view path, std::string_view folder)
{
    return path.size() > folder.size() && path.starts_with(folder) && path[folder.size()] == '/';
}

/// The path itself, or the nearest above it, that exists.
std::string nearestFolder(std::string path)
{
    while (path.size() > 1 && !isFolder(path))
        path = std::filesystem::path{path}.parent_path().string();
    return path;
}

}

FolderMonitors::FolderMonitors(std::vector<std::string> folders, int depth, Callback callback)
    : m_roots(std::move(folders))
    , m_depth(depth)
    , m_callback(std::make_shared<const Callback>(std::move(callback)))
{
    for (const auto& root : m_roots)
        watchRoot(root);
}

void FolderMonitors::didChange(const std::string& path, InotifyWatch::Change change)
{
    using Change = InotifyWatch::Change;
    const bool isWritten = change == Change::written;
    if (change == Change::disappeared || change == Change::lost)
        forgetTree(path);
    std::set<std::string> news;
    for (const auto& root : m_roots) {
        const bool isOnTheWay = path == root || isBelow(root, path);
        if (isOnTheWay && !isWritten && wayDidChange(root))
            news.insert(root); // with what is in it already
    }
    if (const auto depth = depthOf(path)) {
        if (!isWritten && *depth > 0 && *depth <= m_depth)
            watchTree(path, *depth);
        news.insert(path);
    }
    const std::weak_ptr<const Callback> current = m_callback;
    for (const auto& changed : news) {
        if (const auto callback = current.lock())
            (*callback)(changed);
    }
}

std::optional<int> FolderMonitors::depthOf(std::string_view path) const
{
    std::optional<int> least;
    for (const auto& root : m_roots) {
        if (path != root && !isBelow(path, root))
            continue;
        const auto depth = static_cast<int>(std::ranges::count(path.substr(root.size()), '/'));
        least = std::min(least.value_or(depth), depth);
    }
    return least;
}

bool FolderMonitors::wayDidChange(const std::string& root)
{
    const bool wasThere = m_monitors.contains(root);
    watchRoot(root);
    dropOldWays();
    return !wasThere && m_monitors.contains(root);
}

void FolderMonitors::watchRoot(const std::string& root)
{
    watchTree(root, 0);
    // The way may become longer while it is being looked for.
    for (auto folder = nearestFolder(root); watchOne(folder) && folder != nearestFolder(root);)
        folder = nearestFolder(root);
}

/// Once a folder is there, what happens beside the way to it is nobody's business.
void FolderMonitors::dropOldWays()
{
    std::set<std::string> ways;
    for (const auto& root : m_roots)
        ways.insert(nearestFolder(root));
    std::erase_if(m_monitors,
        [&](auto& entry) { return !depthOf(entry.first) && !ways.contains(entry.first); });
}

void FolderMonitors::watchTree(const std::string& folder, int depth)
{
    if (!isFolder(folder) || !watchOne(folder) || depth >= m_depth)
        return;
    std::error_code error;
    std::filesystem::directory_iterator files{folder, error};
    for (; !error && files != std::filesystem::directory_iterator{}; files.increment(error)) {
        std::error_code unknown;
        if (files->is_directory(unknown))
            watchTree(files->path().string(), depth + 1);
    }
}

/// False if it is no folder, or there are no watches left.
bool FolderMonitors::watchOne(const std::string& folder)
{
    if (m_monitors.contains(folder))
        return true;
    if (m_monitors.size() >= kMostFolders)
        return false;
    auto watch = InotifyWatch::open(folder, [this, folder](auto change, std::string_view name) {
        didChange(name.empty() ? folder : (std::filesystem::path{folder} / name).string(), change);
    });
    if (!watch)
        return false;
    m_monitors.emplace(folder, std::move(watch));
    return true;
}

void FolderMonitors::forgetTree(const std::string& folder)
{
    std::erase_if(m_monitors,
        [&](auto& entry) { return entry.first == folder || isBelow(entry.first, folder); });
}

}
