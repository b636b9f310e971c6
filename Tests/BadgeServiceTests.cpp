#include "Quorvel/Core/BadgeService.h"

#include <algorithm>
#include <limits>

#include "Tests/Support/FakeDesktop.h"
#include "Tests/Support/Matchers.h"

namespace quorvel::test {

namespace {

struct BadgeServiceTest : testing::Test {
    using Runs = std::vector<FakeLaunchServices::Arguments>;

    FakeDesktop desktop;
    FakeLaunchServices& system = desktop.launchServices();
    std::optional<BadgeService> service;

    BadgeServiceTest()
    {
        system.setAvailable(true);
        service.emplace(desktop.dispatch(), system, desktop.trace());
        system.applications = {{"mail", {.name = "Mail", .serial = "0x0-0x1", .pid = 431}},
            {"chat", {.name = "Chat", .serial = "0x0-0x2", .pid = 432}}};
    }

    void start()
    {
        service->start();
        desktop.advance(BadgeService::firstPollDelay);
    }
    void nextPoll() { desktop.advance(BadgeService::pollInterval); }
    void setAsking(const std::string& bundleID, bool value)
    {
        system.applications.at(bundleID).wantsAttention = value;
    }
    void acknowledge(const std::string& bundleID, std::set<WindowID> windowsWithChip = {})
    {
        service->clearAttention(bundleID, std::move(windowsWithChip));
        desktop.drain();
    }
    std::set<std::string> attention() const { return service->attentionByBundleID().value(); }
    /// An application that keeps its request up whatever it is told.
    void ignoreWithdrawals() { system.answer("setinfo", ToolResult{}); }

    int polls()
    {
        return static_cast<int>(
            std::ranges::count(system.takeRuns(), FakeLaunchServices::Arguments{"list"}));
    }
};

const FakeLaunchServices::Arguments kList{"list"};

FakeLaunchServices::Arguments withdrawal(const std::string& application)
{
    return {"setinfo", "-app", application, "kLSApplicationDesiresAttentionKey=false"};
}

}

TEST_F(BadgeServiceTest, pollsOnceAfterHalfASecondAndThenEverySevenHoweverOftenItIsStarted)
{
    service->start();
    service->start();
    desktop.advance(seconds(0.4));
    EXPECT_EQ(polls(), 0);
    desktop.advance(seconds(0.2));
    service->start();
    EXPECT_EQ(polls(), 1);
    desktop.advance(seconds(6.8));
    EXPECT_EQ(polls(), 0);
    desktop.advance(seconds(14));
    EXPECT_EQ(polls(), 2);

    system.setAvailable(false);
    BadgeService idle{desktop.dispatch(), system, desktop.trace()};
    service.reset();
    idle.start();
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0U) << "neither the dead one nor the idle one";
}

TEST_F(BadgeServiceTest, publishesWhatHasChangedAndOnlyThen)
{
    system.statuses = {{"mail", "2", std::nullopt}, {"chat", "", 1.5}, {std::nullopt, "9", 0.5},
        {"mail", "3", -1}, {"sync", std::nullopt, std::numeric_limits<double>::quiet_NaN()}};
    setAsking("chat", true);
    int changes = 0;
    auto count = [&](const auto&) { ++changes; };
    auto badges = service->badgesByBundleID().subscribe(count);
    auto progress = service->progressByBundleID().subscribe(count);
    auto asking = service->attentionByBundleID().subscribe(count);
    auto windows = service->attentionWindows().subscribe(count);

    start();
    EXPECT_THAT(service->badgesByBundleID().value(), ElementsAre(Pair("mail", "3")));
    EXPECT_THAT(
        service->progressByBundleID().value(), ElementsAre(Pair("chat", 1), Pair("mail", 0)));
    EXPECT_THAT(attention(), ElementsAre("chat"));
    EXPECT_EQ(changes, 3);
    nextPoll();
    EXPECT_EQ(changes, 3);

    system.statuses.clear();
    nextPoll();
    EXPECT_THAT(service->badgesByBundleID().value(), IsEmpty());
    EXPECT_EQ(changes, 5);
}

TEST_F(BadgeServiceTest, anAcknowledgedRequestShowsAgainOnlyWhenItWasGoneMeanwhile)
{
    ignoreWithdrawals();
    setAsking("mail", true);
    setAsking("chat", true);
    start();

    acknowledge("mail");
    EXPECT_THAT(attention(), ElementsAre("chat")) << "at once";
    nextPoll();
    nextPoll();
    EXPECT_THAT(attention(), ElementsAre("chat"));

    setAsking("mail", false);
    nextPoll();
    acknowledge("mail"); // while it does not ask: a new acknowledgement, not seen gone yet
    setAsking("mail", true);
    nextPoll();
    EXPECT_THAT(attention(), ElementsAre("chat"));

    setAsking("mail", false);
    nextPoll();
    setAsking("mail", true);
    nextPoll();
    EXPECT_THAT(attention(), ElementsAre("chat", "mail"));
    nextPoll();
    EXPECT_THAT(attention(), ElementsAre("chat", "mail")) << "the acknowledgement is used up";
}

