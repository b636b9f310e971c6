#include "Hosts/Linux/Loop/GLibDispatch.h"

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include <glib.h>
#include <gtest/gtest.h>

#include "Hosts/Linux/Loop/WorkSchedule.h"
#include "Tests/Host/MainLoop.h"

namespace quorvel::xdg::x11 {

namespace {

using namespace std::chrono_literals;

class HostDispatch : public testing::Test {
protected:
    /// Everything that is ready, without waiting.
    void drain()
    {
        while (g_main_context_iteration(nullptr, false)) { }
    }

    GLibDispatch dispatch;
};

}

TEST_F(HostDispatch, mainQueueKeepsTheOrderAndLetsOtherSourcesInBetween)
{
    std::vector<int> order;
    dispatch.main().async([&] {
        order.push_back(1);
        dispatch.main().async([&] { order.push_back(3); });
    });
    dispatch.main().async([&] { order.push_back(2); });

    g_main_context_iteration(nullptr, false);
    EXPECT_EQ(order, (std::vector{1, 2})); // work posted meanwhile waits for the next turn
    drain();
    EXPECT_EQ(order, (std::vector{1, 2, 3}));
}

TEST_F(HostDispatch, cancelledWorkNeverRunsOnItsOwnThread)
{
    int runs = 0;
    auto token = std::make_shared<int>();
    WorkItem second;
    auto first = dispatch.main().after(0ms, [&] { second.cancel(); }); // both ready in one turn
    second = dispatch.main().after(0ms, [&runs, token] { ++runs; });
    WorkItem replaced = dispatch.main().after(0ms, [&] { ++runs; });
    replaced = dispatch.main().after(0ms, [] { });
    EXPECT_EQ(token.use_count(), 2);

    drain();
    EXPECT_EQ(runs, 0);
    EXPECT_EQ(token.use_count(), 1); // what it captured has gone with it

    WorkItem repeating;
    repeating = dispatch.main().every(1ms, [&] {
        EXPECT_TRUE(repeating.isPending());
        if (++runs == 3)
            repeating.cancel();
    });
    ASSERT_TRUE(eventually([&] { return runs == 3; }));
    EXPECT_FALSE(repeating.isPending());
    bool hasWaited = false;
    auto wait = dispatch.main().after(5ms, [&] { hasWaited = true; });
    ASSERT_TRUE(eventually([&] { return hasWaited; }));
    EXPECT_FALSE(wait.isPending());
    EXPECT_EQ(runs, 3);
}

TEST_F(HostDispatch, repetitionLeavesOutRunsThatFellBehind)
{
    const auto start = dispatch.now();
    std::vector<Instant> runs;
    auto item = dispatch.main().every(10ms, [&] {
        runs.push_back(dispatch.now());
        if (runs.size() == 1)
            std::this_thread::sleep_for(35ms);
    });

    ASSERT_TRUE(eventually([&] { return runs.size() >= 3; }));
    EXPECT_GE(runs[1] - start, Duration{40ms}); // the runs at 10, 20 and 30 ms are left out
    EXPECT_GE(runs[2] - start, Duration{50ms}); // and are not made up for at once
}

TEST_F(HostDispatch, postsFromManyThreadsAllArriveInEachThreadsOrder)
{
    constexpr int kThreads = 4;
    constexpr int kPosts = 5000;
    std::vector<int> last(kThreads, -1);
    int arrived = 0;
    int late = 0;
    bool isOrdered = true;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < kPosts; ++i) {
                dispatch.main().async([&, t, i] {
                    isOrdered = isOrdered && last[t] == i - 1;
                    last[t] = i;
                    ++arrived;
                });
                auto dropped = dispatch.main().after(1ms, [&] { ++late; });
                if (i % 3 == 0)
                    dispatch.main().after(0ms, [] { }).cancel();
            }
        });
    }

    EXPECT_TRUE(eventually([&] { return arrived == kThreads * kPosts; }));
    EXPECT_TRUE(isOrdered);
    for (auto& thread : threads)
        thread.join();
}

