// Days of the whole program on a desktop in memory where everything happens at random, within
// minutes. Whenever it has settled, the bar must show what there is; every now and then all
// applications end, and then the program must hold no more memory than it did before.
//
// usage: quorvel_soak [HOURS [SEED [LONGEST PAUSE, in seconds]]]
//
// Prints a line of CSV for each of those times. Exits 1 at the first wrong state, and if the memory
// has grown.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Tests/Support/ChurnRound.h"

namespace quorvel::test {

namespace {

constexpr int kOperationsBetweenRests = 50;
constexpr Duration kBetweenSamples = seconds(1800);
/// Longer than any place is kept for a window that may come back.
constexpr Duration kForgotten = seconds(900);
/// What is bounded, but full only after a while: remembered spaces, above all.
constexpr double kWarmUp = 1.0 / 3;
constexpr std::size_t kMostGrowth = 16 * 1024;

std::size_t liveBytes()
{
    auto heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

struct Soak final : ChurnRound {
    using ChurnRound::ChurnRound;

    // MARK: Somebody at the bar

    /// Null while the bar of the current space is not seen, or has not been drawn yet.
    FakePanel* shownBar()
    {
        desktop.drain();
        auto* surface = desktop.surfaces().panel(current());
        return surface && surface->isVisible() && bar(current()).content() ? surface : nullptr;
    }
    void useBar()
    {
        if (auto* surface = shownBar()) {
            auto chips = content(current()).chipFrames();
            std::erase_if(chips, [](auto& chip) { return chip.second.width <= 0; });
            if (!chips.empty())
                useChip(*surface, any(chips)->second.centre(), any(chips)->second.centre());
        }
        if (auto* surface = oneIn(10) ? shownBar() : nullptr)
            useLauncher(*surface);
        if (auto* surface = oneIn(10) ? shownBar() : nullptr)
            surface->scroll(surface->bounds().centre(), oneIn(2) ? 1 : -1);
        desktop.drain();
    }
    void useChip(FakePanel& surface, Point at, Point to)
    {
        surface.movePointer(at);
        desktop.advance(seconds(upTo(1)));
        switch (below(4)) {
        case 0:
            surface.click(at);
            break;
        case 1:
            surface.click(at, PointerButton::secondary);
            desktop.advance(seconds(0.2));
            desktop.surfaces().closeMenu();
            break;
        case 2:
            surface.press(at);
            surface.movePointer({(at.x + to.x) / 2, at.y});
            surface.movePointer(to);
            surface.release(to);
            break;
        default:
            break;
        }
        desktop.advance(seconds(0.1));
        if (std::ranges::count(desktop.surfaces().panels(), &surface) > 0)
            surface.leave();
    }
    void useLauncher(FakePanel& surface)
    {
        surface.click(content(current()).menuButtonFrame().centre());
        desktop.advance(seconds(0.3));
        if (auto* launcher = desktop.surfaces().launcher()) {
            launcher->type("app");
            desktop.advance(seconds(0.3));
            launcher->pressKey(KeyCode::escape);
            launcher->pressKey(KeyCode::escape);
        }
        desktop.advance(seconds(0.3));
        surface.leave();
    }

    // MARK: The desktop

    void moveWindowsTo(SpaceID space, std::function<bool(const FakeWindow&)> isMoved)
    {
        for (auto& [id, window] : desktop.model().windows) {
            if (isMoved(*window))
                placeOn(*window, space, anyFrame(space));
        }
    }
    /// As the Mac does when the window of such a space closes.
    void removeEmptySpaces()
    {
        auto displays = desktop.model().displays;
        for (auto& display : displays) {
            std::erase_if(display.spaces, [&](auto& space) {
                return space.type == 4
                    && std::ranges::none_of(desktop.model().windows,
                        [&](auto& entry) { return entry.second->spaces.contains(space.id); });
            });
            if (std::ranges::find(display.spaces, display.current, &FakeSpace::id)
                == display.spaces.end())
                display.current = ordinarySpaces(display).front();
        }
        desktop.setDisplays(displays);
    }
    /// One that never comes back, and another.
    void exchangeSpace()
    {
        auto displays = desktop.model().displays;
        auto& first = displays.front();
        auto old = ordinarySpaces(first).back();
        auto home = ordinarySpaces(first).front();
        if (first.current == old)
            return;
        std::ranges::find(first.spaces, old, &FakeSpace::id)->id = SpaceID{nextSpace++};
        desktop.setDisplays(displays);
        moveWindowsTo(home, [&](auto& window) { return window.spaces.contains(old); });
    }

    // MARK: Times of rest

    void liveOn()
    {
        for (int played = 0; played < kOperationsBetweenRests; played += 10) {
            play(10);
            useBar();
        }
        removeEmptySpaces();
        if (oneIn(4))
            exchangeSpace();
        rest();
        // The desktop does not forget by itself.
        desktop.model().ghosts.clear();
        for (auto* surface : desktop.surfaces().panels()) {
            surface->forgetPaints();
            surface->forgetFrames();
        }
        auto expected = truth();
        expectWindows(expected);
        expectFocus(expected);
        expectBars(expected);
        expectNothingLeftBehind();
    }
    void emptyDesktop()
    {
        while (!desktop.model().applications.empty())
            end(desktop.model().applications.begin()->first, false);
        auto first = desktop.model().displays.front();
        first.current = ordinarySpaces(first).front();
        desktop.setDisplays({first});
        removeEmptySpaces();
        runtime->userSettings().setGroupWindowsByApp(false);
        desktop.advance(kForgotten);
        rest();
        // A bar is made when its space is first shown: now all of them are.
        for (auto space : ordinarySpaces(first)) {
            desktop.activateSpace(space);
            settle();
        }
        expectNothingLeftBehind();
        ended.clear();
    }
    /// What is given back when the program ends, which it does in a copy of this process.
    std::size_t heldBytes()
    {
        int ends[2];
        std::size_t bytes = 0;
        if (pipe(ends) != 0)
            return ADD_FAILURE() << "no pipe", bytes;
        if (auto child = fork(); child > 0) {
            close(ends[1]);
            if (read(ends[0], &bytes, sizeof bytes) != sizeof bytes)
                ADD_FAILURE() << "the copy does not answer";
            waitpid(child, nullptr, 0);
            close(ends[0]);
            return bytes;
        }
        bytes = liveBytes();
        runtime.reset();
        bytes -= liveBytes();
        _exit(write(ends[1], &bytes, sizeof bytes) == sizeof bytes ? 0 : 1);
    }
    double hours()
    {
        Duration lived = desktop.dispatch().now() - VirtualDispatch::kStart;
        return std::chrono::duration<double, std::ratio<3600>>(lived).count();
    }
};

int soak(double hours, std::uint32_t seed, double longestPause)
{
    Soak soak{seed};
    soak.longestPause = longestPause;
    std::vector<std::size_t> samples;
    std::printf("hours,rests,bytes\n");
    for (int rests = 0; soak.hours() < hours;) {
        auto next = soak.desktop.dispatch().now() + kBetweenSamples;
        while (soak.desktop.dispatch().now() < next && !testing::Test::HasFailure()) {
            soak.liveOn();
            ++rests;
        }
        if (!testing::Test::HasFailure()) {
            soak.emptyDesktop();
            samples.push_back(soak.heldBytes());
        }
        if (testing::Test::HasFailure()) {
            std::fprintf(stderr, "wrong after %.2f hours, seed %u\n", soak.hours(), seed);
            return 1;
        }
        std::printf("%.2f,%d,%zu\n", soak.hours(), rests, samples.back());
        std::fflush(stdout);
    }
    auto warm = samples.begin() + std::lround(double(samples.size()) * kWarmUp);
    auto middle = warm + (samples.end() - warm) / 2;
    if (warm == middle)
        return 0;
    auto before = *std::max_element(warm, middle);
    auto after = *std::max_element(middle, samples.end());
    std::fprintf(stderr, "at most %zu bytes in the first half, %zu in the second\n", before, after);
    return after > before + kMostGrowth ? 1 : 0;
}

}

}

int main(int count, char** arguments)
{
    // Freed memory that each thread keeps would count as used.
    if (!std::getenv("GLIBC_TUNABLES")) {
        setenv("GLIBC_TUNABLES", "glibc.malloc.tcache_count=0", 1);
        execv("/proc/self/exe", arguments);
    }
    testing::InitGoogleTest(&count, arguments);
    auto number = [&](int at, double otherwise) {
        return count > at ? std::strtod(arguments[at], nullptr) : otherwise;
    };
    return quorvel::test::soak(
        number(1, 24), static_cast<std::uint32_t>(number(2, 1)), number(3, 0.4));
}