TEST_F(BadgeServiceTest, aRequestIsWithdrawnByProcessAndByNameOnlyIfThatFails)
{
    acknowledge("absent");
    EXPECT_EQ(system.takeRuns(), Runs{kList});

    setAsking("mail", true);
    acknowledge("mail");
    EXPECT_EQ(system.takeRuns(), (Runs{kList, withdrawal("pid:431")}));
    EXPECT_FALSE(system.applications.at("mail").wantsAttention);

    const Runs both{kList, withdrawal("pid:431"), withdrawal("mail")};
    for (auto& failure : {ToolResult{1, "", ""}, ToolResult{0, "", "err=-600"}}) {
        system.answer("setinfo", failure);
        acknowledge("mail");
        EXPECT_EQ(system.takeRuns(), both);
    }
    system.answer("setinfo", ToolResult{0, "", "err=0"});
    acknowledge("mail");
    system.answer("setinfo", std::nullopt);
    acknowledge("mail");
    EXPECT_EQ(system.takeRuns(), (Runs{kList, withdrawal("pid:431"), kList, withdrawal("pid:431")}))
        << "what cannot be started once is not started again";

    std::string traced;
    desktop.trace().setSink([&](std::string_view line) {
        if (line.starts_with("badges setinfo"))
            traced = line.substr(line.find("stdout="));
    });
    const std::string almost = std::string(233, 'x') + "\xC3\xA9";
    system.answer("setinfo", ToolResult{0, " \r\na\n" + almost + "y", almost + "\n\nb"});
    acknowledge("mail");
    EXPECT_EQ(traced, "stdout=| a | " + almost + "… stderr=" + almost + " |  | …");
}

TEST_F(BadgeServiceTest, aToolThatFailsTakesNothingButAttentionWithItAndOnlyUntilItWorks)
{
    system.statuses = {{"mail", "2", std::nullopt}};
    setAsking("mail", true);
    start();
    const ToolResult absurd{0, std::string(100'000, 'A') + "SN:" + std::string(1000, '\n'), "err="};
    for (auto& answer : {FakeLaunchServices::Answer{}, FakeLaunchServices::Answer{absurd},
             FakeLaunchServices::Answer{{0, "ASN:0x0-0x1:\xFF", ""}}}) {
        system.answer("find", answer);
        nextPoll();
        EXPECT_THAT(attention(), IsEmpty());
        system.answerTruly();
        system.answer("list", answer);
        nextPoll();
        EXPECT_THAT(attention(), IsEmpty());
        EXPECT_THAT(service->badgesByBundleID().value(), ElementsAre(Pair("mail", "2")));
        system.answerTruly();
        nextPoll();
        EXPECT_THAT(attention(), ElementsAre("mail"));
    }
    system.answer("find", ToolResult{1, "ASN:0x0-0x2:", "err=5"});
    nextPoll();
    EXPECT_THAT(attention(), ElementsAre("chat")) << "the exit status says nothing of the output";
}

TEST_F(BadgeServiceTest, aSlowToolLeavesOutPollsInsteadOfPilingThemUp)
{
    system.setToolDelay(seconds(20));
    start();
    polls();
    desktop.advance(seconds(400));
    EXPECT_LE(polls(), 10);
    system.setToolDelay({});
    desktop.advance(seconds(20));
    polls();
    desktop.advance(seconds(70));
    EXPECT_EQ(polls(), 10);
}

TEST_F(BadgeServiceTest, whereWindowsAskOnlyTheirOwnActivationAcknowledges)
{
    constexpr WindowID inbox{11};
    constexpr WindowID draft{12};
    auto& shown = service->attentionWindows();
    system.requests = {{inbox, "mail"}, {draft, "mail"}};
    setAsking("mail", true); // the application may be said to ask, too
    setAsking("chat", true);
    start();
    EXPECT_THAT(shown.value(), ElementsAre(inbox, draft));
    EXPECT_THAT(attention(), ElementsAre("chat", "mail"));

    acknowledge("mail", {inbox, draft});
    service->clearAttention(WindowID{99});
    service->clearAttention(inbox);
    desktop.drain();
    EXPECT_THAT(shown.value(), ElementsAre(draft));
    EXPECT_THAT(attention(), ElementsAre("chat", "mail"));
    service->clearAttention(draft);
    desktop.drain();
    EXPECT_THAT(shown.value(), IsEmpty());
    EXPECT_THAT(attention(), ElementsAre("chat"));

    system.requests = {{draft, "mail"}, {WindowID{99}, "mail"}};
    nextPoll();
    EXPECT_THAT(shown.value(), ElementsAre(WindowID{99})) << "its visit was before it asked";
    system.requests = {{inbox, "mail"}, {draft, "mail"}};
    nextPoll();
    EXPECT_THAT(shown.value(), ElementsAre(inbox)) << "seen withdrawn, and made again";
}

TEST_F(BadgeServiceTest, aHintIsFollowedAtOnceButNoOftenerThanTenTimesASecond)
{
    start();
    system.takeRuns();
    setAsking("mail", true);
    system.answersMayHaveChanged.emit();
    desktop.drain();
    EXPECT_THAT(attention(), ElementsAre("mail"));
    for (int i = 0; i < 1000; ++i) {
        desktop.advance(seconds(0.001));
        system.answersMayHaveChanged.emit();
    }
    setAsking("mail", false);
    desktop.advance(seconds(0.1));
    EXPECT_THAT(attention(), IsEmpty()) << "the last change of a storm is not lost";
    EXPECT_LE(polls(), 12);
}

}
