#include "Tests/Support/VirtualDispatch.h"

#include <gtest/gtest.h>

namespace quorvel::test {

namespace {

struct VirtualDispatchTest : testing::Test {
    VirtualDispatch dispatch;
    std::vector<std::string> log;
    Work note(std::string text)
    {
        return [this, text = std::move(text)] { log.push_back(text); };
    }
};

}

TEST_F(VirtualDispatchTest, timersFireOneByOneInDueOrderAndTiesInTheOrderOfScheduling)
{
    Instant seen{};
    auto late = dispatch.main().after(seconds(0.3), note("late"));
    auto tieA = dispatch.main().after(seconds(0.2), note("tie a"));
    auto tieB = dispatch.background().after(seconds(0.2), note("tie b"));
    auto early = dispatch.main().after(seconds(0.1), [&] {
        seen = dispatch.now();
        dispatch.main().async(note("from early"));
    });

    dispatch.advance(seconds(0.3) - Duration{1});
    EXPECT_EQ(log, (std::vector<std::string>{"from early", "tie a", "tie b"}));
    dispatch.advance(Duration{1});

    EXPECT_EQ(log.back(), "late");
    EXPECT_EQ(seen, VirtualDispatch::kStart + seconds(0.1));
    EXPECT_EQ(dispatch.pendingTimers(), 0u);
}

TEST_F(VirtualDispatchTest, droppedAndReplacedItemsVanishWithWhatTheyHold)
{
    auto payload = std::make_shared<int>();
    std::weak_ptr<int> alive = payload;
    auto item = dispatch.main().after(seconds(1), [payload = std::move(payload)] {});
    EXPECT_TRUE(item.isPending());
    EXPECT_EQ(dispatch.pendingTimers(), 1u);

    item = dispatch.main().after(seconds(1), note("second"));
    EXPECT_TRUE(alive.expired());
    EXPECT_EQ(dispatch.pendingTimers(), 1u);
    item.cancel();
    dispatch.advance(seconds(2));

    EXPECT_FALSE(item.isPending());
    EXPECT_TRUE(log.empty());
}

TEST_F(VirtualDispatchTest, workMayReplaceItsOwnItemWhileItRuns)
{
    WorkItem item;
    auto payload = std::make_shared<std::string>("still here");
    item = dispatch.main().after(seconds(1), [&, payload] {
        EXPECT_FALSE(item.isPending());
        item = dispatch.main().after(seconds(1), note("next"));
        log.push_back(*payload);
    });

    dispatch.advance(seconds(2));

    EXPECT_EQ(log, (std::vector<std::string>{"still here", "next"}));
}

TEST_F(VirtualDispatchTest, repeatingWorkStartsAtOnceAndLeavesOutRunsThatFellBehind)
{
    std::vector<Duration> runs;
    auto item = dispatch.main().every(seconds(0.1), [&] {
        runs.push_back(dispatch.now() - VirtualDispatch::kStart);
        if (runs.size() == 2)
            dispatch.spend(seconds(0.25));
    });

    dispatch.advance(seconds(0.5));

    EXPECT_EQ(runs, (std::vector{seconds(0), seconds(0.1), seconds(0.4), seconds(0.5)}));
    item = {};
    dispatch.advance(seconds(1));
    EXPECT_EQ(runs.size(), 4u);
}

TEST_F(VirtualDispatchTest, aBlockingCallLetsNothingElseRunMeanwhile)
{
    auto slow = dispatch.main().after(seconds(0.1), [&] {
        auto other = dispatch.now();
        dispatch.spend(seconds(0.5));
        EXPECT_EQ(dispatch.now() - other, seconds(0.5));
        log.push_back("slow");
    });
    auto quick = dispatch.main().after(seconds(0.2), note("quick"));

    dispatch.advance(seconds(0.1));

    EXPECT_EQ(log, (std::vector<std::string>{"slow", "quick"}));
    EXPECT_EQ(dispatch.now(), VirtualDispatch::kStart + seconds(0.6));
}

TEST_F(VirtualDispatchTest, syncRunsTheQueuesEarlierWorkFirstAndLeavesOtherQueuesAlone)
{
    auto queue = dispatch.makeSerialQueue("resize", QualityOfService::utility);
    dispatch.main().async(note("main"));
    queue->async(note("a"));
    queue->async([&] { queue->async(note("c")); });
    auto delayed = queue->after(seconds(1), note("delayed"));

    queue->sync([&] {
        EXPECT_EQ(dispatch.currentLabel(), "resize");
        log.push_back("sync");
    });

    EXPECT_EQ(log, (std::vector<std::string>{"a", "c", "sync"}));
}

TEST_F(VirtualDispatchTest, aQueueOrThreadThatGoesTakesItsWorkAlong)
{
    auto queue = dispatch.makeSerialQueue("badges", QualityOfService::utility);
    auto thread = dispatch.startThread("observer", QualityOfService::userInitiated);
    queue->async(note("queue"));
    auto delayed = queue->after(seconds(1), note("delayed"));
    thread->perform(note("thread"));

    queue.reset();
    thread.reset();
    dispatch.advance(seconds(2));

    EXPECT_TRUE(log.empty());
    EXPECT_FALSE(delayed.isPending());
}

using VirtualDispatchDeathTest = VirtualDispatchTest;

TEST_F(VirtualDispatchDeathTest, whatWouldHangARealProgramEndsTheTest)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(dispatch.main().sync([] {}), "deadlock");
    auto queue = dispatch.makeSerialQueue("own", QualityOfService::utility);
    queue->async([&] { queue->sync([] {}); });
    EXPECT_DEATH(dispatch.drain(), "deadlock on \"own\"");
}

}
