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
#include "Tests/Support/VirtualDispatch.h"

namespace quorvel::xdg::x11 {
namespace {

using namespace std::literals;

/// An application with an entry at the launcher.
class Sender {
public:
    explicit Sender(const test::PrivateBus& bus) : m_connection(bus.connect()) { }

    void say(const char* arguments)
    {
        g_dbus_connection_emit_signal(m_connection.get(), nullptr, "/com/example/Sender",
            "com.canonical.Unity.LauncherEntry", "Update", g_variant_new_parsed(arguments),
            nullptr);
        g_dbus_connection_flush_sync(m_connection.get(), nullptr, nullptr);
    }
    /// What the bus answers to a question about the name that applications look for.
    std::string ask(const char* member)
    {
        auto* answer = g_dbus_connection_call_sync(m_connection.get(), "org.freedesktop.DBus",
            "/org/freedesktop/DBus", "org.freedesktop.DBus", member,
            g_variant_new("(s)", "com.canonical.Unity"), nullptr, G_DBUS_CALL_FLAGS_NONE, -1,
            nullptr, nullptr);
        if (!answer)
            return {};
        char* text = g_variant_print(answer, false);
        std::string result{text};
        g_free(text);
        g_variant_unref(answer);
        return result;
    }
    bool takeName()
    {
        auto* answer = g_dbus_connection_call_sync(m_connection.get(), "org.freedesktop.DBus",
            "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
            g_variant_new("(su)", "com.canonical.Unity", 1u), nullptr, G_DBUS_CALL_FLAGS_NONE, -1,
            nullptr, nullptr);
        if (answer)
            g_variant_unref(answer);
        return ownsName();
    }
    bool ownsName()
    {
        return ask("GetNameOwner")
            == "('"s + g_dbus_connection_get_unique_name(m_connection.get()) + "',)";
    }

private:
    GObjectHandle<GDBusConnection> m_connection;
};

class LauncherBusTest : public testing::Test {
protected:
    /// Returns once the bus listens: it asks for the name after that.
    void listen(Sender& witness)
    {
        bus.emplace(entries, installed, [] {});
        ASSERT_TRUE(eventually([&] { return witness.ask("NameHasOwner") == "(true,)"; }));
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
    std::optional<Sender> owner{daemon};
    Sender other{daemon};
    ASSERT_TRUE(owner->takeName());
    listen(other);
    // Nothing tells when the bus listens: the name has an owner already.
    ASSERT_TRUE(eventually([&] {
        other.say("('mail', {'urgent': <true>})");
        return entries.asking().contains("mail");
    }));
    EXPECT_TRUE(owner->ownsName());

    owner.reset();
    EXPECT_TRUE(
        eventually([&] { return other.ask("NameHasOwner") == "(true,)" && !other.ownsName(); }));
    bus.reset();
    EXPECT_TRUE(eventually([&] { return other.ask("NameHasOwner") == "(false,)"; }));
}

// Fault: whoever starts or ends waits for the answer of a bus that does not answer.
TEST_F(LauncherBusTest, isNotHeldUpByABusThatHangs)
{
    Sender sender{daemon};
    listen(sender);
    sender.say("('mail', {'urgent': <true>})");
    ASSERT_TRUE(eventually([&] { return entries.asking().contains("mail"); }));
    daemon.stop();

    const auto start = std::chrono::steady_clock::now();
    bus.reset();
    bus.emplace(entries, installed, [] {});
    while (g_main_context_iteration(nullptr, false)) { }
    bus.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - start, 20s) << "GIO waits for 25";
}

// Faults: a bus that was started anew is never joined, or only to hear nothing; what the senders of
// the old one said is kept.
TEST_F(LauncherBusTest, joinsABusThatIsStartedAgain)
{
    for (int round = 0; round < 2; ++round) {
        std::optional<Sender> sender{daemon};
        if (round == 0)
            listen(*sender);
        ASSERT_TRUE(eventually([&] { return sender->ask("NameHasOwner") == "(true,)"; }));
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
    Sender sender{daemon};
    EXPECT_TRUE(eventually([&] { return sender.ask("NameHasOwner") == "(true,)"; }));
}

}
}
