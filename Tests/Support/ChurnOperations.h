// What may happen to a desktop, at random and from a seed.
#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <random>

#include "Tests/Support/BarFixture.h"

namespace quorvel::test {

/// What an application or the window server gets wrong, it gets right again within this.
inline constexpr double kLongestLie = 1.5;
/// A new window that looks like none of the user's is looked at for a second: many applications
/// announce their tooltips.
inline constexpr double kLongestMisjudgement = 0.9;
/// Between two lies that hide a window, a whole burst of looks finds the truth about it once.
inline constexpr Duration kBetweenLies = seconds(kLongestLie + 2.5);
inline constexpr double kLongestHang = 20;

struct ChurnOperations : BarFixture {
    std::mt19937 random;
    std::vector<WorkItem> later;
    std::set<ProcessID> ended;
    std::map<WindowID, Instant> nextLie;
    std::uint64_t nextSpace = 100;

    double longestPause = 0.4; ///< between one and the next, now and then, in seconds

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
    std::optional<ProcessID> anyProcess()
    {
        std::vector<ProcessID> pids;
        for (auto& [pid, application] : desktop.model().applications)
            pids.push_back(pid);
        return any(pids);
    }
    /// A hung application does nothing, but much is done to it.
    bool isHung(ProcessID pid) { return desktop.application(pid).faults.isHung; }
    std::optional<ProcessID> anyApplication()
    {
        auto pid = anyProcess();
        return pid && !isHung(*pid) ? pid : std::nullopt;
    }
    FakeWindow* anyWindowOfAll()
    {
        std::vector<FakeWindow*> windows;
        for (auto& [id, window] : desktop.model().windows)
            windows.push_back(window.get());
        return any(windows).value_or(nullptr);
    }
    FakeWindow* anyWindow()
    {
        auto* window = anyWindowOfAll();
        return window && !isHung(window->pid) ? window : nullptr;
    }
    /// All of them or none.
    bool mayHide(const std::vector<FakeWindow*>& windows)
    {
        auto now = desktop.dispatch().now();
        bool mayHide = std::ranges::none_of(windows, [&](auto* window) {
            auto next = nextLie.find(window->id);
            return next != nextLie.end() && next->second > now;
        });
        for (auto* window : mayHide ? windows : std::vector<FakeWindow*>{})
            nextLie[window->id] = now + kBetweenLies;
        return mayHide;
    }
    FakeWindow* anyFreeWindowOfAll()
    {
        auto* window = anyWindowOfAll();
        return window && !isFullScreen(*window) ? window : nullptr;
    }
    FakeWindow* anyFreeWindow()
    {
        auto* window = anyWindow();
        return window && !isFullScreen(*window) ? window : nullptr;
    }
    FakeWindow* anyShownWindow()
    {
        auto* window = anyWindow();
        return window && !window->isMinimized ? window : nullptr;
    }
    bool isFullScreen(const FakeWindow& window)
    {
        return std::ranges::any_of(desktop.model().displays, [&](auto& display) {
            return std::ranges::any_of(display.spaces,
                [&](auto& space) { return space.type == 4 && window.spaces.contains(space.id); });
        });
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

    // MARK: What happens; where it tells, false if there was nothing that it could happen to.

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
    void end(ProcessID pid, bool isCrash)
    {
        isCrash ? desktop.crash(pid) : desktop.terminate(pid);
        ended.insert(pid);
    }
    void hang(ProcessID pid)
    {
        desktop.application(pid).faults.isHung = true;
        soon(kLongestHang, [this, pid] {
            if (auto* application = desktop.model().application(pid))
                application->faults.isHung = false;
        });
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
    void retitle(FakeWindow& window)
    {
        desktop.retitle(window.id, "Title " + std::to_string(below(1000)));
    }
    void resize(FakeWindow& window)
    {
        desktop.resize(window.id, anyFrame(*window.spaces.begin()).size());
    }
    void placeOn(FakeWindow& window, SpaceID space, const Rect& frame)
    {
        desktop.moveToSpace(window.id, space);
        desktop.place(window.id, frame);
    }
    /// Onto another display it takes the space that is shown there.
    void move(FakeWindow& window)
    {
        auto display = *any(desktop.model().displays);
        auto space
            = desktop.model().displayOfSpace(*window.spaces.begin())->number == display.number
            ? *window.spaces.begin()
            : ordinarySpaces(display).front();
        placeOn(window, space, Rect::from(anyFrame(space).origin(), window.frame.size()));
    }
    void changeSpace(FakeWindow& window)
    {
        auto space = anySpace();
        placeOn(window, space, anyFrame(space));
    }
    void switchSpace()
    {
        auto& display = desktop.model().displays.front();
        auto spaces = ordinarySpaces(display);
        std::erase(spaces, display.current);
        desktop.activateSpace(any(spaces).value());
    }
    void toggleFullScreen(FakeWindow& window)
    {
        auto& display = *desktop.model().displayOfSpace(*window.spaces.begin());
        if (isFullScreen(window))
            return leaveFullScreen(window, display);
        SpaceID space{nextSpace++};
        display.spaces.push_back({space, 4});
        placeOn(window, space, display.frame.flipped(desktop.model().flipHeight()));
        desktop.activateSpace(space);
    }
    void leaveFullScreen(FakeWindow& window, FakeDisplay& display)
    {
        auto old = *window.spaces.begin();
        auto space = ordinarySpaces(display).front();
        placeOn(window, space, anyFrame(space));
        desktop.activateSpace(space);
        std::erase_if(display.spaces, [&](auto& each) { return each.id == old; });
    }
    void changeDisplays()
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
    }
    void lieAbout(FakeWindow& window)
    {
        auto& faults = window.faults;
        auto kind = below(5);
        if (kind < 4 && !mayHide({&window}))
            return;
        switch (kind) {
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
            window.isInSpaceLists = false;
        }
        auto longest = faults.wrongAttributes.empty() ? kLongestLie : kLongestMisjudgement;
        soon(longest, [this, id = window.id] {
            if (auto* still = desktop.model().window(id)) {
                still->faults = {};
                still->isInSpaceLists = true;
            }
        });
    }
    void lieAbout(ProcessID pid)
    {
        auto& faults = desktop.application(pid).faults;
        auto kind = below(3);
        if (kind == 0 && !mayHide(desktop.model().windowsOf(pid)))
            return;
        switch (kind) {
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
            if (auto* application = desktop.model().application(pid)) {
                bool isHung = application->faults.isHung;
                application->faults = {.isHung = isHung};
            }
        });
    }

