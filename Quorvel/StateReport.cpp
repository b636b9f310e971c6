#include "Quorvel/StateReport.h"

#include <nlohmann/json.hpp>

#include "Quorvel/Core/BarManager.h"
#include "Quorvel/Core/HotkeyManager.h"
#include "Quorvel/Core/NumberKeys.h"
#include "Quorvel/Platform/Displays.h"
#include "Quorvel/Platform/WindowServer.h"
#include "Quorvel/Skylight/WindowStore.h"
#include "Quorvel/Version.h"
#include "Quorvel/Views/BarViews.h"
#include "Quorvel/Views/ThumbnailPopup.h"

namespace quorvel {

namespace {

using Json = nlohmann::ordered_json;

template <typename Value> Json orNull(const std::optional<Value>& value)
{
    if (!value)
        return nullptr;
    if constexpr (std::is_enum_v<Value>)
        return raw(*value);
    else
        return *value;
}

Json frameJson(const Platform& platform, const Rect& globalTopLeft)
{
    auto native = platform.displays.toNative(globalTopLeft);
    return {native.x, native.y, native.width, native.height};
}

Json windowJson(const Platform& platform, const TrackedWindow& window)
{
    Json spaces = Json::array();
    for (auto space : window.spaceIDs)
        spaces.push_back(raw(space));
    return {
        {"id", raw(window.windowID)},
        {"xid", orNull(platform.windowServer.nativeWindowNumber(window.windowID))},
        {"pid", raw(window.pid)},
        {"app", window.appName},
        {"bundle", orNull(window.bundleIdentifier)},
        {"title", window.windowTitle},
        {"frame", frameJson(platform, window.frame)},
        {"minimized", window.isMinimized},
        {"spaces", std::move(spaces)},
    };
}

Json itemJson(const DisplayItem& item)
{
    auto* group = std::get_if<GroupedChipData>(&item);
    auto* chip = std::get_if<ChipData>(&item);
    Json windows = Json::array();
    for (auto id : group ? group->windowIDs : std::vector{chip->id})
        windows.push_back(raw(id));
    Json report{
        {"id", displayItemID(item)},
        {"kind", group ? "group" : "single"},
    };
    std::visit(
        [&](auto& data) {
            report["app"] = data.appName;
            report["bundle"] = orNull(data.bundleIdentifier);
            report["title"] = group ? group->displayTitle : chip->windowTitle;
            report["windows"] = std::move(windows);
            report["focused"] = data.isFocused;
            report["minimized"] = data.isMinimized;
            report["badge"] = orNull(data.badge);
            report["attention"] = data.wantsAttention;
            report["attentionWindow"] = group ? orNull(group->attentionWindow) : Json(nullptr);
            report["progress"] = orNull(data.progress);
        },
        item);
    return report;
}

Json spaceJson(const BarManager& manager, const SpaceWindows::Info& space)
{
    Json items = Json::array();
    for (auto& item : manager.viewModel().displayItems(space.spaceID, std::nullopt))
        items.push_back(itemJson(item));
    return {
        {"id", raw(space.spaceID)},
        {"type", space.spaceType},
        {"display", space.displayIdentifier},
        {"items", std::move(items)},
    };
}

/// From the places of screens and panels to those of pointers.
class Places {
public:
    explicit Places(const Platform& platform) : m_platform(platform)
    {
        auto screens = platform.displays.screens();
        m_primaryHeight = screens.empty() ? 0 : screens.front().frame.height;
    }

