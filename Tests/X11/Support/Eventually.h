#pragma once

#include <chrono>
#include <thread>

#include <gtest/gtest.h>

namespace quorvel::x11tests {

using namespace std::chrono_literals;

/// Sanitizers slow the bar down; the deadlines are for the program as users run it.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr int kSlowness = 4;
#else
inline constexpr int kSlowness = 1;
#endif

/// Asks until the condition (a bool or an assertion result) holds or the deadline has passed, and
/// gives the last answer.
template <typename Condition>
testing::AssertionResult eventually(std::chrono::milliseconds deadline, Condition condition)
{
    const auto end = std::chrono::steady_clock::now() + deadline * kSlowness;
    for (;;) {
        const auto answer = testing::AssertionResult(condition());
        if (answer || std::chrono::steady_clock::now() >= end)
            return answer;
        std::this_thread::sleep_for(10ms);
    }
}

}
