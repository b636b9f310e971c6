#include "Quorvel/Core/MouseDisplayTracker.h"

#include <gtest/gtest.h>

#include "Tests/Support/FakeDesktop.h"

namespace quorvel::test {

namespace {

struct MouseDisplayTrackerTest : testing::Test {
    static constexpr DisplayNumber left{1};
    static constexpr DisplayNumber right{2};
    static constexpr Point onLeft{100, 100};
    static constexpr Point onRight{1600, 100};
    static constexpr Point onNone{1600, 5000};

    FakeDesktop desktop;
    MouseDisplayTracker tracker{desktop.dispatch(), desktop.displays()};

    MouseDisplayTrackerTest()
    {
        desktop.addDisplay(
            {.number = right, .identifier = "second", .frame = {1440, 0, 1440, 900}});
        desktop.model().pointer = onLeft;
    }

    void pointAt(Point point, double duration)
    {
        desktop.model().pointer = point;
        desktop.advance(seconds(duration));
    }
};

}

TEST_F(MouseDisplayTrackerTest, aVisitTooShortNeverBecomesTheSettledDisplay)
{
    tracker.start();
    pointAt(onLeft, 0.2);
    pointAt(onRight, 0.05);
    pointAt(onLeft, 0.02);
    tracker.stop();
    desktop.advance(seconds(0.2));
    EXPECT_EQ(tracker.preferredDisplayID(), left);
}

TEST_F(MouseDisplayTrackerTest, onceStoppedItAnswersWithTheSettledDisplay)
{
    tracker.start();
    pointAt(onLeft, 0.2);
    pointAt(onRight, 0.03);
    tracker.stop();
    EXPECT_EQ(tracker.preferredDisplayID(), right) << "the last sample is still fresh";
    desktop.advance(seconds(0.2));
    EXPECT_EQ(tracker.preferredDisplayID(), left) << "stopping dropped the pending switch";
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0U);
}

TEST_F(MouseDisplayTrackerTest, aPointerOnNoDisplayClearsBothAnswersInTurn)
{
    tracker.start();
    pointAt(onLeft, 0.2);
    pointAt(onNone, 0.04);
    EXPECT_EQ(tracker.preferredDisplayID(), left) << "the settled one";
    pointAt(onNone, 0.06);
    EXPECT_FALSE(tracker.preferredDisplayID());
}

}
