// The whole program on a desktop where everything happens at random. Whenever it has settled, the
// bar must show what there is, whatever the order was. QUORVEL_TEST_SEED repeats a round,
// QUORVEL_TEST_ROUNDS and QUORVEL_TEST_FULL make more of them.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "Tests/Support/BarFixture.h"

namespace quorvel::test {

namespace {

constexpr int kOperationsARound = 1000;
constexpr int kOperationsBetweenRests = 50;
constexpr std::uint32_t kRounds = 25;
constexpr std::uint32_t kFullRounds = 100;
/// What an application or the window server gets wrong, it gets right again within this.
constexpr double kLongestLie = 1.5;
/// A new window that looks like none of the user's is looked at for a second: many applications
/// announce their tooltips.
constexpr double kLongestMisjudgement = 0.9;
constexpr double kLongestHang = 20;

std::uint32_t number(const char* name, std::uint32_t otherwise)
{
    auto* text = std::getenv(name);
    return text ? static_cast<std::uint32_t>(std::strtoul(text, nullptr, 10)) : otherwise;
}

struct ChurnRound final : BarFixture {
    std::mt19937 random;
    std::vector<WorkItem> later;
    std::set<ProcessID> ended;
    std::uint64_t nextFullScreenSpace = 100;

    explicit ChurnRound(std::uint32_t seed) : random(seed)
    {
        desktop.setGivesSpaceHints(oneIn(2));
        start();
    }
    void TestBody() override { }

    // MARK: Chance

    std::size_t below(std::size_t limit)
    {
        return std::uniform_int_distribution<std::size_t>{0, limit - 1}(random);
    }
    bool oneIn(std::size_t count) { return below(count) == 0; }
    double upTo(double limit) { return std::uniform_real_distribution<double>{0, limit}(random); }
    template <typename T> std::optional<T> any(const std::vector<T>& choice)
    {
        return choice.empty() ? std::nullopt : std::optional{choice[below(choice.size())]};
    }
    /// A hung application does nothing, but much is done to it.
    std::optional<ProcessID> anyApplication(bool orHung = false)
    {
        std::vector<ProcessID> pids;
        for (auto& [pid, application] : desktop.model().applications) {
            if (orHung || !application.faults.isHung)
                pids.push_back(pid);
        }
        return any(pids);
    }
    FakeWindow* anyWindow(bool orHung = false)
    {
        std::vector<FakeWindow*> windows;
        for (auto& [id, window] : desktop.model().windows) {
            if (orHung || !desktop.application(window->pid).faults.isHung)
                windows.push_back(window.get());
        }
        return any(windows).value_or(nullptr);
    }
    FakeWindow* anyFreeWindow()
    {
        auto* window = anyWindow();
        return window && !isFullScreen(*window) ? window : nullptr;
    }
    bool isFullScreen(const FakeWindow& window)
    {
        return !window.spaces.empty() && raw(*window.spaces.begin()) >= 100;
    }
    SpaceID anySpace()
    {
        auto& displays = desktop.model().displays;
        return any(ordinarySpaces(displays[below(displays.size())])).value();
    }
    static std::vector<SpaceID> ordinarySpaces(const FakeDisplay& display)
    {
        std::vector<SpaceID> ids;
        for (auto& space : display.spaces) {
            if (space.type != 4)
                ids.push_back(space.id);
        }
        return ids;
    }
    Rect anyFrame(SpaceID space)
    {
        auto& model = desktop.model();
        auto display = model.displayOfSpace(space)->frame.flipped(model.flipHeight());
        return {display.x + double(below(500)), display.y + double(below(300)),
            double(oneIn(5) ? 30 + below(20) : 200 + below(500)),
            double(oneIn(8) ? 30 + below(20) : 200 + below(400))};
    }
    void soon(double limit, Work work)
    {
        later.push_back(desktop.dispatch().world().after(seconds(upTo(limit)), std::move(work)));
    }

    // MARK: What happens. False if there was nothing that it could happen to.