TEST_F(HostDispatch, aSleepingLoopWakesForWorkOfAnotherThread)
{
    for (int i = 0; i < 50; ++i) {
        bool hasRun = false;
        auto guard = g_timeout_add_seconds(
            60,
            [](gpointer) -> gboolean {
                ADD_FAILURE() << "the loop slept on";
                return true;
            },
            nullptr);
        std::thread poster{[&] { dispatch.main().async([&] { hasRun = true; }); }};
        while (!hasRun)
            g_main_context_iteration(nullptr, true);
        poster.join();
        g_source_remove(guard);
    }
}

TEST_F(HostDispatch, serialQueueIsOneThreadInOrderAndSyncWaits)
{
    auto queue = dispatch.makeSerialQueue("a rather long label", QualityOfService::utility);
    std::vector<int> order; // no lock: the queue alone touches it until sync has come back
    std::thread::id worker;
    for (int i = 0; i < 1000; ++i)
        queue->async([&order, i] { order.push_back(i); });
    queue->sync([&] { worker = std::this_thread::get_id(); });

    EXPECT_NE(worker, std::this_thread::get_id());
    ASSERT_EQ(order.size(), 1000u);
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));

    std::atomic<int> ticks = 0;
    auto item = queue->every(1ms, [&] { ++ticks; });
    while (ticks < 3)
        std::this_thread::yield();
    queue->sync([&] { item.cancel(); }); // on the queue's own thread: final
    int after = ticks;
    std::atomic<bool> laterRan = false;
    auto later = queue->after(3ms, [&] { laterRan = true; });
    while (!laterRan)
        std::this_thread::yield();
    EXPECT_EQ(ticks, after);
}

TEST_F(HostDispatch, aDyingQueueWaitsForItsWorkAndDropsTheRest)
{
    std::atomic<bool> isInside = false;
    std::atomic<bool> mayLeave = false;
    std::atomic<bool> hasLeft = false;
    std::atomic<bool> restRan = false;
    auto token = std::make_shared<int>();
    auto queue = dispatch.makeSerialQueue("dying", QualityOfService::userInitiated);
    queue->async([&] {
        isInside = true;
        while (!mayLeave)
            std::this_thread::yield();
        hasLeft = true;
    });
    while (!isInside)
        std::this_thread::yield();
    auto pending = queue->after(0ms, [&] { restRan = true; });
    queue->async([&, token] { restRan = true; });
    std::thread opener{[&] {
        while (pending.isPending()) // until the queue is dying
            std::this_thread::yield();
        mayLeave = true;
    }};

    queue.reset();
    EXPECT_TRUE(hasLeft);
    opener.join();
    EXPECT_FALSE(restRan);
    EXPECT_EQ(token.use_count(), 1); // whoever waits for dropped work learns of its end
    EXPECT_FALSE(pending.isPending());
    pending.cancel(); // a handle outlives its queue
}

TEST_F(HostDispatch, cancelRacesWithRunningWorkFromAnotherThread)
{
    auto queue = dispatch.makeSerialQueue("races", QualityOfService::utility);
    std::atomic<int> runs = 0;
    for (int i = 0; i < 3000; ++i) {
        auto item = queue->after(Duration{i % 7 * 1000}, [&] { ++runs; });
        if (i % 2)
            item.cancel();
        else
            item = queue->every(1us, [&] { ++runs; });
    }
    queue->sync([] { });
    int settled = runs;
    queue->sync([] { });
    EXPECT_EQ(runs, settled); // all were cancelled, so nothing goes on
}

// Fault: a poll that may come late wakes up the machine in between the timers of others.
TEST(WorkSchedule, whatMayComeLateComesAtAWholeSecond)
{
    auto schedule = std::make_shared<WorkSchedule>();
    int runs = 0;
    auto item = schedule->every(7s, 2s, [&] { ++runs; });
    auto begin = *schedule->nextDue();
    schedule->runTurn();
    EXPECT_EQ(runs, 1) << "the first at once";
    auto due = *schedule->nextDue();
    EXPECT_EQ(due.time_since_epoch() % 1s, 0s);
    EXPECT_GE(due, begin + 7s);
    item = schedule->every(7s, {}, [] { });
    begin = *schedule->nextDue();
    schedule->runTurn();
    EXPECT_EQ(*schedule->nextDue(), begin + 7s) << "to the point";
}

}
