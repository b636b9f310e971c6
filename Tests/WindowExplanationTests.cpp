// What "--explain" says of windows, and what becomes of a match that is mended.
#include <gmock/gmock.h>

#include "Quorvel/Core/UserSettings.h"
#include "Tests/Support/BarFixture.h"

namespace quorvel::test {

using namespace testing;

struct WindowExplanationTest : ThreeWindows {
    ControlReply ask(const std::vector<std::string>& arguments)
    {
        return *desktop.control().send(arguments);
    }
    std::string explain(WindowID window)
    {
        return ask({"--explain", std::to_string(raw(window))}).output;
    }
    FakeApplicationMatching& matching() { return desktop.applicationMatching(); }
};

// Faults: a window without a chip is explained as one with a chip, or by another rule than the one
// that refused it; windows that the program does not track are not found; rules behind the one that
// failed are told as met.
TEST_F(WindowExplanationTest, namesTheRuleThatRefusesAWindow)
{
    EXPECT_THAT(explain(inbox),
        AllOf(HasSubstr("title: Inbox\n"), HasSubstr("chip: yes, on space 1\n"),
            HasSubstr("yes: it is a standard window, or minimised: AXStandardWindow\n"),
            Not(HasSubstr("\nno: ")), HasSubstr("application: mail\n"),
            HasSubstr("matched by: what the system says of its process\n")));
    EXPECT_EQ(ask({"--explain", "focused"}).output, explain(inbox));

    auto agent = desktop.launch({.name = "Agent", .policy = ActivationPolicy::accessory});
    auto dock = desktop.launch({.name = "Dock", .bundleIdentifier = "com.apple.dock"});
    auto faulty = [&](const OpenOptions& options) { return desktop.open(mail, options); };
    const std::pair<WindowID, std::string> refused[] = {
        {desktop.open(agent, {}), "no: its application has windows for its user: Agent"},
        {desktop.open(dock, {}), "no: it is no part of the system: com.apple.dock"},
        {faulty({.layer = 25}), "no: it lies among ordinary windows (layer 0): 25"},
        {faulty({.frame = {0, 0, 39, 400}}), "no: it is at least 40 x 40: 39 x 400"},
        {faulty({.alpha = 0}), "no: it is not transparent: opacity 0.00"},
        {faulty({.role = "AXUnknown"}), "no: its role is AXWindow: AXUnknown"},
        {faulty({.isModal = true}), "no: it is not modal: modal"},
        {faulty({.subrole = "AXDialog"}), "no: it is a standard window, or minimised: AXDialog"}};
    settle();
    for (auto& [window, reason] : refused) {
        EXPECT_EQ(chip(window), nullptr) << reason;
        auto text = explain(window);
        EXPECT_THAT(text, HasSubstr("chip: no\n"));
        EXPECT_THAT(text, HasSubstr(reason + "\napplication: ")) << "and it is the last one";
    }
    desktop.window(notes).faults.isListed = false; // and it has a chip already
    EXPECT_THAT(explain(notes),
        AllOf(HasSubstr("chip: yes, on space 1\n"),
            HasSubstr("no: its application lists it: not listed\n")));
    for (auto* nonsense : {"", "0", "4711", "0x", "-1", "12x", "99999999999", "focus"})
        EXPECT_EQ(ask({"--explain", nonsense}).exitStatus, 1) << nonsense;
    EXPECT_EQ(ask({"--explain"}).exitStatus, 1);
}

// Faults: a title writes over the terminal; a match is kept for an application that is not there,
// or for windows that have nothing in common; it is forgotten by a restart, or cannot be taken
// back.
TEST_F(WindowExplanationTest, aMendedMatchIsKeptUntilItIsTakenBack)
{
    auto window = std::to_string(raw(inbox));
    EXPECT_EQ(ask({"--match", window, "player"}).exitStatus, 1) << "nothing to match";
    matching().matches[inbox] = {"mail", "by class", {{"class", "a\nb\x1B[2J"}}, "class:m.Mail"};
    matching().matches[draft] = {"mail", "by nothing", {}, ""};
    EXPECT_THAT(explain(inbox),
        AllOf(HasSubstr("matched by: by class\nclass: a b [2J\n"),
            HasSubstr("to mend: quorvel --match " + window + " APPLICATION\n")));

    EXPECT_EQ(ask({"--match", window, "nowhere"}).exitStatus, 1);
    EXPECT_EQ(ask({"--match", std::to_string(raw(draft)), "player"}).exitStatus, 1);
    EXPECT_THAT(matching().mended, IsEmpty());
    EXPECT_EQ(ask({"--match", window, "player.desktop"}).error, "");
    EXPECT_THAT(matching().mended, ElementsAre(Pair("class:m.Mail", "player")));

    settle();
    runtime.reset();
    matching().mended.clear();
    start();
    EXPECT_THAT(matching().mended, ElementsAre(Pair("class:m.Mail", "player")));
    EXPECT_EQ(ask({"--match", window}).exitStatus, 0);
    EXPECT_THAT(matching().mended, IsEmpty());
    EXPECT_EQ(runtime->userSettings().data().value().more, MoreSettings{});
}

}
