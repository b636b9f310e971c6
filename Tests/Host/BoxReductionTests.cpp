#include "Hosts/X11/Capture/BoxReduction.h"

#include <numeric>

#include <gtest/gtest.h>

namespace quorvel::xdg::x11 {

// Sizes that do not divide: each pixel of the source has to count once, in all four channels.
TEST(BoxReduction, everyPixelCountsInOnePixelOfTheResult)
{
    constexpr BoxReduction::Measures source{7, 5};
    std::vector<std::uint32_t> result(2 * 3 + 1, 0xDEADBEEF);
    BoxReduction reduction{source,
        {{2, 3}, reinterpret_cast<std::uint8_t*>(result.data()), 2 * sizeof(std::uint32_t)}};

    for (std::uint32_t y = 0; y < 5; ++y) {
        EXPECT_FALSE(reduction.isComplete());
        std::vector<std::uint32_t> row(7);
        for (std::uint32_t x = 0; x < 7; ++x)
            row[x] = (y * 7 + x) * 0x01000001 + 0x00FF0000;
        reduction.addRow(row);
    }
    reduction.addRow(std::vector<std::uint32_t>(7, 0)); // one too many

    EXPECT_TRUE(reduction.isComplete());
    // Columns 0-2 and 3-6; rows 0, 1-2 and 3-4.
    const auto pixel = [](std::uint32_t value) { return value * 0x01000001 + 0x00FF0000; };
    EXPECT_EQ(result,
        (std::vector<std::uint32_t>{
            pixel(1), pixel(5), pixel(12), pixel(15), pixel(26), pixel(29), 0xDEADBEEF}));
}

}
