#include "Quorvel/Platform/Published.h"

#include <algorithm>
#include <string>

#include <gtest/gtest.h>

namespace quorvel::test {

TEST(Signal, subscribersMayLeaveJoinAndEmitInsideTheCall)
{
    Signal<int> signal;
    std::vector<std::string> calls;
    Subscription second;
    Subscription late;
    auto first = signal.subscribe([&](int value) {
        calls.push_back("first " + std::to_string(value));
        if (value != 1)
            return;
        second = {};
        late = signal.subscribe(
            [&](int inner) { calls.push_back("late " + std::to_string(inner)); });
        signal.emit(2);
    });
    second = signal.subscribe([&](int) { calls.emplace_back("second"); });

    signal.emit(1);

    EXPECT_EQ(calls, (std::vector<std::string>{"first 1", "first 2", "late 2"}));
}

TEST(Signal, aSubscriberMayDropItselfWhileItRuns)
{
    Signal<> signal;
    int calls = 0;
    auto payload = std::make_shared<int>(7);
    Subscription own;
    own = signal.subscribe([&own, &calls, payload] {
        own = {};
        calls += *payload; // must still be alive here
    });
    payload.reset();

    signal.emit();
    signal.emit();

    EXPECT_EQ(calls, 7);
}

TEST(Published, aValueSetInsideTheCallIsWhatLaterSubscribersSee)
{
    Published<int> value{0};
    std::vector<int> seen;
    auto clamp = value.subscribe([&](int now) { value.set(std::min(now, 10)); });
    auto watch = value.subscribe([&](int now) { seen.push_back(now); });

    value.set(50);

    EXPECT_EQ(value.value(), 10);
    EXPECT_EQ(seen.back(), 10);
    EXPECT_EQ(std::ranges::count(seen, 50), 0) << "a value that no longer holds was told";
}

}
