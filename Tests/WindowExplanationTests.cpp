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
    /// Of the chip; the submenu about the window, or none.
    std::vector<std::string> linesAbout(const std::string& item, std::uint64_t modifiers)
    {
        desktop.surfaces().closeMenu();
        desktop.drain();
        panel().setModifiers(modifiers);
        panel().click(chipFrame(item)->centre(), PointerButton::secondary);
        panel().setModifiers(0);
        std::vector<std::string> lines;
        if (!desktop.surfaces().chooseMenuItem("About This Window"))
            return lines;
        for (auto* element : desktop.surfaces().menus().back()->elements()) {
            auto state = element->accessibleState();
            if (state.role == AccessibleRole::menuItem)
                lines.push_back(state.name);
        }
        return lines;
    }
    std::vector<std::string> linesAbout(WindowID window)
    {
        return linesAbout(displayItemID(window), KeyModifier::option);
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
    matching().matches[inbox] = {"mail", MatchKind::windowClass, "by class",
        {{MatchFact::windowClass, "a\nb\x1B[2J"}}, "class:m.Mail"};
    matching().matches[draft] = {"mail", MatchKind::nothing, "by nothing", {}, ""};
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

// Faults: the entry is there for everyone, or not for whoever asks by the keyboard or from a group;
// a match that cannot be mended seems to be; the application that is found is kept as the user's
// choice; a choice that does not count at once, or cannot be taken back.
TEST_F(WindowExplanationTest, whoeverHoldsOptionLearnsAboutAWindowAndMendsItsMatch)
{
    auto& surfaces = desktop.surfaces();
    auto& settings = runtime->userSettings();
    desktop.workspace().install("mail", "/Applications/mail");
    pin("player");
    settle();
    EXPECT_THAT(linesAbout(displayItemID(inbox), KeyModifier::shift), IsEmpty());
    EXPECT_THAT(linesAbout(inbox),
        AllOf(Contains("Application: mail"), Contains("Found by what the system says"),
            Contains("On the bar as an ordinary window of an application"),
            Not(Contains("Belongs To"))));
    EXPECT_FALSE(surfaces.chooseMenuItem("Application: mail"));

    matching().matches[inbox] = {"mail", MatchKind::windowClass, "by class",
        {{MatchFact::windowClass, "Mail"}, {MatchFact::desktopFile, "/mail"}}, "class:m.Mail"};
    EXPECT_THAT(linesAbout(inbox),
        AllOf(Contains("Found by the window's class"), Contains("Class: Mail"),
            Contains("Belongs To"), Not(Contains(HasSubstr("/mail")))));
    ASSERT_TRUE(surfaces.chooseMenuItem("Belongs To"));
    EXPECT_THAT(surfaces.checkedMenuTitles(), ElementsAre("mail"));
    EXPECT_FALSE(surfaces.chooseMenuItem("As Found"));
    EXPECT_FALSE(surfaces.chooseMenuItem("editor")) << "it is not installed";
    ASSERT_TRUE(surfaces.chooseMenuItem("mail"));
    desktop.drain();
    EXPECT_THAT(settings.mendedMatches(), IsEmpty());

    settings.setGroupWindowsByApp(true);
    desktop.drain();
    leave();
    EXPECT_THAT(linesAbout(groupItemID("mail"), KeyModifier::option), Contains("Inbox"));
    ASSERT_TRUE(surfaces.chooseMenuItem("player"));
    desktop.drain();
    EXPECT_THAT(matching().mended, ElementsAre(Pair("class:m.Mail", "player")));
    settings.setGroupWindowsByApp(false);
    desktop.drain();

    hoverUntilShown(inbox);
    popup()->movePointer({60, 60});
    popup()->setModifiers(KeyModifier::option);
    popup()->press({60, 60}, PointerButton::secondary);
    ASSERT_TRUE(surfaces.chooseMenuItem("As Found"));
    desktop.drain();
    EXPECT_THAT(matching().mended, IsEmpty());

    ASSERT_TRUE(manager().takeKeyboard());
    EXPECT_TRUE(panel().pressKey({.keyCode = KeyCode::menu, .modifiers = KeyModifier::option}));
    EXPECT_TRUE(surfaces.chooseMenuItem("About This Window"));
}

}
