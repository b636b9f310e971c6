#pragma once

#include <atomic>
#include <deque>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Quorvel/Core/AppInfo.h"
#include "Quorvel/Platform/Bundles.h"

namespace quorvel {

class Text;

/// One look at everything that is stored. Used once, on any thread; blocks for as long as the disk
/// takes.
class AppDiscovery {
public:
    /// More than any user has; a disk full of applications stays bearable.
    static constexpr std::size_t kMostApps = 20'000;
    static constexpr std::size_t kMostFolders = 5'000;

    /// Once `isCancelled` is set, it ends with what it has.
    AppDiscovery(const Bundles&, const Text&, const std::atomic_bool& isCancelled);

    /// Sorted by name.
    std::vector<AppInfo> discoverApplications();
    /// After it: the folders in which something may change.
    const std::vector<std::string>& foldersToWatch() const { return m_foldersToWatch; }

private:
    void discoverApps(const ApplicationFolder&);
    struct Folder {
        std::string path;
        int depth = 0;
    };
    /// Adds the folders within to `folders`. False if it could not be listed.
    bool discoverAppsIn(const Folder&, int maximumDepth, std::deque<Folder>& folders);
    void offer(const std::string& path);
    std::optional<AppInfo::Facts> createAppInfo(
        const ApplicationURL&, std::set<std::string>& seenBundleIDs) const;
    bool isApp(std::string_view path) const;
    std::string nameOf(const ApplicationURL&, const BundleDescription&) const;
    bool isEnough() const;
    void sortByName();

    const Bundles& m_bundles;
    const Text& m_text;
    const std::atomic_bool& m_isCancelled;
    const ApplicationSources m_sources;
    std::vector<AppInfo::Facts> m_apps;
    std::set<std::string> m_seenBundleIDs;
    std::size_t m_listedFolders = 0;
    std::vector<std::string> m_foldersToWatch;
};

}
