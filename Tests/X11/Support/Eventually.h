#pragma once

#include <chrono>
#include <thread>

#include <gtest/gtest.h>

#include "Tests/Support/Sanitized.h"

namespace quorvel::x11tests {

using namespace std::chrono_literals;

using test::kIsSanitized;

/// Only what never comes is waited for as long: how fast the bar is, the benchmarks measure.
inline constexpr std::chrono::milliseconds kWatchdog = 60s;

/// Asks until the condition (a bool or an assertion result) holds or the watchdog barks, and gives
/// the last answer.
template <typename Condition> testing::AssertionResult eventually(Condition condition)
{
    const auto end = std::chrono::steady_clock::now() + kWatchdog;
    for (;;) {
        const auto answer = testing::AssertionResult(condition());
        if (answer || std::chrono::steady_clock::now() >= end)
            return answer;
        std::this_thread::sleep_for(10ms);
    }
}

/// Whether the condition holds for so long: a slow machine sees less of it, and no fault in it.
template <typename Condition> bool staysTrue(std::chrono::milliseconds span, Condition condition)
{
    const auto end = std::chrono::steady_clock::now() + span;
    while (std::chrono::steady_clock::now() < end) {
        if (!condition())
            return false;
        std::this_thread::sleep_for(10ms);
    }
    return true;
}

}
