// What the bars must show, whatever has happened to a desktop.
#pragma once

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "Tests/Support/ChurnOperations.h"

namespace quorvel::test {

/// Beside them, what must be true whenever the desktop has settled, told from the desktop alone.
struct ChurnRound : ChurnOperations {
    using ChurnOperations::ChurnOperations;

    bool belongsOnTheBar(const FakeWindow& window)
    {
        auto& owner = desktop.application(window.pid).info;
        bool isOwnerEligible = owner.activationPolicy == ActivationPolicy::regular
            && owner.bundleIdentifier != "com.apple.Spotlight";
        bool isVisible = window.layer == 0 && window.alpha > 0 && window.frame.width >= 40
            && window.frame.height >= 40;
        bool isOrdinary = window.isMinimized || window.subrole == "AXStandardWindow";
        return isOwnerEligible && isVisible && isOrdinary && !window.isModal;
    }
    std::map<WindowID, TrackedWindow> truth()
    {
        std::map<WindowID, TrackedWindow> windows;
        for (auto& [id, window] : desktop.model().windows) {
            if (!belongsOnTheBar(*window))
                continue;
            auto& info = desktop.application(window->pid).info;
            windows[id] = {id, window->pid, info.localizedName, info.bundleIdentifier,
                window->title, window->frame, window->isMinimized, window->spaces};
        }
        return windows;
    }
    void expectWindows(const std::map<WindowID, TrackedWindow>& expected)
    {
        auto& tracked = QuorvelApp::windowStore().windows();
        for (auto& [id, window] : expected) {
            auto found = tracked.find(id);
            if (found == tracked.end()) {
                ADD_FAILURE() << "not tracked: " << raw(id);
                continue;
            }
            EXPECT_EQ(found->second.windowTitle, window.windowTitle) << raw(id);
            EXPECT_EQ(found->second.isMinimized, window.isMinimized) << raw(id);
            EXPECT_EQ(found->second.spaceIDs, window.spaceIDs) << raw(id);
            EXPECT_EQ(found->second.frame, window.frame) << raw(id);
            EXPECT_EQ(found->second, window) << raw(id);
        }
        for (auto& [id, window] : tracked)
            EXPECT_TRUE(expected.contains(id)) << "no such window: " << raw(id);
    }
    /// Of an application that has no focused window, and of none at all, nothing is known.
    void expectFocus(const std::map<WindowID, TrackedWindow>& expected)
    {
        auto& model = desktop.model();
        auto* front = model.frontmost ? model.application(*model.frontmost) : nullptr;
        if (!front || !front->focusedWindow || !expected.contains(*front->focusedWindow))
            return;
        EXPECT_EQ(QuorvelApp::windowStore().focusedWindowID(), front->focusedWindow);
        EXPECT_TRUE(chip(*front->focusedWindow)->isFocused);
    }
    /// Of the space's own display, which has what meets none.
    bool isOnScreen(const TrackedWindow& window, const FakeDisplay& display)
    {
        auto& model = desktop.model();
        auto meets = [&](const FakeDisplay& each) {
            return window.frame.intersects(each.frame.flipped(model.flipHeight()));
        };
        return model.displays.size() == 1 || window.isMinimized || meets(display)
            || std::ranges::none_of(model.displays, meets);
    }
    void expectBars(const std::map<WindowID, TrackedWindow>& expected)
    {
        std::size_t panels = 0;
        for (auto& display : desktop.model().displays) {
            for (auto space : ordinarySpaces(display)) {
                SCOPED_TRACE("space " + std::to_string(raw(space)));
                ++panels;
                expectBar(space, display, expected);
                expectRoom(space, expected);
            }
        }
        auto isBar = [](auto* shown) { return shown->options().kind == PanelKind::bar; };
        EXPECT_EQ(
            static_cast<std::size_t>(std::ranges::count_if(desktop.surfaces().panels(), isBar)),
            panels);
        BarViewModel fromNothing(runtime->windowStore(), runtime->userSettings(),
            runtime->badgeService(), desktop.platform());
        EXPECT_EQ(model().chipsBySpace.value(), fromNothing.chipsBySpace.value());
        if (!runtime->userSettings().groupWindowsByApp()) { // a group remembers its last window
            EXPECT_EQ(model().displayItemsBySpace.value(), fromNothing.displayItemsBySpace.value());
        }
    }
    /// A bar that hides is out of the way of windows, and of nothing else.
    void expectRoom(SpaceID space, const std::map<WindowID, TrackedWindow>& expected)
    {
        auto* shown = desktop.surfaces().panel(space);
        if (!shown || bar(space).isInUse())
            return;
        auto place = shown->frame().flipped(desktop.model().flipHeight());
        bool isNeeded = std::ranges::any_of(expected, [&](auto& entry) {
            auto& window = entry.second;
            return !window.isMinimized && window.spaceIDs.contains(space)
                && window.frame.intersects(place);
        });
        bool hides = runtime->userSettings().hidesBar() && isNeeded;
        EXPECT_EQ(shown->slide(), hides ? 1 : 0);
    }
    void expectBar(SpaceID space, const FakeDisplay& display,
        const std::map<WindowID, TrackedWindow>& expected)
    {
        std::set<WindowID> items;
        std::map<std::string, std::vector<WindowID>> onScreen; // by group
        for (auto& [id, window] : expected) {
            if (!window.spaceIDs.contains(space))
                continue;
            items.insert(id);
            if (isOnScreen(window, display))
                onScreen[groupKey(window)].push_back(id);
        }
        std::set<std::string> chips;
        for (auto& [key, ids] : onScreen) {
            if (ids.size() > 1 && runtime->userSettings().groupWindowsByApp())
                chips.insert(groupItemID(key));
            else
                std::ranges::transform(ids, std::inserter(chips, chips.end()),
                    [](WindowID id) { return displayItemID(id); });
        }
        std::set<WindowID> shownItems;
        if (auto found = model().chipsBySpace.value().find(space);
            found != model().chipsBySpace.value().end()) {
            for (auto& each : found->second)
                shownItems.insert(each.id);
        }
        EXPECT_EQ(shownItems, items);
        if (space != display.current)
            return; // it rests
        auto* content = bar(space).content();
        ASSERT_TRUE(content);
        auto shownChips = idsOf(content->chipFrames());
        std::ranges::sort(shownChips);
        EXPECT_EQ(shownChips, std::vector(chips.begin(), chips.end()));
    }
    void expectNothingLeftBehind()
    {
        for (auto pid : ended) {
            EXPECT_TRUE(QuorvelApp::windowStore().needsObserverBootstrap(pid)) << raw(pid);
            EXPECT_EQ(desktop.accessibility().observersOf(pid), 0u) << raw(pid);
        }
        // Applications that no observer could be attached to go on being polled, and the pointer is
        // followed while there is more than one display.
        auto polled = std::ranges::count_if(desktop.model().applications,
            [&](auto& entry) { return desktop.accessibility().observersOf(entry.first) == 0; });
        auto sampling = desktop.model().displays.size() > 1 ? 1u : 0u;
        EXPECT_LE(desktop.dispatch().pendingTimers(), std::size_t(polled) + sampling);
    }
};

}
