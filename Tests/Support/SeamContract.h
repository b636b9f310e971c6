#pragma once

#include <atomic>
#include <mutex>

#include <gmock/gmock.h>

#include "Quorvel/Platform/Accessibility.h"
#include "Quorvel/Platform/Displays.h"
#include "Quorvel/Platform/WindowServer.h"

namespace quorvel::test {

/// What the program relies on, whatever the system. `Host` is a desktop with the services of one
/// host: `accessibility()`, `windowServer()`, `displays()`, `dispatch()`; `open(title)`,
/// `retitle(window, title)` and `close(window)` do what an application does to a window of its own;
/// `runUntil(condition)` lets the system work; `failLists(bool)` is false where lists cannot fail.
template <typename Host> struct SeamContract : testing::Test {
    Host host;
    WindowID first = open("first");
    WindowID second = open("second");

    WindowID open(const std::string& title)
    {
        host.open(title);
        WindowID found{};
        auto isFound = [&] {
            for (auto& window : listed()) {
                if (window.windowName == title && window.windowNumber)
                    found = *window.windowNumber;
            }
            return raw(found) != 0 && elementOf(found);
        };
        EXPECT_TRUE(host.runUntil(isFound)) << title;
        return found;
    }
    std::vector<CGWindowInfo> listed(std::optional<ProcessID> owner = {})
    {
        std::vector<CGWindowInfo> windows;
        auto visit = [&](const CGWindowInfo& window) { windows.push_back(window); };
        auto& list = host.windowServer();
        constexpr auto kOptions = kWindowListExcludeDesktopElements;
        EXPECT_EQ(owner ? list.enumerateWindows(*owner, kOptions, visit)
                        : list.enumerateWindows(kOptions, visit),
            Listing::complete);
        return windows;
    }
    /// Of those that the test opened.
    std::vector<WindowID> frontToBack(std::optional<ProcessID> owner = {})
    {
        std::vector<WindowID> order;
        for (auto& window : listed(owner)) {
            if (window.windowNumber == first || window.windowNumber == second)
                order.push_back(*window.windowNumber);
        }
        return order;
    }
    ProcessID ownerOf(WindowID id)
    {
        for (auto& window : listed()) {
            if (window.windowNumber == id)
                return window.ownerPID.value_or(ProcessID{});
        }
        return {};
    }
    std::optional<AXElement> elementOf(WindowID id)
    {
        auto& tree = host.accessibility();
        auto reply = tree.copyAttribute(tree.application(ownerOf(id)), ax::windows);
        auto* windows = reply.template get<std::vector<AXElement>>();
        for (auto& window : windows ? *windows : std::vector<AXElement>{}) {
            WindowID number{};
            if (tree.windowIDResolver()(window, number) == AXError::success && number == id)
                return window;
        }
        return {};
    }
    /// Waits for work on another thread.
    void on(RunLoopThread& thread, const Work& work)
    {
        std::atomic_bool isDone = false;
        thread.perform([&] {
            work();
            isDone = true;
        });
        ASSERT_TRUE(host.runUntil([&] { return isDone.load(); }));
    }
};

TYPED_TEST_SUITE_P(SeamContract);

// Faults: windows in the order of their age; a list that leaves out or invents; one that failed
// taken for an empty desktop, so that every chip goes.
TYPED_TEST_P(SeamContract, windowsAreListedFromFrontToBackOrNotAtAll)
{
    auto& system = this->host;
    for (auto front : {this->second, this->first, this->second}) {
        system.accessibility().performAction(*this->elementOf(front), ax::raiseAction);
        EXPECT_TRUE(system.runUntil([&] {
            auto order = this->frontToBack();
            return order.size() == 2 && order.front() == front;
        })) << raw(front);
    }
    EXPECT_EQ(this->frontToBack(this->ownerOf(this->first)), this->frontToBack());
    EXPECT_THAT(this->listed(ProcessID{999'999}), testing::IsEmpty());
    if (!system.failLists(true))
        return;
    auto visit = [](auto&) { ADD_FAILURE() << "a window of a list that failed"; };
    EXPECT_EQ(system.windowServer().enumerateWindows(kWindowListExcludeDesktopElements, visit),
        Listing::failed);
    system.failLists(false);
    EXPECT_EQ(this->frontToBack().size(), 2U);
}

// Faults: an element that hangs on a window's memory; a success that nothing follows, or a crash,
// for what is not there.
TYPED_TEST_P(SeamContract, whatIsNotThereSaysSoAndDoesNoHarm)
{
    auto& system = this->host;
    auto& tree = system.accessibility();
    auto window = *this->elementOf(this->first);
    EXPECT_EQ(window, *this->elementOf(this->first)) << "two of one window are equal";
    EXPECT_NE(window, *this->elementOf(this->second));
    EXPECT_EQ(tree.copyAttribute(window, "AXUnheardOf").error, AXError::attributeUnsupported);
    EXPECT_EQ(tree.performAction(window, "AXUnheardOf"), AXError::actionUnsupported);
    system.close(this->first);
    EXPECT_TRUE(system.runUntil([&] {
        return tree.copyAttribute(window, ax::title).error == AXError::invalidElement
            && this->frontToBack().size() == 1;
    }));
    EXPECT_EQ(tree.setAttribute(window, ax::minimized, true), AXError::invalidElement);
    EXPECT_EQ(tree.setAttribute(window, ax::size, Size{300, 200}), AXError::invalidElement);
    EXPECT_EQ(tree.performAction(window, ax::raiseAction), AXError::invalidElement);

    auto nobody = tree.application(ProcessID{999'999});
    EXPECT_NE(tree.copyAttribute(nobody, ax::windows).error, AXError::success);
    EXPECT_NE(tree.setAttribute(nobody, ax::frontmost, true), AXError::success);
    EXPECT_NE(tree.setAttribute(AXElement{}, ax::main, true), AXError::success);
    auto& spaces = system.windowServer();
    const std::vector unknown{WindowID{999'999}};
    EXPECT_EQ(spaces.spacesOfWindows(kAllSpacesMask, unknown), std::vector<SpaceID>{});
    spaces.addWindowsToSpaces(unknown, {SpaceID{1}});
    spaces.addWindowsToSpaces({this->second}, {SpaceID{999'999}});
    spaces.removeWindowsFromSpaces(unknown, {SpaceID{999'999}});
    EXPECT_FALSE(spaces.spaceName(SpaceID{999'999}));
    EXPECT_EQ(this->frontToBack(), std::vector{this->second});
}

// Faults: news that overtake each other, come on the wrong thread, or after the end.
TYPED_TEST_P(SeamContract, observersHearInOrderUntilTheyEnd)
{
    auto& system = this->host;
    auto thread = system.dispatch().startThread("observers", QualityOfService::userInitiated);
    auto window = *this->elementOf(this->first);
    std::mutex mutex;
    std::vector<std::string> heard;
    auto hears = [&](std::size_t count) {
        std::scoped_lock lock(mutex);
        return heard.size() >= count;
    };
    std::unique_ptr<AXObserver> observer;
    this->on(*thread, [&] {
        observer = system.accessibility()
                       .createObserver(this->ownerOf(this->first), *thread,
                           [&](const AXElement& element, std::string_view notification) {
                               std::scoped_lock lock(mutex);
                               EXPECT_EQ(element, window);
                               heard.emplace_back(notification);
                           })
                       .second;
        ASSERT_TRUE(observer);
        EXPECT_EQ(observer->addNotification(window, ax::titleChanged), AXError::success);
        EXPECT_EQ(observer->addNotification(window, ax::titleChanged),
            AXError::notificationAlreadyRegistered);
        EXPECT_EQ(observer->addNotification(window, ax::windowMiniaturized), AXError::success);
        EXPECT_EQ(observer->removeNotification(window, ax::windowMoved),
            AXError::notificationNotRegistered);
    });
    system.retitle(this->first, "other");
    EXPECT_TRUE(system.runUntil([&] { return hears(1); }));
    this->on(*thread, [&] {
        EXPECT_EQ(observer->removeNotification(window, ax::titleChanged), AXError::success);
    });
    system.retitle(this->first, "unheard");
    EXPECT_EQ(system.accessibility().setAttribute(window, ax::minimized, true), AXError::success);
    EXPECT_TRUE(system.runUntil([&] { return hears(2); }));
    this->on(*thread, [&] { observer.reset(); });
    system.retitle(this->first, "late");
    EXPECT_TRUE(system.runUntil([&] {
        auto title = system.accessibility().copyAttribute(window, ax::title);
        return title.value == AXValue{std::string{"late"}};
    }));
    this->on(*thread, [] { }); // whatever was on its way has come
    EXPECT_THAT(heard, testing::ElementsAre(ax::titleChanged, ax::windowMiniaturized));
}

// Faults: work that overtakes work, or comes early; a timer that fires after it was cancelled.
TYPED_TEST_P(SeamContract, queuesAndTimersKeepTheirOrder)
{
    auto& system = this->host;
    auto& main = system.dispatch().main();
    std::vector<int> order;
    auto start = system.dispatch().now();
    auto late = main.after(seconds(0.02), [&] {
        EXPECT_GE(system.dispatch().now() - start, seconds(0.02));
        order.push_back(5);
    });
    auto early = main.after(seconds(0.01), [&] { order.push_back(4); });
    auto cancelled = main.after(seconds(0.01), [&] { order.push_back(-1); });
    main.async([&] {
        order.push_back(1);
        main.async([&] { order.push_back(3); });
        cancelled.cancel();
    });
    main.async([&] { order.push_back(2); });
    EXPECT_THAT(order, testing::IsEmpty()) << "never inside the call";
    EXPECT_TRUE(system.runUntil([&] { return order.size() == 5; }));
    EXPECT_THAT(order, testing::ElementsAre(1, 2, 3, 4, 5));

    auto queue = system.dispatch().makeSerialQueue("serial", QualityOfService::utility);
    std::vector<int> serial;
    for (int i = 0; i < 100; ++i)
        queue->async([&serial, i] { serial.push_back(i); });
    queue->sync([&] { EXPECT_TRUE(std::ranges::is_sorted(serial) && serial.size() == 100); });
}

// Faults: frames that are measured from another corner, displays that one call knows and another
// does not, a current space that is not among the spaces, a window that is nowhere.
TYPED_TEST_P(SeamContract, displaysSpacesAndWindowsAgree)
{
    auto& displays = this->host.displays();
    auto screens = displays.screens();
    ASSERT_FALSE(screens.empty());
    EXPECT_EQ(screens.front().frame.origin(), Point{});
    auto active = displays.activeDisplays(32);
    EXPECT_EQ(displays.activeDisplays(1).size(), 1U);
    EXPECT_THAT(active, testing::Contains(displays.mainDisplay()));
    for (auto& screen : screens) {
        ASSERT_TRUE(screen.number);
        EXPECT_THAT(active, testing::Contains(*screen.number));
        EXPECT_TRUE(displays.identifier(*screen.number));
        EXPECT_TRUE(screen.frame.contains(screen.visibleFrame));
        auto centre = screen.frame.flipped(screens.front().frame.height).centre();
        EXPECT_EQ(displays.displayAt(centre), screen.number);
    }
    EXPECT_FALSE(displays.identifier(DisplayNumber{999'999}));

    auto& spaces = this->host.windowServer();
    auto now = spaces.activeSpace();
    auto managed = spaces.managedDisplaySpaces();
    ASSERT_TRUE(managed);
    EXPECT_TRUE(std::ranges::any_of(*managed, [&](const ManagedDisplay& display) {
        return display.currentSpace && display.currentSpace->managedSpaceID == raw(now)
            && std::ranges::count(display.spaces, raw(now), &ManagedSpace::id64) == 1;
    }));
    EXPECT_EQ(spaces.spacesOfWindows(kAllSpacesMask, {this->first}), std::vector{now});
    EXPECT_THAT(
        spaces.windowsOfSpaces({now}, kSpaceWindowOptions).value_or(std::vector<WindowID>{}),
        testing::IsSupersetOf({this->first, this->second}));
}

REGISTER_TYPED_TEST_SUITE_P(SeamContract, windowsAreListedFromFrontToBackOrNotAtAll,
    whatIsNotThereSaysSoAndDoesNoHarm, observersHearInOrderUntilTheyEnd,
    queuesAndTimersKeepTheirOrder, displaysSpacesAndWindowsAgree);

}
