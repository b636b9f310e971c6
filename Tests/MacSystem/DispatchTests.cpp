// Only on a Mac: the system's own queues, on the main thread's run loop.

#include "Hosts/MacOS/System/MacDispatch.h"

#include <gmock/gmock.h>

namespace quorvel::test {

namespace {

using testing::ElementsAre;

constexpr CFTimeInterval kTick = 0.01;
constexpr CFAbsoluteTime kDeadline = 60;

struct MacDispatchTest : testing::Test {
    /// Lets the main queue run until the condition holds.
    template <typename Condition> static bool eventually(Condition holds)
    {
        const CFAbsoluteTime end = CFAbsoluteTimeGetCurrent() + kDeadline;
        while (!holds() && CFAbsoluteTimeGetCurrent() < end)
            CFRunLoopRunInMode(kCFRunLoopDefaultMode, kTick, /*returnAfterSourceHandled=*/true);
        return holds();
    }

    MacDispatch dispatch;
};

}

// Faults: work that is posted meanwhile comes before what was posted earlier; work that was
// cancelled on its own thread runs all the same; what it captured stays.
TEST_F(MacDispatchTest, theMainQueueKeepsItsOrderAndForgetsWhatIsCancelled)
{
    std::vector<int> order;
    dispatch.main().async([&] {
        order.push_back(1);
        dispatch.main().async([&] { order.push_back(3); });
    });
    dispatch.main().async([&] { order.push_back(2); });
    ASSERT_TRUE(eventually([&] { return order.size() == 3; }));
    EXPECT_THAT(order, ElementsAre(1, 2, 3));

    auto token = std::make_shared<int>();
    auto cancelled
        = dispatch.main().after(std::chrono::milliseconds{1}, [&, token] { order.push_back(4); });
    cancelled.cancel();
    bool isLater = false;
    const auto later
        = dispatch.main().after(std::chrono::milliseconds{20}, [&] { isLater = true; });
    ASSERT_TRUE(eventually([&] { return isLater && token.use_count() == 1; }));
    EXPECT_EQ(order.size(), 3U);
}

// Fault: a queue runs two things at once, or `sync` comes before what was posted.
TEST_F(MacDispatchTest, aSerialQueueWorksInOrderBesideTheMainThread)
{
    std::vector<int> order;
    auto queue = dispatch.makeSerialQueue("com.quorvel.test", QualityOfService::userInitiated);
    for (int number = 0; number < 100; ++number)
        queue->async([&order, number] { order.push_back(number); });
    queue->sync([&order] { order.push_back(100); });
    ASSERT_EQ(order.size(), 101U);
    EXPECT_TRUE(std::ranges::is_sorted(order));

    bool hasCome = false;
    queue->async([&] { dispatch.main().async([&] { hasCome = true; }); });
    EXPECT_TRUE(eventually([&] { return hasCome; }));
}

}