    Json onScreen(const Rect& bottomLeft) const
    {
        return frameJson(m_platform, bottomLeft.flipped(m_primaryHeight));
    }
    Json inPanel(const BarPanel& panel, const Rect& rect) const
    {
        return inSurface(panel.surface(), rect);
    }
    Json inSurface(const PanelSurface& surface, const Rect& rect) const
    {
        auto frame = surface.frame().flipped(m_primaryHeight);
        return frameJson(m_platform, rect.translated(frame.x, frame.y));
    }

private:
    const Platform& m_platform;
    double m_primaryHeight;
};

Json popupJson(const Places& places, const ThumbnailPopup* popup)
{
    if (!popup)
        return nullptr;
    Json cards = Json::array();
    for (auto& card : popup->cardPlaces()) {
        cards.push_back({{"window", raw(card.window)}, {"frame", places.onScreen(card.frame)},
            {"close", places.onScreen(card.closeButton)}});
    }
    return {{"frame", places.onScreen(popup->frame())}, {"cards", std::move(cards)}};
}

/// A bar that has not been shown yet has nothing on it.
Json panelJson(const Platform& platform, const BarPanel& panel)
{
    Places places{platform};
    Json report{
        {"space", raw(panel.spaceID())},
        {"screen", panel.screenIndex()},
        {"visible", panel.surface().isVisible()},
        {"slide", panel.slide().share()},
        {"frame", places.onScreen(panel.surface().frame())},
    };
    if (!panel.content())
        return report;
    auto& content = *panel.content();
    auto named = [&](const char* key, auto& frames) {
        Json list = Json::array();
        for (auto& [id, rect] : frames)
            list.push_back({{key, id}, {"frame", places.inPanel(panel, rect)}});
        return list;
    };
    Json cells = Json::array();
    for (auto& [space, rect] : content.spaceCellFrames())
        cells.push_back({{"space", raw(space)}, {"frame", places.inPanel(panel, rect)}});
    auto chips = content.chipFrames();
    auto pins = content.pinFrames();
    report.update(Json{
        {"menuButton", places.inPanel(panel, content.menuButtonFrame())},
        {"pins", named("bundle", pins)},
        {"chips", named("id", chips)},
        {"spaceCells", std::move(cells)},
        {"spaceList", places.inPanel(panel, content.spaceListButtonFrame())},
        {"showDesktop", places.inPanel(panel, content.showDesktopButtonFrame())},
        {"popup", popupJson(places, content.thumbnailPopup())},
        {"keyFocus",
            panel.keyFocusedView() ? Json(panel.keyFocusedView()->accessibleState().name)
                                   : Json(nullptr)},
    });
    return report;
}

Json searchJson(const Platform& platform, const SearchPanel& panel, Json rows)
{
    auto& content = panel.searchContent();
    Places places{platform};
    return {
        {"frame", places.onScreen(panel.surface().frame())},
        {"query", content.query()},
        {"field", places.inSurface(panel.surface(), content.fieldFrame())},
        {"clearButton", places.inSurface(panel.surface(), content.clearButtonFrame())},
        {"keyFocus",
            panel.keyFocusedView() ? Json(panel.keyFocusedView()->accessibleState().name)
                                   : Json(nullptr)},
        {"rows", std::move(rows)},
    };
}

/// Null while it is closed. Of its rows, those in sight.
Json launcherJson(const Platform& platform, const LauncherPanel* open)
{
    if (!open)
        return nullptr;
    auto& panel = BarViews::panel(*open);
    Places places{platform};
    Json rows = Json::array();
    for (auto& row : panel.content().rowPlaces())
        rows.push_back({{"id", row.id},
            {"section", row.section == AppListSection::pinned ? "pinned" : "main"},
            {"selected", row.isSelected}, {"frame", places.inSurface(panel.surface(), row.frame)}});
    return searchJson(platform, panel, std::move(rows));
}

/// The same of the list of windows.
Json finderJson(const Platform& platform, const LauncherPanel* open)
{
    if (!open)
        return nullptr;
    auto& panel = BarViews::finderPanel(*open);
    Places places{platform};
    Json rows = Json::array();
    for (auto& row : panel.content().rowPlaces())
        rows.push_back({{"window", raw(row.window)}, {"selected", row.isSelected},
            {"frame", places.inSurface(panel.surface(), row.frame)}});
    return searchJson(platform, panel, std::move(rows));
}

Json menuJson(const Platform& platform, const Menus& menus)
{
    Json entries = Json::array();
    for (auto& entry : menus.entries()) {
        entries.push_back({{"title", entry.title}, {"enabled", entry.isEnabled},
            {"frame", frameJson(platform, entry.frame)}});
    }
    return entries;
}

std::string_view nameOf(HotkeyManager::State state)
{
    switch (state) {
    case HotkeyManager::State::none:
        return "none";
    case HotkeyManager::State::registered:
        return "registered";
    case HotkeyManager::State::taken:
        return "taken";
    case HotkeyManager::State::doubled:
        return "doubled";
    case HotkeyManager::State::failed:
        return "failed";
    }
    return {};
}

Json hotkeyJson(const HotkeyManager& hotkeys)
{
    auto& shortcut = hotkeys.currentShortcut().value();
    if (!shortcut)
        return nullptr;
    return {{"shortcut", shortcut->displayString()}, {"state", nameOf(hotkeys.state().value())}};
}

/// Null while they are off.
Json numberKeysJson(const NumberKeys& keys)
{
    if (!keys.isInUse())
        return nullptr;
    Json taken = Json::array();
    for (auto& shortcut : keys.taken().value())
        taken.push_back(shortcut.displayString());
    return {
        {"state",
            nameOf(taken.empty() ? HotkeyManager::State::registered : HotkeyManager::State::taken)},
        {"taken", std::move(taken)}};
}

}

std::string stateReport(const Platform& platform, const WindowStore& store,
    const BarManager& manager, const BarViews& views, const ReportedHotkeys& hotkeys)
{
    auto& model = manager.viewModel();
    // What has the focus may be no window of the list: a dialog, or the desktop itself.
    auto focused = model.focusedWindowID.value();
    Json windows = Json::array();
    for (auto& [id, window] : store.windows())
        windows.push_back(windowJson(platform, window));
    Json spaces = Json::array();
    for (auto& space : model.spaces.value())
        spaces.push_back(spaceJson(manager, space));
    Json panels = Json::array();
    for (auto& [space, panel] : manager.panels())
        panels.push_back(panelJson(platform, views.panel(*panel)));
    for (auto& [key, panel] : manager.mirrorPanels())
        panels.push_back(panelJson(platform, views.panel(*panel)));
    Json state{
        {"version", kVersion},
        {"activeSpace", raw(model.activeSpaceID.value())},
        {"focusedWindow", orNull(focused && store.window(*focused) ? focused : std::nullopt)},
        {"windows", std::move(windows)},
        {"spaces", std::move(spaces)},
        {"panels", std::move(panels)},
        {"launcher", launcherJson(platform, manager.launcherPanel(LauncherKind::applications))},
        {"finder", finderJson(platform, manager.launcherPanel(LauncherKind::windows))},
        {"menu", menuJson(platform, views.menus())},
        {"hotkey", hotkeyJson(hotkeys.applications)},
        {"findHotkey", hotkeyJson(hotkeys.windows)},
        {"barHotkey", hotkeyJson(hotkeys.bar)},
        {"numberKeys", numberKeysJson(hotkeys.numberKeys)},
    };
    // Titles come from other programs and may hold anything.
    return state.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

}