    bool launch()
    {
        if (desktop.model().applications.size() >= 12)
            return false;
        desktop.launch({.name = "App",
            .bundleIdentifier
            = oneIn(10) ? "com.apple.Spotlight" : "com.example." + std::to_string(below(5)),
            .policy = oneIn(10) ? ActivationPolicy::accessory : ActivationPolicy::regular,
            .startsAnsweringAfter = oneIn(2) ? seconds(upTo(6)) : Duration::zero()});
        return true;
    }
    bool activate()
    {
        auto pid = anyApplication(true);
        if (pid)
            desktop.activate(*pid);
        return pid.has_value();
    }
    bool quit()
    {
        auto pid = anyApplication();
        if (!pid)
            return false;
        desktop.terminate(*pid);
        return ended.insert(*pid).second;
    }
    bool crash()
    {
        auto pid = anyApplication(true);
        if (!pid)
            return false;
        desktop.crash(*pid);
        return ended.insert(*pid).second;
    }
    bool hang()
    {
        auto pid = anyApplication();
        if (!pid)
            return false;
        desktop.application(*pid).faults.isHung = true;
        soon(kLongestHang, [this, pid] {
            if (auto* application = desktop.model().application(*pid))
                application->faults.isHung = false;
        });
        return true;
    }
    bool open()
    {
        auto pid = anyApplication();
        if (!pid || desktop.model().windows.size() >= 60)
            return false;
        auto space = anySpace();
        desktop.open(*pid,
            {.title = "Window " + std::to_string(below(100)),
                .frame = anyFrame(space),
                .spaces = {space},
                .layer = oneIn(10) ? 3 : 0,
                .alpha = oneIn(20) ? 0.F : 1.F,
                .subrole = std::string{oneIn(8) ? "AXDialog" : ax::standardWindowSubrole},
                .isModal = oneIn(20),
                .isMinimized = oneIn(10),
                .accessibilityDelay = oneIn(3) ? seconds(upTo(kLongestLie)) : Duration::zero(),
                .serverDelay = oneIn(3) ? seconds(upTo(0.9)) : Duration::zero()});
        return true;
    }
    bool close()
    {
        auto* window = anyWindow();
        if (window)
            desktop.close(window->id);
        return window;
    }
    bool retitle()
    {
        auto* window = anyWindow();
        if (window)
            desktop.retitle(window->id, "Title " + std::to_string(below(1000)));
        return window;
    }
    void placeOn(FakeWindow& window, SpaceID space, const Rect& frame)
    {
        desktop.moveToSpace(window.id, space);
        desktop.place(window.id, frame);
    }
    /// Onto another display it takes the space that is shown there.
    bool move()
    {
        auto* window = anyFreeWindow();
        if (!window)
            return false;
        auto display = *any(desktop.model().displays);
        auto space
            = desktop.model().displayOfSpace(*window->spaces.begin())->number == display.number
            ? *window->spaces.begin()
            : ordinarySpaces(display).front();
        placeOn(*window, space, Rect::from(anyFrame(space).origin(), window->frame.size()));
        return true;
    }
    bool resize()
    {
        auto* window = anyFreeWindow();
        if (window)
            desktop.resize(window->id, anyFrame(*window->spaces.begin()).size());
        return window;
    }
    bool minimise()
    {
        auto* window = anyFreeWindow();
        if (window)
            desktop.minimise(window->id);
        return window;
    }
    bool restore()
    {
        auto* window = anyWindow();
        if (window)
            desktop.restore(window->id);
        return window;
    }
    bool focus()
    {
        auto* window = anyWindow();
        if (!window || window->isMinimized)
            return false;
        desktop.focus(window->id);
        return true;
    }
    bool changeSpace()
    {
        auto* window = anyWindow(true);
        if (!window || isFullScreen(*window))
            return false;
        auto space = anySpace();
        placeOn(*window, space, anyFrame(space));
        return true;
    }
    bool switchSpace()
    {
        auto& display = desktop.model().displays.front();
        auto spaces = ordinarySpaces(display);
        std::erase(spaces, display.current);
        desktop.activateSpace(any(spaces).value());
        return true;
    }
    bool wake()
    {
        desktop.wake();
        return true;
    }
    bool toggleFullScreen()
    {
        auto* window = anyWindow();
        if (!window || window->isMinimized)
            return false;
        auto& display = *desktop.model().displayOfSpace(*window->spaces.begin());
        if (isFullScreen(*window)) {
            leaveFullScreen(*window, display);
            return true;
        }
        SpaceID space{nextFullScreenSpace++};
        display.spaces.push_back({space, 4});
        placeOn(*window, space, display.frame.flipped(desktop.model().flipHeight()));
        desktop.activateSpace(space);
        return true;
    }
    void leaveFullScreen(FakeWindow& window, FakeDisplay& display)
    {
        auto old = *window.spaces.begin();
        auto space = ordinarySpaces(display).front();
        placeOn(window, space, anyFrame(space));
        desktop.activateSpace(space);
        std::erase_if(display.spaces, [&](auto& each) { return each.id == old; });
    }
    bool changeDisplays()
    {
        constexpr Size kSizes[] = {{1440, 900}, {1680, 1050}, {1280, 800}};
        auto displays = desktop.model().displays;
        auto size = kSizes[below(3)];
        displays.front().frame = Rect::from({}, size);
        displays.front().visibleFrame = {};
        if (displays.size() > 1 && oneIn(2))
            displays.pop_back();
        else if (displays.size() == 1)
            displays.push_back({.number = DisplayNumber{2},
                .identifier = "second",
                .spaces = {{SpaceID{11}}, {SpaceID{12}}},
                .current = SpaceID{11}});
        if (displays.size() > 1)
            displays.back().frame = {size.width, 0, 1280, 800};
        desktop.setDisplays(displays);
        for (auto& [id, window] : desktop.model().windows) {
            auto space = ordinarySpaces(displays.front()).front();
            if (!desktop.model().displayOfSpace(*window->spaces.begin()))
                placeOn(*window, space, anyFrame(space));
        }
        return true;
    }
    bool lieAboutWindow()
    {
        auto* window = anyWindow();
        if (!window)
            return false;
        auto& faults = window->faults;
        switch (below(5)) {
        case 0:
            faults.isListed = false;
            break;
        case 1:
            faults.missingAttributes = {oneIn(2) ? "AXTitle" : "AXMinimized"};
            break;
        case 2:
            faults.wrongAttributes["AXSubrole"] = std::string{"AXDialog"};
            break;
        case 3:
            faults.wrongAttributes["AXRole"] = std::string{"AXHelpTag"};
            break;
        default:
            window->isInSpaceLists = false;
        }
        auto longest = faults.wrongAttributes.empty() ? kLongestLie : kLongestMisjudgement;
        soon(longest, [this, id = window->id] {
            if (auto* still = desktop.model().window(id)) {
                still->faults = {};
                still->isInSpaceLists = true;
            }
        });
        return true;
    }
    bool lieAboutApplication()
    {
        auto pid = anyApplication();
        if (!pid)
            return false;
        auto& faults = desktop.application(*pid).faults;
        switch (below(3)) {
        case 0:
            faults.missingAttributes = {"AXWindows"};
            break;
        case 1:
            faults.failingMessages = 1 + int(below(20));
            break;
        default:
            faults.duplicatedNotifications = {"AXTitleChanged", "AXWindowCreated",
                "AXUIElementDestroyed", "AXFocusedWindowChanged"};
        }
        soon(kLongestLie, [this, pid] {
            if (auto* application = desktop.model().application(*pid)) {
                bool isHung = application->faults.isHung;
                application->faults = {.isHung = isHung};
            }
        });
        return true;
    }

