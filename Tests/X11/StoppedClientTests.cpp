#include "Tests/X11/Support/DesktopFixture.h"

namespace quorvel::x11tests {

class StoppedClients : public UnderEachManager { };

// Faults: the bar, or what it asks of one application, waits for another that hangs.
TEST_P(StoppedClients, delayNobodyElse)
{
    ClientProcess stopped(server, [](Client& client, char) {
        for (const auto* title : {"stopped", "asked to close"})
            client.open({.title = title, .answersClose = true});
    });
    stopped.order('o');
    ASSERT_TRUE(stopped.finish());
    Client other{server};
    const auto witness = other.open({.title = "witness"});
    Bar bar(server);
    ASSERT_TRUE(bar.appears());
    ASSERT_TRUE(settles(bar));
    const auto first = desktop.clientTitled("stopped");
    const auto second = desktop.clientTitled("asked to close");
    ASSERT_TRUE(first && second);

    stopped.stop();
    clickChip(bar, *second, Button::middle);
    clickChip(bar, *first);
    ASSERT_TRUE(eventually([&] { return desktop.activeWindow() == *first; }));
    ASSERT_TRUE(settles(bar));

    const auto opened = other.open({.title = "opened"});
    ASSERT_TRUE(settles(bar));
    const auto state = bar.state();
    const auto* const chip = state ? state->chipOf(opened) : nullptr;
    ASSERT_TRUE(chip);
    const auto before = desktop.picture(chip->frame);
    other.setTitle(opened, "retitled");
    EXPECT_TRUE(eventually([&] { return desktop.picture(chip->frame) != before; }));
    EXPECT_TRUE(settles(bar));
    other.destroy(opened);
    EXPECT_TRUE(settles(bar));
    clickChip(bar, witness);
    EXPECT_TRUE(eventually([&] { return desktop.activeWindow() == witness; }));
    EXPECT_TRUE(desktop.isOnTaskbar(*second));

    stopped.resume();
    EXPECT_TRUE(eventually([&] { return !desktop.clientTitled("asked to close"); }));
    EXPECT_TRUE(settles(bar));
}

QUORVEL_UNDER_EACH_MANAGER(StoppedClients);

}
