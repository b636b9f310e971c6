#include <algorithm>

#include "Tests/X11/Support/DesktopFixture.h"

namespace quorvel::x11tests {

class ChipClicks : public UnderEachManager {
protected:
    testing::AssertionResult becomesActive(xcb_window_t window)
    {
        return eventually(
            1s, [&] { return desktop.activeWindow() == window && !desktop.isHidden(window); });
    }
};

// Faults: chips drawn elsewhere than they are hit, a click that takes the focus to the bar, a click
// on a lit chip that activates again instead of minimising, one that closes the neighbour.
TEST_P(ChipClicks, activateMinimiseRestoreAndClose)
{
    Terminal first(server, desktop, "first");
    Terminal second(server, desktop, "second");
    Bar bar(server);
    ASSERT_TRUE(bar.appears());
    desktop.activate(second.window());
    ASSERT_TRUE(becomesActive(second.window()));
    ASSERT_TRUE(bar.agreesWith(desktop, 1s));

    clickChip(bar, first.window());
    ASSERT_TRUE(becomesActive(first.window()));
    ASSERT_TRUE(bar.agreesWith(desktop, 1s));

    clickChip(bar, first.window());
    ASSERT_TRUE(eventually(1s, [&] { return desktop.isHidden(first.window()); }));
    ASSERT_TRUE(bar.agreesWith(desktop, 1s));

    clickChip(bar, first.window());
    ASSERT_TRUE(becomesActive(first.window()));
    ASSERT_TRUE(bar.agreesWith(desktop, 1s));

    clickChip(bar, first.window(), Button::middle);
    ASSERT_TRUE(eventually(2s, [&] { return !first.isRunning(); }));
    EXPECT_TRUE(second.isRunning());
    EXPECT_TRUE(bar.agreesWith(desktop, 1s));
}

// Fault: a quick series of clicks is answered with the state before the first of them.
TEST_P(ChipClicks, inQuickSuccessionEndOnTheLastChip)
{
    std::vector<std::unique_ptr<Terminal>> terminals;
    for (const auto* title : {"one", "two", "three", "four"})
        terminals.push_back(std::make_unique<Terminal>(server, desktop, title));
    Bar bar(server);
    ASSERT_TRUE(bar.appears());
    ASSERT_TRUE(bar.agreesWith(desktop, 2s));

    const auto state = bar.state();
    for (const auto& terminal : terminals) {
        const auto* const chip = state ? state->chipOf(terminal->window()) : nullptr;
        ASSERT_TRUE(chip);
        pointer.click(chip->frame);
        if (terminal == terminals.front())
            pointer.click(chip->frame);
    }
    pointer.moveTo(5, 5);

    EXPECT_TRUE(becomesActive(terminals.back()->window()));
    EXPECT_TRUE(bar.agreesWith(desktop, 3s));
}

QUORVEL_UNDER_EACH_MANAGER(ChipClicks);

}
