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
    ASSERT_TRUE(becomesActive(*first));
    ASSERT_TRUE(settles(bar));

    const auto opened = other.open({.title = "opened"});
    ASSERT_TRUE(settles(bar));
    // Out of sight until the row hears that the pointer has left it.
    Frame chip;
    ASSERT_TRUE(eventually([&] { return (chip = bar.state().chipFrame(opened)).width > 0; }));
    const auto before = desktop.picture(chip);
    other.setTitle(opened, "retitled");
    EXPECT_TRUE(eventually([&] { return desktop.picture(chip) != before; }));
    EXPECT_TRUE(settles(bar));
    other.destroy(opened);
    EXPECT_TRUE(settles(bar));
    clickChip(bar, witness);
    EXPECT_TRUE(becomesActive(witness));
    EXPECT_TRUE(desktop.isOnTaskbar(*second));

    stopped.resume();
    EXPECT_TRUE(eventually([&] { return !desktop.clientTitled("asked to close"); }));
    EXPECT_TRUE(settles(bar));
}

QUORVEL_UNDER_EACH_MANAGER(StoppedClients);

}
