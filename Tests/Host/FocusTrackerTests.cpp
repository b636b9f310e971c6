#include "Hosts/Linux/Desktop/FocusTracker.h"

#include <gtest/gtest.h>

namespace quorvel::xdg::x11 {

using namespace std::chrono_literals;

// Faults: the answer to the click before the last lights its chip once more; an activation that the
// manager refuses hides who has the focus.
TEST(FocusTrackerTest, newsOfAThirdWindowWaitsForTheAnswer)
{
    const WindowID first{1}, second{2}, third{3};
    FocusTracker focus;
    Instant now{};
    focus.update(first, now);
    focus.expect(second, now);
    focus.expect(third, now += 5ms);
    focus.update(second, now += 1ms);
    EXPECT_EQ(focus.window(), first);
    focus.update(third, now += 1ms);
    EXPECT_EQ(focus.window(), third);
    EXPECT_FALSE(focus.deadline());
    focus.update(second, now += 1ms);
    EXPECT_EQ(focus.window(), second) << "answered: what comes now is new";

    focus.expect(first, now);
    focus.update(third, now += 1ms);
    ASSERT_EQ(focus.deadline(), now - 1ms + FocusTracker::kAnswerSettles);
    focus.update(third, *focus.deadline());
    EXPECT_EQ(focus.window(), third);
    EXPECT_FALSE(focus.deadline());

    focus.expect(first, now);
    focus.expect(std::nullopt, now);
    focus.update(second, now);
    EXPECT_EQ(focus.window(), second) << "whoever follows a minimised window";
}

}