    /// What happens to what was chosen, if there is such a one.
    template <typename Choice, typename Happening>
    std::function<bool()> to(Choice (ChurnOperations::*choose)(), Happening happen)
    {
        return [=, this] {
            auto chosen = (this->*choose)();
            if (chosen)
                happen(*chosen);
            return bool(chosen);
        };
    }

    /// What happens, and how often.
    using Self = ChurnOperations;
    const std::vector<std::pair<double, std::function<bool()>>> operations{
        {3, [this] { return launch(); }},
        {8, to(&Self::anyProcess, [this](auto pid) { desktop.activate(pid); })},
        {0.7, to(&Self::anyApplication, [this](auto pid) { end(pid, false); })},
        {0.7, to(&Self::anyProcess, [this](auto pid) { end(pid, true); })},
        {1.5, to(&Self::anyApplication, [this](auto pid) { hang(pid); })},
        {2, to(&Self::anyApplication, [this](auto pid) { lieAbout(pid); })},
        {14, [this] { return open(); }},
        {9, to(&Self::anyWindow, [this](auto& it) { desktop.close(it.id); })},
        {8, to(&Self::anyWindow, [this](auto& it) { retitle(it); })},
        {8, to(&Self::anyFreeWindow, [this](auto& it) { move(it); })},
        {8, to(&Self::anyFreeWindow, [this](auto& it) { resize(it); })},
        {6, to(&Self::anyFreeWindow, [this](auto& it) { desktop.minimise(it.id); })},
        {6, to(&Self::anyWindow, [this](auto& it) { desktop.restore(it.id); })},
        {6, to(&Self::anyShownWindow, [this](auto& it) { desktop.focus(it.id); })},
        {4, to(&Self::anyFreeWindowOfAll, [this](auto& it) { changeSpace(it); })},
        {2, to(&Self::anyShownWindow, [this](auto& it) { toggleFullScreen(it); })},
        {3, to(&Self::anyWindow, [this](auto& it) { lieAbout(it); })},
        {3, [this] { return switchSpace(), true; }},
        {1, [this] { return desktop.wake(), true; }},
        {1, [this] { return changeDisplays(), true; }},
    };

    bool playOne()
    {
        std::vector<double> weights;
        for (auto& [weight, operation] : operations)
            weights.push_back(weight);
        auto choice = std::discrete_distribution<std::size_t>(weights.begin(), weights.end());
        return operations[choice(random)].second();
    }
    void play(int count)
    {
        while (count > 0) {
            if (playOne())
                --count;
            if (oneIn(2))
                desktop.advance(seconds(upTo(oneIn(20) ? longestPause : 0.4)));
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
        runtime->userSettings().setHidesBar(oneIn(2));
        settle();
        desktop.accessibility().forgetMessages();
        desktop.windowServer().forgetListings();
    }
};

}
