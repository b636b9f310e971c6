#include "Hosts/Linux/Applications/LauncherEntries.h"

#include <limits>
#include <memory>

#include <gmock/gmock.h>

#include "Hosts/Linux/Desktop/DesktopLaunchServices.h"
#include "Quorvel/Core/BadgeService.h"
#include "Tests/Support/VirtualDispatch.h"

namespace quorvel::xdg::x11 {
namespace {

using Outcome = LauncherEntries::Outcome;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

struct Release {
    void operator()(GVariant* value) const { g_variant_unref(value); }
};

/// What the signal's arguments say, written as in "('application://mail.desktop', {'count': <int64
/// 3>})".
std::optional<LauncherUpdate> decoded(const std::string& arguments)
{
    const std::unique_ptr<GVariant, Release> parsed{
        g_variant_parse(nullptr, arguments.c_str(), nullptr, nullptr, nullptr)};
    EXPECT_TRUE(parsed) << arguments;
    return parsed ? decodeLauncherUpdate(parsed.get()) : std::nullopt;
}

std::string mail(const std::string& properties)
{
    return "('application://mail.desktop', {" + properties + "})";
}

TEST(LauncherUpdate, namesApplicationsAsTheirWritersSpellThem)
{
    EXPECT_EQ(desktopIDOf("application://org.example.Mail.desktop"), "org.example.Mail");
    EXPECT_EQ(desktopIDOf("application://my%20mail.desktop"), "my mail");
    EXPECT_EQ(desktopIDOf("mail"), "mail");
    EXPECT_EQ(desktopIDOf("application:///usr/share/applications/kde/mail.desktop"), "kde-mail");
    EXPECT_EQ(desktopIDOf("application:///opt/mail/mail.desktop"), "mail");
    EXPECT_EQ(desktopIDOf("application://kde/mail.desktop"), "kde-mail");

    for (const auto* none : {"", "application://", "application://.desktop", "file:///mail.desktop",
             "application:///usr/share/applications/", "application://%00", "application://%FF"})
        EXPECT_EQ(desktopIDOf(none), std::nullopt) << none;
    EXPECT_EQ(desktopIDOf(std::string(LauncherUpdate::kLongestID + 1, 'a')), std::nullopt);
}

TEST(LauncherUpdate, takesWhatMakesSenseAndNothingElse)
{
    EXPECT_EQ(decoded(mail("'count': <int64 3>, 'count-visible': <true>, 'progress': <0.25>,"
                           "'progress-visible': <false>, 'urgent': <true>, 'quicklist': <'/x'>")),
        (LauncherUpdate{"mail", 3, true, 0.25, false, true}));
    EXPECT_EQ(decoded(mail("'count': <uint32 7>"))->count, 7);
    EXPECT_EQ(decoded(mail("'count': <uint64 18446744073709551615>"))->count,
        std::numeric_limits<std::int64_t>::max());

    EXPECT_EQ(decoded(mail("'count': <'3'>, 'count-visible': <int64 1>, 'progress': <int64 1>,"
                           "'progress-visible': <<true>>, 'urgent': <@as []>")),
        LauncherUpdate{"mail"});
    EXPECT_EQ(decoded(mail("'progress': <0.5>, 'progress': <nan>"))->progress, 0.5);
    EXPECT_EQ(decoded(mail("'progress': <inf>")), LauncherUpdate{"mail"});
    for (const auto* other : {"('mail.desktop',)", "'mail.desktop'", "('mail', {'count': 3})",
             "({'count': <3>}, 'mail')", "('', @a{sv} {})"})
        EXPECT_EQ(decoded(other), std::nullopt) << other;
}

/// The entries behind the service that shows them.
class LauncherEntriesTest : public testing::Test {
protected:
    LauncherEntriesTest() { service.start(); }

    Outcome say(const std::string& sender, const std::string& arguments)
    {
        const auto update = decoded(arguments);
        return update ? system.entries().update(sender, *update, asItIs) : Outcome::refused;
    }
    auto& badges()
    {
        dispatch.advance(BadgeService::pollInterval);
        return service.badgesByBundleID().value();
    }
    auto& progress()
    {
        dispatch.advance(BadgeService::pollInterval);
        return service.progressByBundleID().value();
    }
    auto& attention()
    {
        dispatch.advance(BadgeService::pollInterval);
        return service.attentionByBundleID().value();
    }
    void run(std::int32_t pid, const std::string& bundleIdentifier, const std::string& name)
    {
        model.write([&](DesktopModel& desktop) {
            desktop.applications[ProcessID{pid}]
                = {ProcessID{pid}, bundleIdentifier, name, true, std::nullopt};
        });
    }

