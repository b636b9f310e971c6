#pragma once

#include <benchmark/benchmark.h>

namespace quorvel::test {

/// 10 to 10,000 of whatever the time depends on, which it should grow with, no faster.
inline void sizes(benchmark::internal::Benchmark* family)
{
    family->RangeMultiplier(10)
        ->Range(10, 10'000)
        ->Unit(benchmark::kMicrosecond)
        ->Complexity(benchmark::oN);
}

}
