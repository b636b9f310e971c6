#include "Hosts/Linux/Applications/LauncherBus.h"

#include <chrono>
#include <optional>
#include <string>

#include <gio/gio.h>
#include <gtest/gtest.h>

#include "Hosts/Linux/Applications/DesktopEntries.h"
#include "Tests/Host/MainLoop.h"
#include "Tests/Host/fixtures/InstalledApplications.h"
#include "Tests/Host/fixtures/PrivateBus.h"
#include "Tests/Support/LauncherSender.h"
#include "Tests/Support/VirtualDispatch.h"

namespace quorvel::xdg::x11 {
namespace {

using namespace std::literals;

/// It asks the bus as well, about the name that applications look for.
struct Sender : test::LauncherSender {
    Sender() : LauncherSender(g_getenv("DBUS_SESSION_BUS_ADDRESS")) { }

    /// What the bus answers, as text.
    std::string call(const char* member, GVariant* arguments)
    {
        auto* answer = g_dbus_connection_call_sync(connection(), "org.freedesktop.DBus",
            "/org/freedesktop/DBus", "org.freedesktop.DBus", member, arguments, nullptr,
            G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
        if (!answer)
            return {};
        char* text = g_variant_print(answer, false);
        std::string result{text};
        g_free(text);
        g_variant_unref(answer);
        return result;
    }
    std::string hasOwner()
    {
        return call("NameHasOwner", g_variant_new("(s)", "com.canonical.Unity"));
    }
    bool isNameTaken() { return hasOwner() == "(true,)"; }
    bool isNameFree() { return hasOwner() == "(false,)"; }
    bool takeName()
    {
        call("RequestName", g_variant_new("(su)", "com.canonical.Unity", 1U));
        return ownsName();
    }
    bool ownsName()
    {
        return call("GetNameOwner", g_variant_new("(s)", "com.canonical.Unity"))
            == "('"s + g_dbus_connection_get_unique_name(connection()) + "',)";
    }
};

class LauncherBusTest : public testing::Test {
protected:
    /// Returns once the bus listens: it asks for the name after that.
    void listen(Sender& witness)
    {
        bus.emplace(entries, installed, [] { });
        ASSERT_TRUE(eventually([&] { return witness.isNameTaken(); }));
    }

    test::InstalledApplications applications;
    test::VirtualDispatch dispatch;
    test::PrivateBus daemon;
    DesktopEntries installed{dispatch};
    LauncherEntries entries;
    std::optional<LauncherBus> bus;
};

// Faults: the name taken from who has it, not given to who wants it, kept by a bar that is gone.
TEST_F(LauncherBusTest, hasTheNameThatApplicationsLookForIfNobodyElseHas)
{
    std::optional<Sender> owner{std::in_place};
    Sender other;
    ASSERT_TRUE(owner->takeName());
    listen(other);
    // Nothing tells when the bus listens: the name has an owner already.
    ASSERT_TRUE(eventually([&] {
        other.say("('mail', {'urgent': <true>})");
        return entries.asking().contains("mail");
    }));
    EXPECT_TRUE(owner->ownsName());

    owner.reset();
    EXPECT_TRUE(eventually([&] { return other.isNameTaken() && !other.ownsName(); }));
    bus.reset();
    EXPECT_TRUE(eventually([&] { return other.isNameFree(); }));
}

// Fault: whoever starts or ends waits for the answer of a bus that does not answer.
TEST_F(LauncherBusTest, isNotHeldUpByABusThatHangs)
{
    Sender sender;
    listen(sender);
    sender.say("('mail', {'urgent': <true>})");
    ASSERT_TRUE(eventually([&] { return entries.asking().contains("mail"); }));
    daemon.stop();

    const auto start = std::chrono::steady_clock::now();
    bus.reset();
    bus.emplace(entries, installed, [] { });
    while (g_main_context_iteration(nullptr, false)) { }
    bus.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - start, 20s) << "GIO waits for 25";
}

// Faults: a bus that was started anew is never joined, or only to hear nothing; what the senders of
// the old one said is kept.
TEST_F(LauncherBusTest, joinsABusThatIsStartedAgain)
{
    for (int round = 0; round < 2; ++round) {
        std::optional<Sender> sender{std::in_place};
        if (round == 0)
            listen(*sender);
        ASSERT_TRUE(eventually([&] { return sender->isNameTaken(); }));
        ASSERT_TRUE(eventually([&] {
            sender->say("('mail', {'urgent': <true>})");
            return entries.asking().contains("mail");
        })) << "after "
            << round;
        daemon.end();
        ASSERT_TRUE(eventually([&] { return entries.asking().empty(); }));
        sender.reset();
        daemon.start();
    }
    Sender sender;
    EXPECT_TRUE(eventually([&] { return sender.isNameTaken(); }));
}

}
}
