#include "Quorvel/Views/AppLauncherContent.h"

#include <algorithm>
#include <utility>

#include "Quorvel/Core/AppLauncher.h"
#include "Quorvel/Core/PinStore.h"
#include "Quorvel/Core/UserSettings.h"
#include "Quorvel/Platform/Application.h"
#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Platform/Workspace.h"
#include "Quorvel/Views/AppLauncherPlaceholder.h"
#include "Quorvel/Views/AppLauncherSearchField.h"
#include "Quorvel/Views/AppListMenu.h"
#include "Quorvel/Views/BarBackground.h"
#include "Quorvel/Views/Kit/LabelView.h"

namespace quorvel {

namespace {

struct AppLauncherContentStyle {
    static constexpr double radius = 12;
    static constexpr double titleInset = 16;
    static constexpr double titleTop = 12;
    static constexpr double titleHeight = 20;
    static constexpr double fieldInset = 10;
    static constexpr double fieldTop = 40;
    static constexpr double fieldHeight = 30;
    static constexpr double listTop = 76;
    static constexpr double listInset = 6; ///< at the sides and below
    static constexpr LabelView::Look title{
        .size = 14, .weight = FontWeight::semibold, .role = AccessibleRole::heading};
};

}

AppLauncherContent::AppLauncherContent(const Inputs& inputs)
    : m_inputs(inputs)
    , m_palette(Palette::of(inputs.platform.application.appearance().value()))
{
    auto& platform = m_inputs.platform;
    m_background = &addChild(std::make_unique<BarBackground>(m_palette));
    m_background->setCornerRadius(AppLauncherContentStyle::radius);
    m_title = &addChild(
        std::make_unique<LabelView>(platform.text, m_palette, AppLauncherContentStyle::title));
    m_title->setText(tr("Applications"));
    m_searchField = &addChild(std::make_unique<AppLauncherSearchField>(
        TextFieldView::Inputs{platform, m_inputs.surface, m_palette}));
    m_table = &addChild(std::make_unique<AppListTableView>(
        std::make_unique<AppListTableView::Coordinator>(
            AppListTableView::Coordinator::Inputs{.pinStore = m_inputs.pinStore,
                .icons = m_inputs.appLauncher.icons(),
                .dispatch = platform.dispatch,
                .palette = m_palette,
                .surface = m_inputs.surface}),
        m_palette, platform.dispatch));
    m_placeholder = &addChild(std::make_unique<AppLauncherPlaceholder>(platform.text, m_palette));
    m_inputs.appLauncher.searchQuery.set("");
    connect();
    subscribe();
    appearanceDidChange();
    updateItems(Change::query);
}

AppLauncherContent::~AppLauncherContent() = default;

void AppLauncherContent::connect()
{
    m_searchField->onTextChanged
        = [this](auto& text) { m_inputs.appLauncher.searchQuery.set(text); };
    m_searchField->field().onMenuRequested = [this](Menu menu, const Rect& anchor) {
        if (onMenuRequested)
            onMenuRequested(std::move(menu), anchor);
    };
    coordinator().onLaunch = [this](auto& app) {
        if (onLaunch)
            onLaunch(app);
    };
    coordinator().onMenu = [this](auto& app, auto& anchor) {
        if (onMenuRequested)
            onMenuRequested(
                appListMenu(app,
                    {m_inputs.pinStore, m_inputs.platform.workspace, onLaunch, onActionChosen}),
                anchor);
    };
    m_table->list().onChanged = [this] { m_inputs.surface.accessibleTreeDidChange(); };
}

void AppLauncherContent::subscribe()
{
    auto keep
        = [this](Subscription subscription) { m_subscriptions.push_back(std::move(subscription)); };
    auto items = [this](Change change) { return [this, change](auto&) { updateItems(change); }; };
    keep(m_inputs.appLauncher.allApps().subscribe(items(Change::catalogue)));
    keep(m_inputs.appLauncher.searchQuery.subscribe(items(Change::query)));
    keep(m_inputs.pinStore.pinnedApps().subscribe(items(Change::pins)));
    keep(m_inputs.platform.application.appearance().subscribe(
        [this](auto&) { appearanceDidChange(); }));
    keep(m_inputs.settings.data().subscribe(
        [this](auto&) { m_background->setTheme(m_inputs.settings.theme()); }));
}

// MARK: What it shows

void AppLauncherContent::updateItems(Change change)
{
    auto items = listItems(m_inputs.appLauncher, m_inputs.pinStore);
    bool hasApps = std::ranges::any_of(items, [](auto& item) { return item.app() != nullptr; });
    if (m_inputs.appLauncher.allApps().value().empty())
        m_placeholder->showLoading();
    else if (!hasApps)
        m_placeholder->showNoMatch(query());
    m_isListShown = hasApps;
    coordinator().setItems(std::move(items), change);
    layout();
    m_inputs.surface.accessibleTreeDidChange();
}

void AppLauncherContent::appearanceDidChange()
{
    auto& appearance = m_inputs.platform.application.appearance().value();
    m_palette = Palette::of(appearance);
    m_title->measureAgain();
    m_placeholder->measureAgain();
    m_searchField->field().appearanceDidChange();
    m_searchField->setRightToLeft(appearance.isRightToLeft);
    m_table->list().setReducesMotion(appearance.reduceMotion);
    coordinator().setRightToLeft(appearance.isRightToLeft);
    m_background->setTheme(m_inputs.settings.theme());
    m_background->setAppearance(appearance);
    invalidate();
}

void AppLauncherContent::layout()
{
    double width = bounds().width;
    m_background->setFrame(bounds());
    m_title->setFrame({AppLauncherContentStyle::titleInset, AppLauncherContentStyle::titleTop,
        width - 2 * AppLauncherContentStyle::titleInset, AppLauncherContentStyle::titleHeight});
    m_searchField->setFrame({AppLauncherContentStyle::fieldInset, AppLauncherContentStyle::fieldTop,
        width - 2 * AppLauncherContentStyle::fieldInset, AppLauncherContentStyle::fieldHeight});
    Rect list{AppLauncherContentStyle::listInset, AppLauncherContentStyle::listTop,
        width - 2 * AppLauncherContentStyle::listInset,
        std::max(0.0,
            bounds().height - AppLauncherContentStyle::listTop
                - AppLauncherContentStyle::listInset)};
    m_table->list().setFrameInterval(m_inputs.surface.frameInterval());
    m_table->setFrame(m_isListShown ? list : Rect{});
    m_placeholder->setFrame(m_isListShown ? Rect{} : list);
}

void AppLauncherContent::paint(Canvas& canvas) const
{
    // Text must be readable whatever lies behind: the theme's shine lies over a plain ground.
    canvas.fillRounded(bounds(), AppLauncherContentStyle::radius, m_palette.ground);
}

// MARK: What is done with it

void AppLauncherContent::showMenuOfSelected()
{
    coordinator().showMenuOfSelected();
}

bool AppLauncherContent::clearQuery()
{
    if (m_searchField->field().text().empty())
        return false;
    m_searchField->clear();
    return true;
}

bool AppLauncherContent::takeTyping(const KeyEvent& event)
{
    return !m_searchField->field().hasFocus() && m_searchField->field().takeTyping(event);
}

void AppLauncherContent::flashScroller()
{
    m_table->list().flashScroller();
}

View* AppLauncherContent::preferredKeyView()
{
    return &m_searchField->field();
}

/// Input methods and dead keys write into the field wherever the keyboard is.
TextInputClient* AppLauncherContent::textInput()
{
    return m_searchField->field().textInput();
}

// MARK: What is where

std::vector<AppLauncherContent::RowPlace> AppLauncherContent::rowPlaces() const
{
    std::vector<RowPlace> places;
    auto& list = m_table->list();
    auto shown = list.frameInRoot();
    for (auto row : list.rowsWithViews()) {
        auto* app = m_table->coordinator().items()[row].app();
        auto frame = list.rowFrame(row).translated(shown.x, shown.y).intersected(shown);
        if (app && !frame.isEmpty())
            places.push_back({app->app.id(), app->section, list.selectedRow() == row, frame});
    }
    return places;
}

Rect AppLauncherContent::fieldFrame() const
{
    return m_searchField->field().frameInRoot();
}

Rect AppLauncherContent::clearButtonFrame() const
{
    return m_searchField->clearButtonFrame();
}

const std::string& AppLauncherContent::query() const
{
    return m_inputs.appLauncher.searchQuery.value();
}

AccessibleState AppLauncherContent::accessibleState() const
{
    AccessibleState state;
    state.role = AccessibleRole::panel;
    state.name = tr("Applications");
    return state;
}

}