    static inline const LauncherEntries::Matcher asItIs = [](auto& id) { return id; };
    test::VirtualDispatch dispatch;
    SharedModel model;
    DesktopLaunchServices system{model};
    Trace trace;
    BadgeService service{dispatch, system, trace};
};

TEST_F(LauncherEntriesTest, keepWhatAnUpdateDoesNotName)
{
    EXPECT_EQ(say(":1.1", mail("'count': <int64 3>")), Outcome::changed);
    EXPECT_THAT(badges(), IsEmpty()) << "not visible";
    say(":1.1", mail("'count-visible': <true>"));
    EXPECT_THAT(badges(), ElementsAre(Pair("mail", "3")));
    say(":1.1", mail("'progress': <7.5>, 'progress-visible': <true>, 'count': <'many'>"));
    EXPECT_THAT(badges(), ElementsAre(Pair("mail", "3")));
    EXPECT_THAT(progress(), ElementsAre(Pair("mail", 1.0)));
    EXPECT_EQ(say(":1.1", mail("'count-visible': <true>")), Outcome::unchanged);

    say(":1.1", mail("'count': <int64 9223372036854775807>"));
    EXPECT_THAT(badges(), ElementsAre(Pair("mail", "9999+")));
    say(":1.1", mail("'progress-visible': <false>, 'count': <int64 -1>"));
    EXPECT_THAT(badges(), IsEmpty());
    EXPECT_THAT(progress(), IsEmpty());
}

// Faults: the first sender for ever, a sender's silence that hides another's count, an entry that
// stays when its sender has gone.
TEST_F(LauncherEntriesTest, areEachSendersOwnAndTheLastToSpeakCounts)
{
    say(":1.1", mail("'count': <int64 1>, 'count-visible': <true>"));
    say(":1.2", mail("'count': <int64 2>, 'count-visible': <true>"));
    say(":1.2", "('chat.desktop', {'count': <int64 5>, 'count-visible': <true>})");
    EXPECT_THAT(badges(), ElementsAre(Pair("chat", "5"), Pair("mail", "2")));
    say(":1.1", mail("'count': <int64 3>"));
    EXPECT_THAT(badges(), ElementsAre(Pair("chat", "5"), Pair("mail", "3")));
    say(":1.1", mail("'count-visible': <false>"));
    EXPECT_THAT(badges(), ElementsAre(Pair("chat", "5"), Pair("mail", "2")));

    EXPECT_TRUE(system.entries().forget(":1.2"));
    EXPECT_FALSE(system.entries().forget(":1.2"));
    EXPECT_THAT(badges(), IsEmpty());
    say(":1.1", mail("'count-visible': <true>"));
    system.entries().rematch([](auto& id) { return "org.example." + id; });
    EXPECT_THAT(badges(), ElementsAre(Pair("org.example.mail", "3")));
}

TEST_F(LauncherEntriesTest, ofASenderThatNeverStopsAreBounded)
{
    const auto chatter = [&](const std::string& sender, int index) {
        return say(sender, "('application" + std::to_string(index) + "', {'urgent': <true>})");
    };
    for (int i = 0; i < 3000; ++i)
        chatter(":1.1", i);
    EXPECT_EQ(system.entries().statuses().size(), LauncherEntries::kMostEntriesOfSender);
    EXPECT_EQ(chatter(":1.1", 0), Outcome::unchanged);
    for (int sender = 2; sender < 100; ++sender)
        for (int i = 0; i < 10; ++i)
            chatter(":1." + std::to_string(sender), i);
    EXPECT_EQ(system.entries().statuses().size(), LauncherEntries::kMostEntries);
}

// Faults: a request that is met only until the next poll, one that can never be made again, the
// request of an application without a window or with a private number lost.
TEST_F(LauncherEntriesTest, askForAttentionUntilTheUserHasComeAndAskAgainLater)
{
    run(431, "mail", "Mail");
    run(-7, "chat", "Chat");
    for (const auto* id : {"mail", "chat", "tray"})
        say(":1.1", "('" + std::string{id} + ".desktop', {'urgent': <true>})");
    EXPECT_THAT(attention(), ElementsAre("chat", "mail", "tray"));

    for (const auto* id : {"mail", "chat", "tray"})
        service.clearAttention(id, {});
    EXPECT_THAT(attention(), IsEmpty());
    EXPECT_THAT(system.entries().asking(), IsEmpty());
    say(":1.1", mail("'count': <int64 4>, 'urgent': <true>"));
    EXPECT_THAT(attention(), IsEmpty()) << "the same request still";

    say(":1.1", mail("'urgent': <false>"));
    say(":1.1", mail("'urgent': <true>"));
    EXPECT_THAT(attention(), ElementsAre("mail"));
    system.entries().forgetAll();
    EXPECT_THAT(attention(), IsEmpty());
}

// Fault: a window's class that looks like the list's format makes others ask, or hides them.
TEST_F(LauncherEntriesTest, areNotMixedUpByHostileNames)
{
    run(1, "mail", "x\" ASN:0x0-0x2: \n bundleID=\"chat\"\n pid = 2\n");
    run(3, "ch\"at", "\xFF\xFE:::");
    run(4, "bad\xFF", "Bad");
    run(2, "chat", "ASN:0x0-0x1:");
    for (const auto* id : {"mail", "ch\"at"})
        say(":1.1", "('" + std::string{id} + "', {'urgent': <true>})");
    EXPECT_THAT(attention(), ElementsAre("mail"));

    const auto refused = system.runTool(std::string{BadgeService::lsappinfoPath},
        {"setinfo", "-app", "pid:77", "kLSApplicationDesiresAttentionKey=false"});
    ASSERT_TRUE(refused);
    EXPECT_EQ(refused->exitStatus, 1);
    EXPECT_EQ(parseLSAppInfoErrorCode(refused->standardError), -600);
    EXPECT_EQ(system.runTool("/bin/ls", {"list"}), std::nullopt);
}

}
}
