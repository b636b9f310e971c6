// What may happen to a desktop, at random and from a seed.
#pragma once

#include <algorithm>
#include <random>

#include "Tests/Support/BarFixture.h"

namespace quorvel::test {

/// What an application or the window server gets wrong, it gets right again within this.
inline constexpr double kLongestLie = 1.5;
/// A new window that looks like none of the user's is looked at for a second: many applications
/// announce their tooltips.
inline constexpr double kLongestMisjudgement = 0.9;
inline constexpr double kLongestHang = 20;

struct ChurnOperations : BarFixture {
    std::mt19937 random;
    std::vector<WorkItem> later;
    std::set<ProcessID> ended;
    std::uint64_t nextFullScreenSpace = 100;

    explicit ChurnOperations(std::uint32_t seed) : random(seed)
    {
        desktop.setGivesSpaceHints(oneIn(2));
        desktop.windowServer().setCloseDelay(oneIn(2) ? seconds(0.15) : Duration::zero());
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
        using Operation = bool (ChurnOperations::*)();
        static const std::vector<std::pair<double, Operation>> operations{
            {3, &ChurnOperations::launch},
            {8, &ChurnOperations::activate},
            {0.7, &ChurnOperations::quit},
            {0.7, &ChurnOperations::crash},
            {1.5, &ChurnOperations::hang},
            {14, &ChurnOperations::open},
            {9, &ChurnOperations::close},
            {8, &ChurnOperations::retitle},
            {8, &ChurnOperations::move},
            {8, &ChurnOperations::resize},
            {6, &ChurnOperations::minimise},
            {6, &ChurnOperations::restore},
            {6, &ChurnOperations::focus},
            {4, &ChurnOperations::changeSpace},
            {3, &ChurnOperations::switchSpace},
            {1, &ChurnOperations::wake},
            {2, &ChurnOperations::toggleFullScreen},
            {1, &ChurnOperations::changeDisplays},
            {3, &ChurnOperations::lieAboutWindow},
            {2, &ChurnOperations::lieAboutApplication},
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
};

}
