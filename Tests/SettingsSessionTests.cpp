// The settings windows of other processes, in the running bar.
#include "Quorvel/Core/SettingsCoding.h"
#include "Quorvel/Core/SettingsSessions.h"
#include "Tests/Support/BarFixture.h"

namespace quorvel::test {

namespace {

struct SettingsSessionTest : BarFixture {
    using Peer = std::shared_ptr<FakeSessionPeer>;

    SettingsSessionTest() { start(); }

    Peer connect() { return desktop.control().connect(); }
    /// The last description that it was sent; empty if there is none that it has not taken.
    static SettingsDescription described(const Peer& peer)
    {
        SettingsDescription last;
        for (auto& line : peer->takeLines()) {
            auto news = decodeSettingsNews(line);
            EXPECT_TRUE(news) << line;
            if (auto* description = news ? std::get_if<SettingsDescription>(&*news) : nullptr)
                last = *description;
        }
        return last;
    }
    static std::string theme(const Peer& peer)
    {
        auto description = described(peer);
        auto* row = description.row("theme");
        return row ? std::get<SettingsChoice>(row->control).value : "none";
    }
};

}

// Faults: a window that is told late, or not at all, of another's change; one that gets its own
// news twice.
TEST_F(SettingsSessionTest, everyWindowShowsTheChangesOfTheOthers)
{
    auto one = connect();
    auto other = connect();
    EXPECT_EQ(theme(one), "frosted") << "at once";
    EXPECT_EQ(theme(other), "frosted");

    one->say(R"({"set":{"row":"theme","value":"aero"}})");
    EXPECT_EQ(runtime->userSettings().theme(), BarTheme::aero);
    EXPECT_EQ(one->takeLines().size(), 1U);
    EXPECT_EQ(theme(other), "aero");
    EXPECT_EQ(desktop.control().send({"--set", "theme=longhorn"})->exitStatus, 0);
    EXPECT_EQ(theme(one), "longhorn");

    other->hangUp();
    described(other);
    runtime->userSettings().setTheme(BarTheme::frosted);
    EXPECT_EQ(theme(one), "frosted");
    EXPECT_THAT(other->takeLines(), IsEmpty());
}

// Faults: a change that has no effect has no answer, from which the window would take the bar for
// hung; a question that is not answered.
TEST_F(SettingsSessionTest, whateverTheWindowSaysIsAnswered)
{
    auto one = connect();
    described(one);
    for (auto* line : {R"({"set":{"row":"theme","value":"frosted"}})", R"({"ask":true})"}) {
        one->say(line);
        EXPECT_EQ(theme(one), "frosted") << line;
    }
}

// Faults: a window that hangs keeps the settings from being opened; one that is alive is replaced,
// or one of two; several clicks replace it several times.
TEST_F(SettingsSessionTest, aWindowThatDoesNotAnswerIsReplaced)
{
    auto& window = desktop.settingsWindow();
    auto present = [this] { EXPECT_EQ(desktop.control().send({"--settings"})->exitStatus, 0); };
    auto one = connect();
    auto other = connect();
    present();
    desktop.advance(seconds(1));
    present();
    one->say(R"({"ask":true})");
    desktop.advance(SettingsSessions::kPatience);
    EXPECT_TRUE(one->isConnected());
    EXPECT_FALSE(other->isConnected());
    EXPECT_EQ(window.shows(), 0);
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0U);

    present();
    desktop.advance(SettingsSessions::kPatience);
    EXPECT_FALSE(one->isConnected());
    EXPECT_EQ(window.replacements(), 1);
    present();
    EXPECT_EQ(window.shows(), 2) << "as if there had been none";
}

// Fault: a control that stays where the user moved it though nothing has changed.
TEST_F(SettingsSessionTest, aRefusalComesWithItsReasonAndThenWhatHolds)
{
    desktop.loginItem().setRefuses(true);
    auto one = connect();
    auto other = connect();
    described(one);
    described(other);
    one->say(R"({"set":{"row":"runAtLogin","value":true}})");
    auto lines = one->takeLines();
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(std::get<SettingsRefusal>(*decodeSettingsNews(lines[0])).row, "runAtLogin");
    EXPECT_TRUE(std::holds_alternative<SettingsDescription>(*decodeSettingsNews(lines[1])));
    EXPECT_THAT(other->takeLines(), IsEmpty()) << "is not the other's business";
}

// Fault: a window that crashes while it records leaves the user without the shortcut.
TEST_F(SettingsSessionTest, recordingEndsWithTheConnection)
{
    auto keys = FakeHotkeys::Keys{49, HotkeyModifier::option};
    auto one = connect();
    one->say(R"({"record":{"keyCode":49,"modifiers":2048}})");
    EXPECT_THAT(desktop.hotkeys().registered(), ElementsAre(keys));
    one->say(R"({"recording":true})");
    one->say(R"({"recording":true})");
    EXPECT_THAT(desktop.hotkeys().registered(), IsEmpty());
    one->say(R"({"recording":false})");
    EXPECT_THAT(desktop.hotkeys().registered(), ElementsAre(keys));
    one->say(R"({"recording":true})");
    auto other = connect();
    other->say(R"({"recording":true})");
    one->hangUp();
    EXPECT_THAT(desktop.hotkeys().registered(), IsEmpty()) << "the other one goes on";
    other->hangUp();
    EXPECT_THAT(desktop.hotkeys().registered(), ElementsAre(keys));
}

// Faults: nonsense that ends the bar or changes something; sessions without end.
TEST_F(SettingsSessionTest, nonsenseIsPassedOverAndTheOldestOfTooManyGoes)
{
    auto before = runtime->userSettings().data().value();
    auto one = connect();
    described(one);
    for (auto* line : {"", "{", "\xff", "[1]", R"({"explode":true})", R"({"set":{"row":1}})"})
        one->say(line);
    EXPECT_THAT(one->takeLines(), IsEmpty());
    EXPECT_EQ(runtime->userSettings().data().value(), before);

    std::vector<Peer> more;
    for (std::size_t i = 0; i < SettingsSessions::kMost; ++i)
        more.push_back(connect());
    EXPECT_FALSE(one->isConnected());
    for (auto& peer : more)
        EXPECT_TRUE(peer->isConnected());
    runtime.reset();
    for (auto& peer : more)
        EXPECT_FALSE(peer->isConnected()) << "they go with the bar";
    EXPECT_FALSE(connect()->isConnected());
}

}
