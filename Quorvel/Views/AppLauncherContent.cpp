#include "Quorvel/Views/AppLauncherContent.h"

#include <algorithm>
#include <utility>

#include "Quorvel/Core/AppLauncher.h"
#include "Quorvel/Core/PinStore.h"
#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Platform/Workspace.h"
#include "Quorvel/Views/AppListMenu.h"

namespace quorvel {

AppLauncherContent::AppLauncherContent(
    const Inputs& given, AppLauncher& appLauncher, PinStore& pinStore)
    : SearchPanelContent(
          given, {.title = tr("Applications"), .placeholder = tr("Search applications...")})
    , m_appLauncher(appLauncher)
    , m_pinStore(pinStore)
{
    m_table = &addChild(std::make_unique<AppListTableView>(
        std::make_unique<AppListTableView::Coordinator>(
            AppListTableView::Coordinator::Inputs{.pinStore = m_pinStore,
                .icons = m_appLauncher.icons(),
                .dispatch = inputs().platform.dispatch,
                .palette = palette(),
                .surface = inputs().surface}),
        palette(), inputs().platform.dispatch));
    m_appLauncher.searchQuery.set("");
    connect();
    setList(*m_table, m_table->list());
    subscribe();
    updateItems(Change::query);
}

AppLauncherContent::~AppLauncherContent() = default;

void AppLauncherContent::connect()
{
    coordinator().onLaunch = [this](auto& app) {
        if (onLaunch)
            onLaunch(app);
    };
    coordinator().onMenu = [this](auto& app, auto& anchor) {
        if (onMenuRequested)
            onMenuRequested(
                appListMenu(
                    app, {m_pinStore, inputs().platform.workspace, onLaunch, onActionChosen}),
                anchor);
    };
}

void AppLauncherContent::subscribe()
{
    auto items = [this](Change change) { return [this, change](auto&) { updateItems(change); }; };
    keep(m_appLauncher.allApps().subscribe(items(Change::catalogue)));
    keep(m_appLauncher.searchQuery.subscribe(items(Change::query)));
    keep(m_pinStore.pinnedApps().subscribe(items(Change::pins)));
}

void AppLauncherContent::queryDidChange(const std::string& text)
{
    m_appLauncher.searchQuery.set(text);
}

void AppLauncherContent::directionDidChange(bool isRightToLeft)
{
    coordinator().setRightToLeft(isRightToLeft);
}

void AppLauncherContent::updateItems(Change change)
{
    auto items = listItems(m_appLauncher, m_pinStore);
    bool hasApps = std::ranges::any_of(items, [](auto& item) { return item.app() != nullptr; });
    coordinator().setItems(std::move(items), change);
    if (m_appLauncher.allApps().value().empty() && !hasApps)
        showWaiting(tr("Loading applications..."));
    else if (!hasApps)
        showMessage(trFormat("No apps matching \"{}\"", query()));
    else
        showList();
}

std::vector<AppLauncherContent::RowPlace> AppLauncherContent::rowPlaces() const
{
    std::vector<RowPlace> places;
    for (auto& [row, frame] : shownRows()) {
        if (auto* app = m_table->coordinator().items()[row].app())
            places.push_back({app->app.id(), app->section, list().selectedRow() == row, frame});
    }
    return places;
}

const std::string& AppLauncherContent::query() const
{
    return m_appLauncher.searchQuery.value();
}

}
