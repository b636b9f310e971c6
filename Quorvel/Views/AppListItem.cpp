#include "Quorvel/Views/AppListItem.h"

#include <string_view>
#include <unordered_map>

#include "Quorvel/Core/AppLauncher.h"
#include "Quorvel/Core/PinStore.h"
#include "Quorvel/Core/SearchTerms.h"
#include "Quorvel/Platform/Translation.h"

namespace quorvel {

namespace {

struct AppListItemStyle {
    static constexpr double headerHeight = 28;
    static constexpr double appHeight = 36;
    static constexpr double topSpacerHeight = 4;
    static constexpr double dividerHeight = 14;
};

/// Those that are installed, in the user's order.
std::vector<AppInfo> pinnedApps(const AppLauncher& launcher, const PinStore& pins)
{
    std::vector<AppInfo> found;
    auto ids = pins.pinnedAppIDs(PinDestination::launcher);
    if (ids.empty())
        return found;
    std::unordered_map<std::string_view, const AppInfo*> byID;
    for (auto& app : launcher.allApps().value())
        byID.emplace(app.id(), &app);
    for (auto& id : ids) {
        if (auto app = byID.find(id); app != byID.end())
            found.push_back(*app->second);
    }
    return found;
}

}

double AppListItem::rowHeight() const
{
    struct Heights {
        double operator()(const SectionHeader&) const { return AppListItemStyle::headerHeight; }
        double operator()(const App&) const { return AppListItemStyle::appHeight; }
        double operator()(const TopSpacer&) const { return AppListItemStyle::topSpacerHeight; }
        double operator()(const Divider&) const { return AppListItemStyle::dividerHeight; }
    };
    return std::visit(Heights{}, content);
}

bool AppListItem::looksLike(const AppListItem& other) const
{
    if (content.index() != other.content.index())
        return false;
    if (auto* header = std::get_if<SectionHeader>(&content))
        return header->title == std::get<SectionHeader>(other.content).title;
    auto* mine = app();
    auto* its = other.app();
    return !mine
        || (mine->section == its->section && mine->app == its->app
            && mine->app.name() == its->app.name() && mine->app.path() == its->app.path());
}

std::vector<AppListItem> listItems(const AppLauncher& launcher, const PinStore& pins)
{
    std::vector<AppListItem> items{{AppListItem::TopSpacer{}}};
    auto& query = launcher.searchQuery.value();
    if (trimmed(query).empty()) {
        auto pinned = pinnedApps(launcher, pins);
        if (!pinned.empty()) {
            items.push_back({AppListItem::SectionHeader{tr("Pinned")}});
            for (auto& app : pinned)
                items.push_back({AppListItem::App{std::move(app), AppListSection::pinned}});
            items.push_back({AppListItem::Divider{}});
        }
    }
    auto results = launcher.searchResults(launcher.allApps().value(), query);
    items.reserve(items.size() + results.size());
    for (auto& app : results)
        items.push_back({AppListItem::App{std::move(app), AppListSection::main}});
    return items;
}

}
