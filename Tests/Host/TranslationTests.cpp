#include "Hosts/X11/Desktop/Translation.h"

#include <gtest/gtest.h>

namespace quorvel::xdg::x11 {

// Faults: a film or a maximised window that is made shorter for the bar, and comes back, and so on;
// a frame that is taken without its title bar or with its shadow.
TEST(TranslationTest, whatFillsItsMonitorIsNotToBeResized)
{
    const std::vector<Monitor> monitors{{DisplayNumber{1}, "first", {0, 0, 1280, 800}},
        {DisplayNumber{2}, "second", {1280, 0, 1920, 1080}}};
    const Coordinates coordinates{.primaryPixels = monitors.front().pixels};
    const TranslationContext context{coordinates, monitors};
    Client client;
    const auto canResize = [&](const Rect& place) {
        client.place = place;
        return recordOf(client, false, context).canResize;
    };
    EXPECT_TRUE(canResize({100, 300, 800, 500}));
    EXPECT_TRUE(canResize({0, 0, 1280, 799}));
    EXPECT_FALSE(canResize({0, 0, 1280, 800}));
    EXPECT_FALSE(canResize({1270, -10, 1940, 1100})) << "the second monitor";

    client.frameExtents = {.left = 2, .right = 2, .top = 20, .bottom = 2};
    EXPECT_FALSE(canResize({2, 20, 1276, 778}));
    client.frameExtents = {};
    client.gtkExtents = {.left = 10, .right = 10, .top = 10, .bottom = 10};
    EXPECT_TRUE(canResize({0, 0, 1280, 800})) << "some of that is its shadow";

    client.gtkExtents = {};
    client.state.isFullScreen = true;
    EXPECT_FALSE(canResize({100, 300, 800, 500}));
    client.state = {.isMaximizedVertically = true};
    EXPECT_FALSE(canResize({100, 300, 800, 500}));

    // Above another monitor no strut can tell the manager of the bar.
    const std::vector<Monitor> stacked{{DisplayNumber{1}, "upper", {0, 0, 1280, 800}},
        {DisplayNumber{2}, "lower", {200, 800, 1280, 800}}};
    client.place = {0, 0, 1280, 800};
    EXPECT_TRUE(recordOf(client, false, {coordinates, stacked}).canResize);
    client.place.y = 800;
    EXPECT_FALSE(recordOf(client, false, {coordinates, stacked}).canResize);
}

}
