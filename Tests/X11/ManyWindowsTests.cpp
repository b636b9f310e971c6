#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>

#include "Tests/X11/Support/DesktopFixture.h"

namespace quorvel::x11tests {

namespace {

constexpr int kWindowsOfARound = 25;

/// Memory that a process has for itself, in KiB.
long memoryOf(pid_t pid)
{
    std::ifstream file("/proc/" + std::to_string(pid) + "/smaps_rollup");
    std::string word;
    while (file >> word) {
        long size = 0;
        if (word == "Private_Dirty:" && file >> size)
            return size;
    }
    return 0;
}

}

class ManyWindows : public BarUnderEachManager {
protected:
    /// Windows are opened, shown, and gone again, one by one or with their process.
    void openAndClose(int round)
    {
        ClientProcess application(server, [round](Client& client, char order) {
            for (int i = 0; order == 'o' && i < kWindowsOfARound; ++i)
                client.open({.title = std::to_string(round) + '.' + std::to_string(i)});
            while (order == 'd' && !client.windows().empty())
                client.destroy(client.windows().back());
        });
        application.order('o');
        ASSERT_TRUE(application.finish());
        ASSERT_TRUE(settles(bar));
        if (round % 2 == 0)
            application.order('d');
        ASSERT_TRUE(round % 2 != 0 || application.finish());
    }

    void openAndCloseAll(int rounds)
    {
        for (int round = 0; round < rounds && !HasFailure(); ++round)
            openAndClose(round);
        ASSERT_TRUE(settles(bar));
    }
};

// Faults: something kept of each window or process that there was, here or in the server.
TEST_P(ManyWindows, leaveNothingBehind)
{
    const bool isFull = std::getenv("QUORVEL_TEST_FULL") != nullptr;
    const int rounds = isFull ? 400 : 20;
    openAndClose(0);
    ASSERT_TRUE(settles(bar));
    const auto resources = desktop.resourcesOf(bar.process().pid());
    ASSERT_GT(resources, 0u);

    openAndCloseAll(rounds / 2);
    const auto half = memoryOf(bar.process().pid());
    openAndCloseAll(rounds / 2);
    const auto whole = memoryOf(bar.process().pid());

    std::cout << rounds * kWindowsOfARound << " windows: " << half << " KiB, then " << whole
              << std::endl;
    EXPECT_TRUE(eventually([&] { return desktop.resourcesOf(bar.process().pid()) <= resources; }));
    // Sanitizers keep what was freed.
    if (isFull && !kIsSanitized) {
        EXPECT_LE(whole, half + 512);
    }
}

// Fault: the server is not asked for the events of a window whose number another one had.
TEST_P(ManyWindows, mayShareTheirNumberOneAfterAnother)
{
    Client client{server};
    const auto number = client.open({.title = "first"});
    ASSERT_TRUE(settles(bar));
    client.unmap(number);
    ASSERT_TRUE(eventually([&] { return desktop.taskbarClients().empty(); }));
    ASSERT_TRUE(settles(bar));
    client.destroy(number);

    client.open({.title = "second", .number = number});
    ASSERT_TRUE(settles(bar));
    client.setTitle(number, "second and retitled");
    EXPECT_TRUE(settles(bar));
    client.resize(number, 500, 300);
    EXPECT_TRUE(settles(bar));
}

QUORVEL_UNDER_EACH_MANAGER(ManyWindows);

}
