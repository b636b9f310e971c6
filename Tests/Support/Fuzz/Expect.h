#pragma once

#include <cstdint>
#include <cstdlib>

/// Ends the fuzzer with the input that is at fault.
inline void expect(bool holds)
{
    if (!holds)
        std::abort();
}