    bool playOne()
    {
        using Operation = bool (ChurnRound::*)();
        static const std::vector<std::pair<double, Operation>> operations{
            {3, &ChurnRound::launch},
            {8, &ChurnRound::activate},
            {0.7, &ChurnRound::quit},
            {0.7, &ChurnRound::crash},
            {1.5, &ChurnRound::hang},
            {14, &ChurnRound::open},
            {9, &ChurnRound::close},
            {8, &ChurnRound::retitle},
            {8, &ChurnRound::move},
            {8, &ChurnRound::resize},
            {6, &ChurnRound::minimise},
            {6, &ChurnRound::restore},
            {6, &ChurnRound::focus},
            {4, &ChurnRound::changeSpace},
            {3, &ChurnRound::switchSpace},
            {1, &ChurnRound::wake},
            {2, &ChurnRound::toggleFullScreen},
            {1, &ChurnRound::changeDisplays},
            {3, &ChurnRound::lieAboutWindow},
            {2, &ChurnRound::lieAboutApplication},
        };
        std::vector<double> weights;
        for (auto& [weight, operation] : operations)
            weights.push_back(weight);
        auto choice = std::discrete_distribution<std::size_t>(weights.begin(), weights.end());
        return (this->*operations[choice(random)].second)();
    }
    void play(int count)
    {
        while (count > 0) {
            if (playOne())
                --count;
            if (oneIn(2))
                desktop.advance(seconds(upTo(0.4)));
        }
    }
    void rest()
    {
        later.clear();
        for (auto& [pid, application] : desktop.model().applications)
            application.faults = {};
        for (auto& [id, window] : desktop.model().windows) {
            window->faults = {};
            window->isInSpaceLists = true;
        }
        // Nobody can know of a window that was put on another space before the user changes spaces,
        // unless the window server gives hints.
        if (!desktop.givesSpaceHints())
            switchSpace();
        runtime->userSettings().setGroupWindowsByApp(oneIn(2));
        settle();
        desktop.accessibility().forgetMessages();
        desktop.windowServer().forgetListings();
    }

