#include <map>
#include <optional>
#include <string>

#include <unistd.h>

#include "Tests/X11/Support/DesktopFixture.h"

namespace quorvel::x11tests {

namespace {

constexpr std::uint32_t kNoProcess = 0x3FFFFFFF;
const std::string kOtherMachine = "elsewhere.example";

std::string thisMachine()
{
    std::string name(256, '\0');
    gethostname(name.data(), name.size() - 1);
    return name.substr(0, name.find('\0'));
}

}

class ProcessIdentity : public BarUnderEachManager {
protected:
    /// The bar's windows by their titles, once it agrees with the server.
    std::map<std::string, State::Window> windows()
    {
        EXPECT_TRUE(settles(bar));
        std::map<std::string, State::Window> byTitle;
        for (const auto& window : bar.state().windows)
            byTitle[window.title] = window;
        return byTitle;
    }
    testing::AssertionResult areLeft(const std::vector<std::string>& titles)
    {
        return eventually([&] {
            std::vector<std::string> all;
            for (const auto& [title, window] : windows())
                all.push_back(title);
            return testing::AssertionResult(all == titles) << testing::PrintToString(all);
        });
    }
};

using Titles = std::vector<std::string>;

// Faults: what a client says of itself counts for more than what the server knows; the windows of a
// process go with another that they named.
TEST_P(ProcessIdentity, isTheServersAndNotTheClaimedOne)
{
    ClientProcess neighbour(server, "neighbour", 1);
    ASSERT_TRUE(neighbour.finish());
    ClientProcess liar(server, [other = neighbour.pid()](Client& client, char) {
        client.open({.title = "silent"});
        client.open({.title = "of none", .pid = kNoProcess});
        client.open({.title = "of another", .pid = static_cast<std::uint32_t>(other)});
        client.open({.title = "of elsewhere", .pid = 1, .machine = kOtherMachine});
    });
    liar.order('o');
    ASSERT_TRUE(liar.finish());

    auto all = windows();
    for (const auto* title : {"silent", "of none", "of another", "of elsewhere"})
        EXPECT_EQ(all[title].pid, liar.pid()) << title;
    EXPECT_EQ(all["neighbour 0"].pid, neighbour.pid());

    neighbour.kill();
    EXPECT_TRUE(areLeft(Titles{"of another", "of elsewhere", "of none", "silent"}));
    liar.kill();
    EXPECT_TRUE(areLeft(Titles{}));
}

// Faults: the applications of one process mixed up; a window that changes its class counted twice
// or left where it was; an application gone with the first window of the process.
TEST_P(ProcessIdentity, isOnePerApplicationOfAProcess)
{
    ClientProcess process(server, [](Client& client, char order) {
        if (order == 'o') {
            client.open({.title = "a", .applicationClass = "Alpha"});
            client.open({.title = "b", .applicationClass = "Beta"});
            client.open({.title = "c", .applicationClass = "Beta"});
        } else if (order == 'c') {
            client.setClass(client.windows().back(), "Gamma");
        } else {
            client.destroy(client.windows().front());
        }
    });
    process.order('o');
    ASSERT_TRUE(process.finish());
    auto before = windows();
    EXPECT_EQ(before["a"].pid, process.pid());
    EXPECT_EQ(before["a"].bundle, "alpha");
    EXPECT_LT(before["b"].pid, 0);
    EXPECT_EQ(before["b"].bundle, "beta");
    EXPECT_EQ(before["b"].app, "Beta");
    EXPECT_EQ(before["c"].pid, before["b"].pid);

    process.order('c');
    ASSERT_TRUE(process.finish());
    auto after = windows();
    EXPECT_EQ(after["c"].id, before["c"].id);
    EXPECT_EQ(after["c"].bundle, "gamma");
    EXPECT_EQ(after["c"].app, "Gamma");
    EXPECT_EQ(after["b"].pid, before["b"].pid);

    process.order('d');
    ASSERT_TRUE(process.finish());
    EXPECT_TRUE(areLeft(Titles{"b", "c"}));
    process.kill();
    EXPECT_TRUE(areLeft(Titles{}));
}

// Faults: a process of another machine taken for one of this, a claim not believed where the server
// knows nothing, windows that end with a process that was only claimed.
TEST_P(ProcessIdentity, ofClientsFromTheNetworkIsTheirClaimForThisMachine)
{
    ClientProcess claimed(server, "claimed", 1);
    ASSERT_TRUE(claimed.finish());
    const auto pid = static_cast<std::uint32_t>(claimed.pid());
    std::optional<Client> far(server.networkDisplay());
    far->open({.title = "far 0", .pid = pid, .machine = kOtherMachine});
    far->open({.title = "far 1", .pid = pid, .machine = kOtherMachine});
    Client farther(server.networkDisplay());
    farther.open({.title = "farther", .pid = pid, .machine = kOtherMachine});
    Client forwarded(server.networkDisplay());
    forwarded.open({.title = "forwarded", .pid = pid, .machine = thisMachine()});
    forwarded.open({.title = "of none", .pid = kNoProcess, .machine = thisMachine()});
    ASSERT_TRUE(eventually([&] { return desktop.taskbarClients().size() == 6; }));

    auto all = windows();
    EXPECT_EQ(all["claimed 0"].pid, claimed.pid());
    EXPECT_EQ(all["forwarded"].pid, claimed.pid());
    EXPECT_LT(all["far 0"].pid, 0);
    EXPECT_EQ(all["far 1"].pid, all["far 0"].pid);
    EXPECT_LT(all["farther"].pid, 0);
    EXPECT_NE(all["farther"].pid, all["far 0"].pid);

    far.reset();
    EXPECT_TRUE(areLeft(Titles{"claimed 0", "farther", "forwarded", "of none"}));
    claimed.kill();
    const auto isPrivate = [&](const std::string& title) { return windows()[title].pid < 0; };
    EXPECT_TRUE(eventually([&] { return isPrivate("forwarded") && isPrivate("of none"); }));
    EXPECT_TRUE(areLeft(Titles{"farther", "forwarded", "of none"}));
}

QUORVEL_UNDER_EACH_MANAGER(ProcessIdentity);

}
