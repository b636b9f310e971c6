#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Hosts/Linux/Loop/InotifyWatch.h"

namespace quorvel::xdg {

/// Reports what appears, disappears or changes in folders and in the folders below them, also in
/// those that come to exist later: of a folder that does not exist, the nearest above it that does
/// is watched for what it is on the way to. Main thread.
class FolderMonitors {
public:
    using Callback = std::function<void(std::string_view path)>;

    /// Folders more than `depth` levels below the given ones are not watched. The callback may drop
    /// the monitors.
    FolderMonitors(std::vector<std::string> folders, int depth, Callback);
    FolderMonitors(const FolderMonitors&) = delete;
    FolderMonitors& operator=(const FolderMonitors&) = delete;

    /// Whether a single folder could be watched.
    bool isWatching() const { return !m_monitors.empty(); }

private:
    void didChange(const std::string& path, InotifyWatch::Change);
    /// Whether the root has come to exist.
    bool wayDidChange(const std::string& root);
    /// Watches the folder with all below it, or the way to it.
    void watchRoot(const std::string& root);
    void dropOldWays();
    void watchTree(const std::string& folder, int depth);
    bool watchOne(const std::string& folder);
    void forgetTree(const std::string& folder);
    /// The levels between the path and the folder it lies in; absent for paths elsewhere.
    std::optional<int> depthOf(std::string_view path) const;

    const std::vector<std::string> m_roots;
    const int m_depth;
    const std::shared_ptr<const Callback> m_callback; ///< gone with the monitors
    std::map<std::string, std::unique_ptr<InotifyWatch>> m_monitors; ///< by folder
};

}
