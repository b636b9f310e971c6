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

template <typename Value> void readValue(const Json& json, Value& value)
{
    json.get_to(value);
}
template <typename Value> void readValue(const Json& json, std::optional<Value>& value)
{
    if (!json.is_null())
        json.get_to(value.emplace());
}

void read(const Json&)
{
}
/// Pairs of a key that must be there and where its value goes.
template <typename Value, typename... More>
void read(const Json& json, const char* key, Value& value, More&&... more)
{
    readValue(json.at(key), value);
    read(json, more...);
}

}

// The library looks for these beside their types.
static void from_json(const Json& json, Frame& frame)
{
    int* const numbers[]{&frame.x, &frame.y, &frame.width, &frame.height};
    for (std::size_t i = 0; i < 4; ++i)
        *numbers[i] = static_cast<int>(std::lround(json.at(i).get<double>()));
}
static void from_json(const Json& json, State::Window& window)
{
    read(json, "id", window.id, "xid", window.xid, "pid", window.pid, "app", window.app, "bundle",
        window.bundle, "title", window.title, "frame", window.frame, "minimized",
        window.isMinimized, "spaces", window.spaces);
}
static void from_json(const Json& json, State::Item& item)
{
    read(json, "id", item.id, "title", item.title, "windows", item.windows, "focused",
        item.isFocused, "minimized", item.isMinimized);
}
static void from_json(const Json& json, State::Space& space)
{
    read(json, "id", space.id, "items", space.items);
}
static void from_json(const Json& json, State::Chip& chip)
{
    read(json, json.contains("bundle") ? "bundle" : "id", chip.id, "frame", chip.frame);
}
static void from_json(const Json& json, State::Cell& cell)
{
    read(json, "space", cell.space, "frame", cell.frame);
}
static void from_json(const Json& json, State::Card& card)
{
    read(json, "window", card.window, "frame", card.frame, "close", card.closeButton);
}
static void from_json(const Json& json, State::Popup& popup)
{
    read(json, "frame", popup.frame, "cards", popup.cards);
}
static void from_json(const Json& json, State::Panel& panel)
{
    read(json, "space", panel.space, "visible", panel.isVisible, "frame", panel.frame);
    if (json.contains("chips")) // else it has not been shown yet
        read(json, "showDesktop", panel.showDesktop, "pins", panel.pins, "chips", panel.chips,
            "spaceCells", panel.cells, "popup", panel.popup, "keyFocus", panel.keyFocus);
}
static void from_json(const Json& json, State::MenuEntry& entry)
{
    read(json, "title", entry.title, "enabled", entry.isEnabled, "frame", entry.frame);
}
static void from_json(const Json& json, State::Launcher::Row& row)
{
    read(
        json, "id", row.id, "section", row.section, "selected", row.isSelected, "frame", row.frame);
}
static std::optional<std::string> stateOf(const Json& hotkey)
{
    return hotkey.is_null() ? std::nullopt : std::optional{hotkey.at("state").get<std::string>()};
}
static void from_json(const Json& json, State::Launcher& launcher)
{
    read(json, "frame", launcher.frame, "query", launcher.query, "field", launcher.field,
        "keyFocus", launcher.keyFocus, "rows", launcher.rows);
}
static void from_json(const Json& json, State::Finder::Row& row)
{
    read(json, "window", row.window, "selected", row.isSelected, "frame", row.frame);
}
static void from_json(const Json& json, State::Finder& finder)
{
    read(json, "frame", finder.frame, "query", finder.query, "rows", finder.rows);
}

namespace {

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

std::vector<std::uint64_t> spacesShowing(const State& state, std::uint32_t window)
{
    std::vector<std::uint64_t> showing;
    for (const auto& space : state.spaces) {
        if (std::ranges::any_of(space.items, [&](auto& item) { return shows(item, window); }))
            showing.push_back(space.id);
    }
    return showing;
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
    if (window->spaces != spaces || spacesShowing(state, window->id) != spaces)
        return fault() << "on space " << testing::PrintToString(window->spaces) << ", shown on "
                       << testing::PrintToString(spacesShowing(state, window->id)) << ", not "
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
    std::vector<std::string> items;
    for (const auto& space : state.spaces) {
        for (const auto& item : space.items) {
            if (space.id == state.activeSpace)
                items.push_back(item.id);
        }
    }
    std::set<std::string> shown;
    for (const auto& panel : state.visiblePanels()) {
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
    if (!state.panel().isVisible)
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

State State::parse(const std::string& json)
{
    State state;
    try {
        const auto said = Json::parse(json);
        state.hotkey = stateOf(said.at("hotkey"));
        state.findHotkey = stateOf(said.at("findHotkey"));
        state.numberKeys = stateOf(said.at("numberKeys"));
        read(said, "activeSpace", state.activeSpace, "focusedWindow", state.focusedWindow,
            "windows", state.windows, "spaces", state.spaces, "panels", state.panels, "menu",
            state.menu, "launcher", state.launcher, "finder", state.finder);
    } catch (const Json::exception& error) {
        ADD_FAILURE() << error.what() << " in " << json;
    }
    return state;
}

namespace {

template <typename Element, typename Member, typename Value>
const Element* findIn(const std::vector<Element>& list, Member member, const Value& value)
{
    const auto found = std::ranges::find(list, value, member);
    return found == list.end() ? nullptr : &*found;
}

}

const State::Window* State::windowOf(xcb_window_t xid) const
{
    return findIn(windows, &Window::xid, std::optional{xid});
}

std::vector<State::Panel> State::visiblePanels() const
{
    auto visible = panels;
    std::erase_if(visible, [](const auto& panel) { return !panel.isVisible; });
    return visible;
}

State::Panel State::panel() const
{
    const auto* const visible = findIn(panels, &Panel::isVisible, true);
    return visible ? *visible : Panel{};
}

std::vector<State::Card> State::cards() const
{
    const auto open = panel().popup;
    return open ? open->cards : std::vector<Card>{};
}

const State::MenuEntry* State::entryTitled(const std::string& title) const
{
    return findIn(menu, &MenuEntry::title, title);
}

const State::Chip* State::chipOf(xcb_window_t xid) const
{
    const auto* const item = itemOf(xid);
    const auto* const visible = findIn(panels, &Panel::isVisible, true);
    return item && visible ? findIn(visible->chips, &Chip::id, item->id) : nullptr;
}

Frame State::chipFrame(xcb_window_t xid) const
{
    const auto* const chip = chipOf(xid);
    return chip ? chip->frame : Frame{};
}

const State::Item* State::itemOf(xcb_window_t xid) const
{
    const auto* const window = windowOf(xid);
    const auto* const space = activeSpace ? findIn(spaces, &Space::id, *activeSpace) : nullptr;
    if (!window || !space)
        return nullptr;
    const auto found = std::ranges::find_if(
        space->items, [&](const auto& item) { return shows(item, window->id); });
    return found == space->items.end() ? nullptr : &*found;
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
