#include "Quorvel/Skylight/Minimal.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace quorvel::test {

namespace {

CGWindowInfo ordinary()
{
    return {.windowNumber = WindowID{1},
        .ownerPID = ProcessID{1},
        .layer = 0,
        .bounds = Rect{0, 0, 400, 300},
        .alpha = 1.0F,
        .ownerName = "App",
        .windowName = {}};
}

}

TEST(WindowFilter, numbersThatAreNoneAreNotLargeEnough)
{
    auto info = ordinary();
    info.bounds->width = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(windowFilter(info), WindowFilter::boundsTooSmall);
    info = ordinary();
    info.alpha = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(windowFilter(info), WindowFilter::fullyTransparent);
    info.alpha = -1.0F;
    EXPECT_EQ(windowFilter(info), WindowFilter::fullyTransparent);
}

TEST(SanitizeLogField, keepsAForeignTextOnItsLine)
{
    EXPECT_EQ(sanitizeLogField(std::nullopt), "<empty>");
    EXPECT_EQ(sanitizeLogField(""), "<empty>");
    EXPECT_EQ(sanitizeLogField("a b = \"c\" \xC3\xA9"), "a b = \"c\" \xC3\xA9");
    auto clean = sanitizeLogField("one\ntwo\rthree\tfour");
    EXPECT_EQ(clean.find_first_of("\n\r\t"), std::string::npos);
    EXPECT_NE(clean.find("one"), std::string::npos);
    EXPECT_NE(clean.find("four"), std::string::npos);
}

}
