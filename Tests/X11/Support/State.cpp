#include "Tests/X11/Support/State.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>
#include <set>
#include <utility>

#include <nlohmann/json.hpp>

namespace quorvel::x11tests {

namespace {

using Json = nlohmann::json;

template <typename Value> std::optional<Value> optional(const Json& json)
{
    return json.is_null() ? std::nullopt : std::optional{json.get<Value>()};
}

Frame frameFrom(const Json& json)
{
    const auto at = [&](std::size_t index) {
        return static_cast<int>(std::lround(json.at(index).get<double>()));
    };
    return {at(0), at(1), at(2), at(3)};
}

template <typename Element>
std::vector<Element> listFrom(const Json& json, Element (*convert)(const Json&))
{
    std::vector<Element> list;
    std::transform(json.begin(), json.end(), std::back_inserter(list), convert);
    return list;
}

State::Window windowFrom(const Json& json)
{
    return {.id = json.at("id"),
        .xid = optional<xcb_window_t>(json.at("xid")),
        .pid = json.at("pid"),
        .app = json.at("app"),
        .bundle = json.at("bundle"),
        .title = json.at("title"),
        .frame = frameFrom(json.at("frame")),
        .isMinimized = json.at("minimized"),
        .spaces = json.at("spaces")};
}

State::Item itemFrom(const Json& json)
{
    return {.id = json.at("id"),
        .title = json.at("title"),
        .windows = json.at("windows"),
        .isFocused = json.at("focused"),
        .isMinimized = json.at("minimized")};
}

State::Space spaceFrom(const Json& json)
{
    return {.id = json.at("id"), .items = listFrom(json.at("items"), itemFrom)};
}

State::Chip chipFrom(const Json& json)
{
    return {.id = json.at("id"), .frame = frameFrom(json.at("frame"))};
}

State::Chip pinFrom(const Json& json)
{
    return {.id = json.at("bundle"), .frame = frameFrom(json.at("frame"))};
}

State::Cell cellFrom(const Json& json)
{
    return {.space = json.at("space"), .frame = frameFrom(json.at("frame"))};
}

State::Card cardFrom(const Json& json)
{
    return {.window = json.at("window"),
        .frame = frameFrom(json.at("frame")),
        .closeButton = frameFrom(json.at("close"))};
}

std::optional<State::Popup> popupFrom(const Json& json)
{
    if (json.is_null())
        return std::nullopt;
    return State::Popup{
        .frame = frameFrom(json.at("frame")), .cards = listFrom(json.at("cards"), cardFrom)};
}

State::Panel panelFrom(const Json& json)
{
    // A bar that has not been shown yet has nothing on it.
    if (!json.contains("chips"))
        return {.space = json.at("space"),
            .isVisible = json.at("visible"),
            .frame = frameFrom(json.at("frame")),
            .menuButton = {},
            .showDesktop = {},
            .spaceList = {},
            .pins = {},
            .chips = {},
            .cells = {},
            .popup = {},
            .keyFocus = {}};
    return {.space = json.at("space"),
        .isVisible = json.at("visible"),
        .frame = frameFrom(json.at("frame")),
        .menuButton = frameFrom(json.at("menuButton")),
        .showDesktop = frameFrom(json.at("showDesktop")),
        .spaceList = frameFrom(json.at("spaceList")),
        .pins = listFrom(json.at("pins"), pinFrom),
        .chips = listFrom(json.at("chips"), chipFrom),
        .cells = listFrom(json.at("spaceCells"), cellFrom),
        .popup = popupFrom(json.at("popup")),
        .keyFocus = optional<std::string>(json.at("keyFocus"))};
}

State::MenuEntry entryFrom(const Json& json)
{
    return {.title = json.at("title"),
        .isEnabled = json.at("enabled"),
        .frame = frameFrom(json.at("frame"))};
}

bool shows(const State::Item& item, std::uint32_t window)
{
    return std::find(item.windows.begin(), item.windows.end(), window) != item.windows.end();
}

/// The spaces that a window's desktop means.
std::vector<std::uint64_t> expectedSpaces(Desktop& desktop, xcb_window_t window)
{
    const auto number = desktop.desktopOf(window);
    if (number && *number != kAllDesktops)
        return {std::uint64_t{*number} + 1};
    std::vector<std::uint64_t> all(desktop.desktopCount());
    std::iota(all.begin(), all.end(), 1);
    return all;
}

testing::AssertionResult agreesOn(const State& state, Desktop& desktop, xcb_window_t client)
{
    const auto fault = [&] { return testing::AssertionFailure() << "client " << client << ": "; };
    const auto* const window = state.windowOf(client);
    if (!window)
        return fault() << "missing: " << desktop.title(client) << " of " << desktop.frame(client);
    if (window->title != desktop.title(client))
        return fault() << "titled " << window->title << ", not " << desktop.title(client);
    if (window->isMinimized != desktop.isHidden(client))
        return fault() << "minimised is " << window->isMinimized;
    if (!window->isMinimized && window->frame != desktop.frame(client))
        return fault() << "at " << window->frame << ", not " << desktop.frame(client);
    const auto spaces = expectedSpaces(desktop, client);
    if (window->spaces != spaces || state.spacesShowing(client) != spaces)
        return fault() << "on space " << testing::PrintToString(window->spaces) << ", shown on "
                       << testing::PrintToString(state.spacesShowing(client)) << ", not "
                       << testing::PrintToString(spaces);
    const auto* const item = state.itemOf(client);
    if (item && (item->title != window->title || item->isMinimized != window->isMinimized))
        return fault() << "its item says otherwise: " << item->title;
    return testing::AssertionSuccess();
}

/// The panel's chips stand from left to right inside it; those that are scrolled out of sight have
/// no size.
testing::AssertionResult isInOrder(const State::Panel& panel)
{
    int edge = panel.frame.x;
    for (const auto& chip : panel.chips) {
        if (chip.frame.width == 0 && chip.frame.height == 0)
            continue;
        if (chip.frame.x < edge || chip.frame.width <= 0 || chip.frame.y < panel.frame.y
            || chip.frame.bottom() > panel.frame.bottom())
            return testing::AssertionFailure() << "chip " << chip.id << " is out of place";
        edge = chip.frame.x + chip.frame.width;
    }
    return testing::AssertionSuccess();
}

/// Each item of the active space has a chip on one of the panels, or on several if its window lies
/// on several screens, and on each panel they stand in the order of the items.
testing::AssertionResult showsItems(const State& state)
{
    const auto space = std::find_if(state.spaces.begin(), state.spaces.end(),
        [&](const auto& candidate) { return candidate.id == state.activeSpace; });
    std::vector<std::string> items;
    if (space != state.spaces.end()) {
        for (const auto& item : space->items)
            items.push_back(item.id);
    }
    std::set<std::string> shown;
    for (const auto& panel : state.panels) {
        if (!panel.isVisible)
            continue;
        if (panel.space != state.activeSpace)
            return testing::AssertionFailure() << "a panel of space " << panel.space;
        if (auto result = isInOrder(panel); !result)
            return result;
        auto at = items.begin();
        for (const auto& chip : panel.chips) {
            at = std::find(at, items.end(), chip.id);
            if (at == items.end())
                return testing::AssertionFailure() << "chip " << chip.id << " is in no order";
            shown.insert(chip.id);
            ++at;
        }
    }
    if (!state.visiblePanel())
        return testing::AssertionFailure() << "no panel on the active space";
    if (shown != std::set<std::string>(items.begin(), items.end()))
        return testing::AssertionFailure() << "chips " << testing::PrintToString(shown)
                                           << ", items " << testing::PrintToString(items);
    return testing::AssertionSuccess();
}

/// Windows are of one application if they have the class and the process in common. The first
/// application of a process goes by the number of the process. Of clients from the network the
/// server knows no process.
testing::AssertionResult agreesOnApplications(
    const State& state, Desktop& desktop, const std::vector<xcb_window_t>& clients)
{
    std::map<std::pair<pid_t, std::string>, std::int64_t> numbers;
    std::set<std::int64_t> distinct;
    for (const auto client : clients) {
        const auto* const window = state.windowOf(client);
        const auto process = desktop.processOf(client);
        if (!process)
            continue;
        const auto [known, isNew]
            = numbers.try_emplace({*process, desktop.applicationClass(client)}, window->pid);
        const bool isOfProcess = window->pid < 0 || window->pid == process;
        if (known->second != window->pid || distinct.insert(window->pid).second != isNew
            || !isOfProcess)
            return testing::AssertionFailure()
                << window->title << " of process " << *process << " and class "
                << desktop.applicationClass(client) << " is put under " << window->pid;
    }
    return testing::AssertionSuccess();
}

testing::AssertionResult agreesOnFocus(const State& state, Desktop& desktop)
{
    const auto focused = desktop.focusedClient();
    const auto* const window = focused ? state.windowOf(*focused) : nullptr;
    for (const auto& client : state.windows) {
        const auto* const item = client.xid ? state.itemOf(*client.xid) : nullptr;
        if (item && item->isFocused != (&client == window))
            return testing::AssertionFailure()
                << client.title << (item->isFocused ? " is" : " is not") << " lit, active is "
                << desktop.title(desktop.activeWindow());
    }
    if (window && state.focusedWindow != window->id)
        return testing::AssertionFailure() << "the focus is not on " << window->title;
    return testing::AssertionSuccess();
}

}

std::optional<State> State::parse(const std::string& json)
{
    try {
        const auto root = Json::parse(json);
        return State{.activeSpace = optional<std::uint64_t>(root.at("activeSpace")),
            .focusedWindow = optional<std::uint32_t>(root.at("focusedWindow")),
            .windows = listFrom(root.at("windows"), windowFrom),
            .spaces = listFrom(root.at("spaces"), spaceFrom),
            .panels = listFrom(root.at("panels"), panelFrom),
            .menu = listFrom(root.at("menu"), entryFrom)};
    } catch (const Json::exception& error) {
        ADD_FAILURE() << error.what() << " in " << json;
        return std::nullopt;
    }
}

const State::Window* State::windowOf(xcb_window_t xid) const
{
    const auto found = std::find_if(
        windows.begin(), windows.end(), [&](const auto& window) { return window.xid == xid; });
    return found == windows.end() ? nullptr : &*found;
}

const State::Panel* State::visiblePanel() const
{
    const auto found = std::find_if(
        panels.begin(), panels.end(), [](const auto& panel) { return panel.isVisible; });
    return found == panels.end() ? nullptr : &*found;
}

const State::Popup* State::popup() const
{
    const auto* const panel = visiblePanel();
    return panel && panel->popup ? &*panel->popup : nullptr;
}

const State::MenuEntry* State::entryTitled(const std::string& title) const
{
    const auto found = std::find_if(
        menu.begin(), menu.end(), [&](const auto& entry) { return entry.title == title; });
    return found == menu.end() ? nullptr : &*found;
}

const State::Chip* State::chipOf(xcb_window_t xid) const
{
    const auto* const item = itemOf(xid);
    const auto* const panel = visiblePanel();
    if (!item || !panel)
        return nullptr;
    const auto found = std::find_if(panel->chips.begin(), panel->chips.end(),
        [&](const auto& chip) { return chip.id == item->id; });
    return found == panel->chips.end() ? nullptr : &*found;
}

const State::Item* State::itemOf(xcb_window_t xid) const
{
    const auto* const window = windowOf(xid);
    for (const auto& space : spaces) {
        if (!window || space.id != activeSpace)
            continue;
        for (const auto& item : space.items) {
            if (shows(item, window->id))
                return &item;
        }
    }
    return nullptr;
}

std::vector<std::uint64_t> State::spacesShowing(xcb_window_t xid) const
{
    std::vector<std::uint64_t> showing;
    const auto* const window = windowOf(xid);
    for (const auto& space : spaces) {
        if (window && std::any_of(space.items.begin(), space.items.end(), [&](const auto& item) {
                return shows(item, window->id);
            }))
            showing.push_back(space.id);
    }
    return showing;
}

testing::AssertionResult agrees(const State& state, Desktop& desktop)
{
    const auto clients = desktop.taskbarClients();
    if (state.activeSpace != std::uint64_t{desktop.currentDesktop()} + 1)
        return testing::AssertionFailure() << "active space " << state.activeSpace.value_or(0);
    for (const auto client : clients) {
        if (auto result = agreesOn(state, desktop, client); !result)
            return result;
    }
    for (const auto& window : state.windows) {
        if (!window.xid || std::find(clients.begin(), clients.end(), *window.xid) == clients.end())
            return testing::AssertionFailure() << "not on the taskbar: " << window;
    }
    if (auto result = agreesOnApplications(state, desktop, clients); !result)
        return result;
    if (auto result = showsItems(state); !result)
        return result;
    return agreesOnFocus(state, desktop);
}

}
