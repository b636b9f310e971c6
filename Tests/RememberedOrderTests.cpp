#include "Quorvel/Core/RememberedOrderCoding.h"

#include <gtest/gtest.h>

namespace quorvel::test {

// Faults: a file that grows with each session, space, window or title; a text that is cut within a
// character.
TEST(RememberedOrderCoding, isBounded)
{
    RememberedSpace large;
    large.windows.resize(2 * OrderLimits::windows,
        {.application = std::string(1000, '"'),
            .role = std::string(1000, '\\'),
            .title = std::string(1000, '\x80')});
    RememberedOrder huge{.session = "huge", .spaces = {large, large}};
    huge.spaces.resize(2 * OrderLimits::spaces);
    std::vector<RememberedOrder> all;
    for (std::size_t i = 0; i < 2 * OrderLimits::sessions; ++i)
        all.push_back({.session = "session " + std::to_string(i), .spaces = {}});
    const auto bytes = withOrder(encodeOrders(all), huge);
    EXPECT_EQ(decodeOrders(encodeOrders(all))->size(), OrderLimits::sessions);
    EXPECT_LE(bytes.size(), OrderLimits::fileBytes);
    const auto kept = decodeOrders(bytes);
    ASSERT_TRUE(kept);
    EXPECT_EQ(kept->front().session, "huge");
    EXPECT_EQ(kept->front().spaces.size(), OrderLimits::spaces);
    EXPECT_GT(kept->front().spaces.front().windows.size(), 100U);

    const std::string text(OrderLimits::textBytes - 1, 'x');
    EXPECT_EQ(rememberedText("\n\x1b" + text + "ä"), text);
}

}
