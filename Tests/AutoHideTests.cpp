#include "Quorvel/Core/AutoHide.h"

#include <gtest/gtest.h>

#include "Tests/Support/VirtualDispatch.h"

namespace quorvel::test {

namespace {

constexpr Duration kMoment = seconds(0.01);

struct AutoHideTest : testing::Test {
    VirtualDispatch dispatch;
    int changes = 0;
    AutoHide hiding{dispatch.main(), [this] { ++changes; }};

    void send()
    {
        hiding.setOverlapped(true);
        dispatch.advance(AutoHide::kGoesAfter);
        ASSERT_TRUE(hiding.isOut());
    }
    /// Whether it stays in for so long and no longer.
    bool staysInFor(Duration length)
    {
        dispatch.advance(length - kMoment);
        bool wasIn = !hiding.isOut();
        dispatch.advance(kMoment);
        return wasIn && hiding.isOut();
    }
};

}

// Faults: a bar that jumps out at a window that only passes by, or goes from under the hand; one
// that waits after its room is free; a timer that goes on for nothing.
TEST_F(AutoHideTest, makesRoomWhileAWindowNeedsItAndNobodyUsesTheBar)
{
    hiding.setOverlapped(true);
    dispatch.advance(AutoHide::kGoesAfter - kMoment);
    hiding.setOverlapped(false);
    dispatch.advance(seconds(10));
    EXPECT_EQ(changes, 0);

    hiding.setOverlapped(true);
    EXPECT_TRUE(staysInFor(AutoHide::kGoesAfter));
    hiding.setOverlapped(false);
    EXPECT_FALSE(hiding.isOut()) << "at once";

    hiding.setInUse(true);
    hiding.setOverlapped(true);
    dispatch.advance(seconds(10));
    EXPECT_FALSE(hiding.isOut());
    hiding.setInUse(false);
    dispatch.advance(AutoHide::kGoesAfter - kMoment);
    hiding.setInUse(true); // the hand came back
    hiding.setInUse(false);
    EXPECT_TRUE(staysInFor(AutoHide::kGoesAfter));
    hiding.setInUse(true);
    EXPECT_FALSE(hiding.isOut()) << "what is used is there";
    EXPECT_EQ(dispatch.pendingTimers(), 0u);
}

// Faults: a bar that comes at every crossing of the edge, or not at all; that goes again before the
// pointer has reached it, or stays although the pointer never did.
TEST_F(AutoHideTest, comesWhenThePointerRestsAtTheEdge)
{
    hiding.edgeTouched(EdgeContact::came);
    EXPECT_EQ(dispatch.pendingTimers(), 0u) << "it is there";
    send();
    hiding.edgeTouched(EdgeContact::came);
    dispatch.advance(AutoHide::kRestsFor - kMoment);
    hiding.edgeTouched(EdgeContact::left);
    dispatch.advance(seconds(10));
    EXPECT_TRUE(hiding.isOut());

    hiding.edgeTouched(EdgeContact::came);
    dispatch.advance(AutoHide::kRestsFor);
    EXPECT_FALSE(hiding.isOut());
    EXPECT_TRUE(staysInFor(AutoHide::kStaysForEdge + AutoHide::kGoesAfter));

    hiding.edgeTouched(EdgeContact::pressed);
    EXPECT_TRUE(hiding.isOut()) << "not inside the call";
    dispatch.drain();
    EXPECT_FALSE(hiding.isOut());
    hiding.setInUse(true);
    dispatch.advance(seconds(10));
    EXPECT_FALSE(hiding.isOut());
    hiding.setInUse(false);
    EXPECT_TRUE(staysInFor(AutoHide::kGoesAfter));
}

// Faults: a request that shows for ever, that hides a bar which is in use, or that outlives its
// answer.
TEST_F(AutoHideTest, comesForAWhileWhenSomethingAsksForAttention)
{
    hiding.attentionBegan();
    EXPECT_EQ(dispatch.pendingTimers(), 0u) << "it is there";
    send();
    hiding.attentionBegan();
    EXPECT_FALSE(hiding.isOut());
    EXPECT_TRUE(staysInFor(AutoHide::kStaysForAttention + AutoHide::kGoesAfter));

    hiding.attentionBegan();
    dispatch.advance(kMoment);
    hiding.attentionEnded();
    EXPECT_TRUE(staysInFor(AutoHide::kGoesAfter));

    hiding.attentionBegan();
    hiding.setInUse(true);
    dispatch.advance(seconds(10));
    EXPECT_FALSE(hiding.isOut());
}

// Faults: a key that does nothing one time of two; a bar that is sent away from under a menu; a
// wish that outlives what it was for.
TEST_F(AutoHideTest, goesAndComesWhenTheUserSaysSo)
{
    hiding.toggle();
    EXPECT_TRUE(hiding.isOut()) << "at once, though nothing needs its room";
    hiding.edgeTouched(EdgeContact::came);
    dispatch.advance(AutoHide::kRestsFor);
    EXPECT_FALSE(hiding.isOut());
    EXPECT_TRUE(staysInFor(AutoHide::kStaysForEdge + AutoHide::kGoesAfter)) << "the wish holds";
    hiding.toggle();
    EXPECT_FALSE(hiding.isOut());
    hiding.toggle();
    hiding.setOverlapped(true);
    hiding.setOverlapped(false);
    EXPECT_FALSE(hiding.isOut()) << "the room was needed and is free";

    send();
    hiding.toggle();
    dispatch.advance(seconds(10));
    EXPECT_FALSE(hiding.isOut()) << "though a window lies there";
    hiding.setInUse(true);
    hiding.setInUse(false);
    EXPECT_TRUE(staysInFor(AutoHide::kGoesAfter)) << "it has been used";

    hiding.attentionBegan();
    hiding.toggle();
    EXPECT_TRUE(hiding.isOut());

    hiding.setOverlapped(false);
    hiding.setInUse(true);
    hiding.toggle();
    dispatch.advance(seconds(10));
    EXPECT_FALSE(hiding.isOut());
    hiding.setInUse(false);
    EXPECT_TRUE(staysInFor(AutoHide::kGoesAfter));
    EXPECT_EQ(dispatch.pendingTimers(), 0u);
}

// Faults: a wish that outlives the windows it was about, or is lost with them; one of the shown
// desktop's own that the windows' return undoes.
TEST_F(AutoHideTest, comesToTheShownDesktopThoughTheUserHadSentItAway)
{
    auto isOutAfter = [this](bool isShowing) {
        hiding.setShowingDesktop(isShowing);
        dispatch.advance(seconds(10));
        return hiding.isOut();
    };
    hiding.toggle();
    EXPECT_FALSE(isOutAfter(true));
    hiding.setInUse(true);
    hiding.setInUse(false);
    EXPECT_TRUE(isOutAfter(false));

    EXPECT_FALSE(isOutAfter(true));
    hiding.toggle();
    EXPECT_TRUE(hiding.isOut());
    hiding.toggle();
    EXPECT_FALSE(isOutAfter(false));
    EXPECT_FALSE(isOutAfter(true));
    EXPECT_FALSE(isOutAfter(false)) << "it never was away";
}

}
