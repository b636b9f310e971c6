#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Quorvel/Core/AppIcons.h"
#include "Quorvel/Core/AppInfo.h"
#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/FileEvents.h"
#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Platform/Published.h"
#include "Quorvel/Platform/WeakOwner.h"

namespace quorvel {

/// The catalogue of stored applications, and the search in it.
///
/// A discovery on a background queue makes a new list, which replaces the old one on the main
/// thread; what a search compares is prepared in it. The first begins at once, later ones when the
/// folders have changed and been quiet for a while. Every failure only leaves something out. Main
/// thread.
class AppLauncher {
public:
    /// From the last change in the folders to the discovery.
    static constexpr Duration debounceInterval = seconds(2.0);
    static constexpr Duration kEventLatency = seconds(1.0);

    explicit AppLauncher(const Platform&);
    /// Waits for the file that a discovery is reading.
    ~AppLauncher();
    AppLauncher(const AppLauncher&) = delete;
    AppLauncher& operator=(const AppLauncher&) = delete;

    /// Sorted by name; empty before the first discovery.
    const Published<std::vector<AppInfo>>& allApps() const { return m_allApps; }
    /// What the user has typed.
    Published<std::string> searchQuery;

    /// Those of the applications that match, the best first; all of them, in their order, for a
    /// query without text. They come from one catalogue.
    std::vector<AppInfo> searchResults(
        const std::vector<AppInfo>& in, std::string_view matching) const;
    /// Looks for applications once more, in the background.
    void refresh();

    AppIcons& icons() { return m_icons; }

private:
    struct Discovered {
        std::vector<AppInfo> apps;
        std::vector<std::string> foldersToWatch;
    };

    void publish(Discovered);
    void startFileSystemMonitoring(const std::vector<std::string>& folders);
    void handleFileSystemEvent();

    Dispatch& m_dispatch;
    const Bundles& m_bundles;
    FileEvents& m_fileEvents;
    const Text& m_text;
    AppIcons m_icons;
    Published<std::vector<AppInfo>> m_allApps;
    bool m_isMonitoring = false;
    std::optional<Subscription> m_eventStream;
    WorkItem m_refreshDebounceWork;
    std::atomic_bool m_isEnding = false;
    WeakOwner<AppLauncher> m_weak{*this};
    std::unique_ptr<Queue> m_queue; ///< last: it is drained before what its work uses goes
};

}
