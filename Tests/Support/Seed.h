#pragma once

#include <cstdio>
#include <cstdlib>
#include <random>

namespace quorvel::test {

/// What the environment says, or the other where it says nothing.
inline unsigned numberFrom(const char* variable, unsigned otherwise)
{
    const char* const text = std::getenv(variable);
    return text ? static_cast<unsigned>(std::strtoul(text, nullptr, 10)) : otherwise;
}

/// Of a random test, in its output; QUORVEL_TEST_SEED repeats a run.
inline unsigned seed()
{
    const auto number = numberFrom("QUORVEL_TEST_SEED", std::random_device{}());
    std::printf("QUORVEL_TEST_SEED=%u\n", number);
    std::fflush(stdout);
    return number;
}

}
