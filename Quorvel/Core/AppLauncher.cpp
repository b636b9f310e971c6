#include "Quorvel/Core/AppLauncher.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "Quorvel/Core/AppDiscovery.h"
#include "Quorvel/Core/SearchRank.h"
#include "Quorvel/Platform/Bundles.h"
#include "Quorvel/Platform/Text.h"

namespace quorvel {
namespace {

struct Match {
    SearchRank rank;
    std::uint32_t nameOrder = 0;
    const AppInfo* app = nullptr;
};

/// Two applications are equal when they are the same one, but its name may have changed.
bool areUnchanged(const AppInfo& a, const AppInfo& b)
{
    return a == b && a.name() == b.name() && a.path() == b.path();
}

}

AppLauncher::AppLauncher(const Platform& platform)
    : m_dispatch(platform.dispatch)
    , m_bundles(platform.bundles)
    , m_fileEvents(platform.fileEvents)
    , m_text(platform.text)
    , m_icons(platform.workspace, platform.dispatch)
    , m_queue(m_dispatch.makeSerialQueue("com.quorvel.apps", QualityOfService::userInitiated))
{
    refresh();
}

AppLauncher::~AppLauncher()
{
    m_isEnding = true;
}

void AppLauncher::refresh()
{
    m_queue->async([this, weak = m_weak.reference()] {
        AppDiscovery discovery{m_bundles, m_text, m_isEnding};
        auto apps = discovery.discoverApplications();
        if (m_isEnding)
            return;
        m_dispatch.main().async(
            [weak, found = Discovered{std::move(apps), discovery.foldersToWatch()}]() mutable {
                if (auto* self = weak.get())
                    self->publish(std::move(found));
            });
    });
}

void AppLauncher::publish(Discovered found)
{
    m_icons.refreshAll();
    m_allApps.update([&](std::vector<AppInfo>& apps) {
        const bool isChanged = !std::ranges::equal(apps, found.apps, areUnchanged);
        apps = std::move(found.apps);
        return isChanged;
    });
    if (!std::exchange(m_isMonitoring, true))
        startFileSystemMonitoring(found.foldersToWatch);
}

void AppLauncher::startFileSystemMonitoring(const std::vector<std::string>& folders)
{
    if (folders.empty())
        return;
    m_eventStream = m_fileEvents.watch(folders, kEventLatency, [weak = m_weak.reference()] {
        if (auto* self = weak.get())
            self->handleFileSystemEvent();
    });
}

void AppLauncher::handleFileSystemEvent()
{
    m_refreshDebounceWork = m_dispatch.main().after(debounceInterval, [weak = m_weak.reference()] {
        if (auto* self = weak.get())
            self->refresh();
    });
}

std::vector<AppInfo> AppLauncher::searchResults(
    const std::vector<AppInfo>& in, std::string_view matching) const
{
    const auto query = normalised(matching, m_text);
    if (query.empty())
        return in;
    std::vector<Match> matches;
    for (const auto& app : in) {
        if (const auto rank = searchRank(app.terms(), query))
            matches.push_back({*rank, app.nameOrder(), &app});
    }
    std::ranges::stable_sort(
        matches, {}, [](const Match& match) { return std::tie(match.rank, match.nameOrder); });
    std::vector<AppInfo> results;
    results.reserve(matches.size());
    for (const auto& match : matches)
        results.push_back(*match.app);
    return results;
}

}
