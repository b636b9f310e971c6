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

AXWindowMetadata window(std::optional<std::string> role, std::optional<std::string> subrole = {},
    std::optional<bool> isModal = {}, std::optional<bool> isMinimized = {})
{
    return {.title = "Title",
        .role = std::move(role),
        .subrole = std::move(subrole),
        .isModal = isModal,
        .isMinimized = isMinimized};
}

std::string reason(const CGWindowInfo& info)
{
    return rejectionReason(windowFilter(info), info);
}

}

TEST(WindowFilter, namesTheFirstRuleThatFailsAndTheOffendingValue)
{
    auto info = ordinary();
    info.alpha = 0.0F;
    EXPECT_EQ(reason(info), "fully-transparent alpha=0.000");
    info.bounds = Rect{0, 0, 39.999, 400};
    EXPECT_TRUE(reason(info).starts_with("bounds-too-small size=39.999")) << reason(info);
    EXPECT_NE(reason(info).find("400.000"), std::string::npos) << reason(info);
    info.layer = 3;
    EXPECT_EQ(reason(info), "layer-not-zero layer=3");
    EXPECT_EQ(windowFilter(ordinary()), WindowFilter::passed);
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

TEST(AXEligibility, theReasonFollowsTheSameOrder)
{
    EXPECT_EQ(axIneligibilityReason(window({}, "X", true)), "ax-role-not-window role=nil");
    EXPECT_EQ(
        axIneligibilityReason(window("AXSheet", {}, true)), "ax-role-not-window role=AXSheet");
    EXPECT_EQ(axIneligibilityReason(window("AXWindow", "X", true, true)), "ax-modal-window");
    EXPECT_EQ(axIneligibilityReason(window("AXWindow", "X", {}, true)), "ax-minimized-window");
    EXPECT_EQ(axIneligibilityReason(window("AXWindow")), "ax-not-dock-eligible");
    EXPECT_EQ(
        axIneligibilityReason(window("AXWindow", "AXStandardWindow")), "ax-not-dock-eligible");
    EXPECT_EQ(axIneligibilityReason(window("AXWindow", "AXDialog")),
        "ax-subrole-not-standard subrole=AXDialog");
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
