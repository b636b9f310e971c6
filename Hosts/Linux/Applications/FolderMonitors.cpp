#include "Hosts/Linux/Applications/FolderMonitors.h"

#include <algorithm>
#include <filesystem>
#include <set>

#include "Hosts/Linux/GHandles.h"

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
    , m_callback(std::move(callback))
{
    for (const auto& root : m_roots)
        watchRoot(root);
}

void FolderMonitors::Release::operator()(GFileMonitor* monitor) const
{
    g_signal_handlers_disconnect_matched(monitor, G_SIGNAL_MATCH_FUNC, 0, 0, nullptr,
        reinterpret_cast<gpointer>(&FolderMonitors::onChange), nullptr);
    g_file_monitor_cancel(monitor);
    g_object_unref(monitor);
}

void FolderMonitors::onChange(
    GFileMonitor*, GFile* file, GFile*, GFileMonitorEvent event, gpointer self)
{
    if (const GText path{g_file_get_path(file)})
        static_cast<FolderMonitors*>(self)->didChange(path.get(), event);
}

void FolderMonitors::didChange(const std::string& path, GFileMonitorEvent event)
{
    const bool isGone = event == G_FILE_MONITOR_EVENT_DELETED;
    const bool isNew = event == G_FILE_MONITOR_EVENT_CREATED;
    if (isGone)
        forgetTree(path);
    for (const auto& root : m_roots) {
        const bool isOnTheWay = path == root || isBelow(root, path);
        if (isOnTheWay && (isNew || isGone))
            wayDidChange(root);
    }
    const auto depth = depthOf(path);
    if (!depth)
        return;
    if (isNew && *depth > 0 && *depth <= m_depth)
        watchTree(path, *depth);
    if (event != G_FILE_MONITOR_EVENT_ATTRIBUTE_CHANGED)
        m_callback(path);
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

void FolderMonitors::wayDidChange(const std::string& root)
{
    const bool wasThere = m_monitors.contains(root);
    watchRoot(root);
    if (!wasThere && m_monitors.contains(root))
        m_callback(root); // with what is in it already
}

void FolderMonitors::watchRoot(const std::string& root)
{
    watchTree(root, 0);
    // The way may become longer while it is being looked for.
    for (auto folder = nearestFolder(root); watchOne(folder) && folder != nearestFolder(root);)
        folder = nearestFolder(root);
    dropOldWays();
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
    if (m_monitors.size() >= kMostFolders || !isFolder(folder))
        return false;
    const GObjectHandle<GFile> file{g_file_new_for_path(folder.c_str())};
    GFileMonitor* monitor
        = g_file_monitor_directory(file.get(), G_FILE_MONITOR_NONE, nullptr, nullptr);
    if (!monitor)
        return false;
    g_signal_connect(monitor, "changed", G_CALLBACK(&FolderMonitors::onChange), this);
    m_monitors.emplace(folder, monitor);
    return true;
}

void FolderMonitors::forgetTree(const std::string& folder)
{
    std::erase_if(m_monitors,
        [&](auto& entry) { return entry.first == folder || isBelow(entry.first, folder); });
}

}