    // MARK: What must be true then, told from the desktop alone

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
    bool isOnScreen(const TrackedWindow& window, const FakeDisplay& display)
    {
        auto& model = desktop.model();
        return model.displays.size() == 1 || window.isMinimized
            || window.frame.intersects(display.frame.flipped(model.flipHeight()));
    }
    void expectBars(const std::map<WindowID, TrackedWindow>& expected)
    {
        std::size_t panels = 0;
        for (auto& display : desktop.model().displays) {
            for (auto space : ordinarySpaces(display)) {
                SCOPED_TRACE("space " + std::to_string(raw(space)));
                ++panels;
                expectBar(space, display, expected);
            }
        }
        auto isBar = [](auto* shown) { return shown->options().kind == PanelKind::bar; };
        EXPECT_EQ(
            static_cast<std::size_t>(std::ranges::count_if(desktop.surfaces().panels(), isBar)),
            panels);
        BarViewModel fromNothing(runtime->windowStore(), runtime->userSettings(),
            runtime->badgeService(), desktop.platform());
        EXPECT_EQ(model().chipsBySpace.value(), fromNothing.chipsBySpace.value());
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
        std::set<std::string> shownChips;
        for (auto& [id, frame] : runtime->barManager()->panels().at(space)->content()->chipFrames())
            shownChips.insert(id);
        EXPECT_EQ(shownChips, chips);
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

TEST_F(BarFixture, tenThousandWindowsLeaveNothingBehind)
{
    auto pid = desktop.launch();
    start();
    for (int round = 0; round < 200; ++round) {
        std::vector<WindowID> windows;
        for (int i = 0; i < 50; ++i)
            windows.push_back(desktop.open(pid));
        desktop.advance(seconds(0.2));
        for (auto id : windows) {
            desktop.retitle(id, "Closing");
            desktop.close(id);
        }
        desktop.advance(seconds(0.2));
        desktop.accessibility().forgetMessages();
        desktop.windowServer().forgetListings();
    }
    settle();

    EXPECT_TRUE(QuorvelApp::windowStore().windows().empty());
    EXPECT_TRUE(model().chipsBySpace.value().empty());
    EXPECT_TRUE(model().displayItemsBySpace.value().empty());
    EXPECT_TRUE(runtime->barManager()->panels().at(SpaceID{1})->content()->chipFrames().empty());
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0u);
    desktop.terminate(pid);
    settle();
    EXPECT_TRUE(QuorvelApp::windowStore().needsObserverBootstrap(pid));
    EXPECT_EQ(desktop.accessibility().observersOf(pid), 0u);
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0u);
}

TEST(ChurnTest, wheneverTheDesktopRestsTheBarShowsWhatThereIs)
{
    auto seed = number("QUORVEL_TEST_SEED", std::random_device{}());
    auto rounds
        = number("QUORVEL_TEST_ROUNDS", std::getenv("QUORVEL_TEST_FULL") ? kFullRounds : kRounds);
    std::printf("seed %u, %u operations\n", seed, rounds * kOperationsARound);
    for (std::uint32_t i = 0; i < rounds && !testing::Test::HasFailure(); ++i, ++seed) {
        ChurnRound round{seed};
        for (int played = 0; played < kOperationsARound && !testing::Test::HasFailure();) {
            round.play(kOperationsBetweenRests);
            played += kOperationsBetweenRests;
            round.rest();
            SCOPED_TRACE("QUORVEL_TEST_SEED=" + std::to_string(seed) + " QUORVEL_TEST_ROUNDS=1, "
                + std::to_string(played) + " operations");
            auto expected = round.truth();
            round.expectWindows(expected);
            round.expectFocus(expected);
            round.expectBars(expected);
            round.expectNothingLeftBehind();
        }
    }
}

}
