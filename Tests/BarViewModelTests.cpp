#include "Quorvel/Core/BadgeService.h"
#include "Quorvel/Core/UserSettings.h"
#include "Tests/Support/BarFixture.h"

namespace quorvel::test {

namespace {

constexpr SpaceID kSpace{1};

struct BarViewModelTest : BarFixture {
    ProcessID mail = desktop.launch({.name = "Mail", .bundleIdentifier = "mail"});
    ProcessID editor = desktop.launch({.name = "Editor", .bundleIdentifier = "editor"});
    WindowID inbox = desktop.open(mail, {.title = "Inbox"});
    WindowID notes = desktop.open(editor, {.title = "Notes"});
    WindowID draft = desktop.open(mail, {.title = "Draft"});

    BarViewModelTest()
    {
        desktop.launchServices().setAvailable(true);
        focusOn(mail, inbox);
        start();
        leave();
    }

    void focusOn(ProcessID pid, WindowID window)
    {
        desktop.focus(window);
        desktop.activate(pid);
        desktop.advance(seconds(0.1));
    }
    UserSettings& settings() { return runtime->userSettings(); }
    void group(bool isOn = true)
    {
        settings().setGroupWindowsByApp(isOn);
        desktop.drain();
    }
    std::vector<std::string> ids(SpaceID space = kSpace)
    {
        std::vector<std::string> found;
        for (auto& item : model().displayItems(space, std::nullopt))
            found.push_back(displayItemID(item));
        return found;
    }
    static std::string s(WindowID id) { return displayItemID(id); }
    GroupedChipData mailGroup(std::optional<std::size_t> screen = std::nullopt)
    {
        for (auto& item : model().displayItems(kSpace, screen)) {
            if (displayItemID(item) == "group-mail")
                return std::get<GroupedChipData>(item);
        }
        return {};
    }
    void click(const std::string& id, PointerButton button = PointerButton::primary)
    {
        panel().click(chipFrame(id)->centre(), button);
        desktop.advance(seconds(0.3));
    }
};

}

// MARK: Groups

// Faults: the group forgets its window when the focus leaves it, or keeps one that is gone.
TEST_F(BarViewModelTest, aGroupStandsForTheWindowThatLastHadTheFocus)
{
    group();
    focusOn(mail, draft);
    EXPECT_THAT(ids(), ElementsAre("group-mail", s(notes)));
    EXPECT_THAT(mailGroup().windowIDs, ElementsAre(draft, inbox));
    EXPECT_TRUE(mailGroup().isFocused);

    focusOn(editor, notes);
    EXPECT_THAT(mailGroup().windowIDs, ElementsAre(draft, inbox));
    EXPECT_EQ(mailGroup().displayTitle, "Draft");
    EXPECT_FALSE(mailGroup().isFocused);

    auto third = desktop.open(mail, {.title = "", .takesFocus = false});
    settle();
    desktop.close(draft);
    settle();
    EXPECT_THAT(mailGroup().windowIDs, ElementsAre(inbox, third)) << "no window is remembered";
    EXPECT_EQ(mailGroup().displayTitle, "Inbox");
    focusOn(mail, third);
    EXPECT_EQ(mailGroup().displayTitle, "Mail") << "without a title, the application's name";

    focusOn(editor, notes);
    desktop.close(inbox);
    settle();
    EXPECT_THAT(ids(), ElementsAre(s(notes), s(third)));
    desktop.open(mail, {.title = "New", .takesFocus = false});
    settle();
    EXPECT_EQ(mailGroup().windowIDs.front(), third) << "forgotten when it stood alone";
}

// Faults: a click on a group always brings the same window; a minimised window comes in between,
// or its return from there changes the order so that another one is visited twice.
TEST_F(BarViewModelTest, clicksWalkThroughTheFocusedGroup)
{
    auto late = desktop.open(mail, {.title = "Late", .takesFocus = false});
    desktop.minimise(inbox);
    desktop.minimise(draft);
    settle();
    group();
    EXPECT_FALSE(mailGroup().isMinimized) << "one of them is not";
    focusOn(mail, late);
    auto walked = [this](int clicks) {
        std::vector<WindowID> windows;
        while (clicks-- > 0) {
            click("group-mail");
            windows.push_back(*model().focusedWindowID.value());
        }
        return windows;
    };
    EXPECT_THAT(walked(3), ElementsAre(inbox, draft, late)) << "each once, then from the start";
    EXPECT_FALSE(chip(inbox)->isMinimized || chip(draft)->isMinimized);
    EXPECT_THAT(walked(1), ElementsAre(inbox));
    focusOn(mail, late);
    desktop.minimise(inbox);
    settle();
    EXPECT_THAT(walked(2), ElementsAre(draft, inbox)) << "a round of its own, the minimised last";

    focusOn(editor, notes);
    EXPECT_THAT(walked(1), ElementsAre(inbox)) << "its representative";
    click("group-mail", PointerButton::middle);
    settle();
    EXPECT_FALSE(chip(inbox));
    EXPECT_TRUE(chip(late) && chip(draft)) << "only the representative closes";
}

// Fault: nothing leads to the window for which a group pulses.
TEST_F(BarViewModelTest, aGroupLeadsToTheWindowThatAsksForAttention)
{
    group();
    focusOn(editor, notes);
    desktop.launchServices().requests = {{draft, "mail"}};
    settle();
    EXPECT_EQ(mailGroup().attentionWindow, draft);
    click("group-mail", PointerButton::secondary);
    EXPECT_EQ(desktop.surfaces().menuTitles()[1], "Draft  \u2022");
    desktop.surfaces().closeMenu();
    leave();

    panel().movePointer(chipFrame("group-mail")->centre());
    desktop.advance(seconds(1));
    auto* popup = desktop.surfaces().popup();
    ASSERT_TRUE(popup);
    std::vector<std::string> names;
    for (auto* card : popup->accessibleRoot()->accessibleChildren())
        names.push_back(card->accessibleState().name);
    EXPECT_THAT(names, Contains("Draft, wants attention"));
    EXPECT_THAT(names, Contains("Inbox"));

    click("group-mail");
    EXPECT_EQ(model().focusedWindowID.value(), draft) << "and not to the representative";
    settle();
    EXPECT_FALSE(mailGroup().attentionWindow);
}

TEST_F(BarViewModelTest, theMenuOfAGroupReachesEachOfItsWindowsAndAll)
{
    group();
    focusOn(editor, notes);
    click("group-mail", PointerButton::secondary);
    EXPECT_THAT(desktop.surfaces().menuTitles(),
        ElementsAre("Inbox", "Draft", "", "New Window", "", "Minimise All", "Move to Desktop",
            "Close All", "", "Pin to Bar", "Quit"));
    desktop.surfaces().chooseMenuItem("Draft");
    desktop.advance(seconds(0.3));
    EXPECT_EQ(model().focusedWindowID.value(), draft);

    click("group-mail", PointerButton::secondary);
    desktop.surfaces().chooseMenuItem("Minimise All");
    settle();
    EXPECT_TRUE(chip(inbox)->isMinimized && chip(draft)->isMinimized);

    click(s(notes), PointerButton::secondary);
    EXPECT_THAT(desktop.surfaces().menuTitles(),
        ElementsAre(
            "New Window", "", "Minimise", "Move to Desktop", "Close", "", "Pin to Bar", "Quit"));
    desktop.surfaces().chooseMenuItem("Close");
    settle();
    EXPECT_FALSE(chip(notes));
}

// MARK: The user's order

// Faults: the order is lost when chips come and go, or when windows are grouped.
TEST_F(BarViewModelTest, theUsersOrderOutlivesTheChips)
{
    model().moveChip(s(draft), s(inbox), kSpace);
    EXPECT_THAT(ids(), ElementsAre(s(draft), s(inbox), s(notes)));
    auto late = desktop.open(editor, {.title = "Late"});
    settle();
    EXPECT_THAT(ids(), ElementsAre(s(draft), s(inbox), s(notes), s(late))) << "new ones are last";
    model().moveChip(s(late), s(late), kSpace);
    model().moveChip("s-99", s(inbox), kSpace);
    model().moveChip(s(draft), "s-99", kSpace);
    EXPECT_THAT(ids(), ElementsAre(s(inbox), s(notes), s(late), s(draft)));

    desktop.moveToSpace(notes, SpaceID{2});
    desktop.activateSpace(SpaceID{2});
    desktop.moveToSpace(notes, kSpace);
    desktop.activateSpace(kSpace);
    settle();
    EXPECT_THAT(ids(), ElementsAre(s(inbox), s(notes), s(late), s(draft)))
        << "who comes back is in its place";

    group();
    EXPECT_THAT(ids(), ElementsAre("group-mail", "group-editor"));
    model().moveChip(s(inbox), std::nullopt, kSpace);
    EXPECT_THAT(ids(), ElementsAre("group-editor", "group-mail")) << "a folded window is its group";
    model().moveChip("s-", "s-12x", kSpace);
    EXPECT_THAT(ids(), ElementsAre("group-editor", "group-mail"));
    group(false);
    EXPECT_THAT(ids(), ElementsAre(s(inbox), s(notes), s(draft), s(late)))
        << "what was not moved since is in the windows' order";
}

// Faults: the order of the chips or a pin goes with the monitor, or with a sleep.
TEST_F(BarViewModelTest, orderAndPinsOutliveTheMonitorAndSleep)
{
    desktop.workspace().install("chess", "/Applications/Chess.app");
    settings().setPinnedApps({{"chess", 1}});
    model().moveChip(s(draft), s(inbox), kSpace);
    settle();
    auto displays = desktop.model().displays;
    desktop.setDisplays({});
    settle();
    desktop.setDisplays(displays);
    desktop.wake();
    settle();

    EXPECT_THAT(pinIDs(), ElementsAre("chess"));
    EXPECT_THAT(chipIDs(), ElementsAre(s(draft), s(inbox), s(notes)));
}

// MARK: One bar of several

// Faults: a group on each bar with windows of the other; the wrong one lit.
TEST_F(BarViewModelTest, aGroupIsDividedAmongTheScreens)
{
    desktop.addDisplay(
        {.number = DisplayNumber{2}, .identifier = "second", .frame = {1440, 0, 1440, 900}});
    auto third = desktop.open(mail, {.title = "Third"});
    desktop.place(draft, {1500, 100, 400, 400});
    settle();
    group();
    focusOn(mail, draft);

    auto onSecond = model().displayItems(kSpace, 1);
    ASSERT_EQ(onSecond.size(), 1U);
    EXPECT_EQ(std::get<ChipData>(onSecond.front()).id, draft);
    EXPECT_THAT(mailGroup(0).windowIDs, ElementsAre(inbox, third));
    EXPECT_EQ(mailGroup(0).windowCount, 2);
    EXPECT_FALSE(mailGroup(0).isFocused);

    desktop.minimise(third);
    settle();
    EXPECT_THAT(mailGroup(1).windowIDs, UnorderedElementsAre(draft, third))
        << "a minimised window is on every bar";
    desktop.minimise(inbox);
    settle();
    EXPECT_TRUE(mailGroup(0).isMinimized) << "all that are on this screen";
    EXPECT_FALSE(mailGroup(1).isMinimized);
    EXPECT_EQ(model().displayItems(kSpace, 7), model().displayItems(kSpace, std::nullopt));
}

// MARK: Badges, progress, attention

TEST_F(BarViewModelTest, badgesProgressAndAttentionReachTheirChips)
{
    auto& system = desktop.launchServices();
    system.statuses = {{"mail", "3", 0.25}};
    system.applications = {{"mail", {.name = "Mail", .serial = "0x0-0x1", .pid = raw(mail)}},
        {"editor",
            {.name = "Editor", .serial = "0x0-0x2", .pid = raw(editor), .wantsAttention = true}}};
    desktop.advance(BadgeService::pollInterval);
    EXPECT_EQ(chip(inbox)->badge, "3");
    EXPECT_EQ(chip(draft)->progress, 0.25);
    EXPECT_FALSE(chip(notes)->badge);
    EXPECT_TRUE(chip(notes)->wantsAttention);
    EXPECT_THAT(chipTexts(), Contains("3"));

    click(s(notes));
    EXPECT_FALSE(chip(notes)->wantsAttention);
    focusOn(mail, inbox);
    settle();
    system.applications["editor"].wantsAttention = true;
    settle();
    ASSERT_TRUE(chip(notes)->wantsAttention);
    focusOn(editor, notes);
    desktop.drain();
    EXPECT_FALSE(chip(notes)->wantsAttention) << "without a click, too";

    // Where windows ask, only they pulse, and only their own visit counts.
    focusOn(editor, notes);
    system.requests = {{inbox, "mail"}, {draft, "mail"}};
    settle();
    focusOn(mail, inbox);
    desktop.drain();
    EXPECT_FALSE(chip(inbox)->wantsAttention);
    EXPECT_TRUE(chip(draft)->wantsAttention);

    // A window without a chip asks for its application.
    auto dialog = desktop.open(editor, {.subrole = "AXDialog", .takesFocus = false});
    system.requests.push_back({dialog, "editor"});
    settle();
    EXPECT_TRUE(chip(notes)->wantsAttention);
    focusOn(editor, notes);
    settle();
    EXPECT_FALSE(chip(notes)->wantsAttention);
    group();
    EXPECT_TRUE(mailGroup().wantsAttention);
}

// Faults: a request that nobody answers keeps the machine awake; a pulse under reduced motion.
TEST_F(BarViewModelTest, aPulseComesToRest)
{
    desktop.launchServices().requests = {{notes, "editor"}};
    settle();
    settle();
    panel().forgetPaints();
    desktop.advance(seconds(60));
    EXPECT_THAT(panel().paints(), IsEmpty());
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 1U) << "the next poll";

    desktop.launchServices().requests = {{notes, "editor"}, {draft, "mail"}};
    desktop.advance(BadgeService::pollInterval + seconds(2));
    panel().forgetPaints();
    desktop.advance(seconds(1));
    EXPECT_GT(panel().paints().size(), 10U);
    for (auto& paint : panel().paints())
        EXPECT_LE(paint.damage.width, 2 * chipFrame(notes)->width + 10) << "the chips that ask";

    auto appearance = desktop.program().appearance().value();
    appearance.reduceMotion = true;
    desktop.program().setAppearance(appearance);
    desktop.launchServices().requests.push_back({inbox, "mail"});
    desktop.focus(draft);
    desktop.advance(BadgeService::pollInterval);
    panel().forgetPaints();
    desktop.advance(seconds(1));
    EXPECT_THAT(panel().paints(), IsEmpty());
}

// MARK: Activation

// Faults: a window that is raised while it is minimised stays so; a click that finds the
// application busy is lost.
TEST_F(BarViewModelTest, aMinimisedWindowIsRestoredFirstIfNeedBeWithTheSecondAttempt)
{
    auto asked = [&] {
        std::vector<std::string> names;
        for (auto& message : desktop.accessibility().messages()) {
            using Kind = AXMessage::Kind;
            bool isRequest = message.kind == Kind::set || message.kind == Kind::action;
            if (isRequest && message.window == notes)
                names.push_back(message.name);
        }
        return names;
    };
    for (int failing : {0, 1}) {
        desktop.minimise(notes);
        focusOn(mail, inbox);
        settle();
        desktop.accessibility().forgetMessages();
        desktop.application(editor).faults.failingMessages = failing;
        clickChip(notes);
        EXPECT_THAT(asked(), SizeIs(failing ? 0 : 4));
        desktop.advance(seconds(0.15));
        EXPECT_THAT(asked(), ElementsAre("AXMinimized", "AXMain", "AXFocused", "AXRaise"));
        EXPECT_FALSE(desktop.window(notes).isMinimized);
    }
}

// Faults: a chip that a click has lit goes dark before its application has had the time to answer,
// or stays lit without an answer, after it, or although the user has gone elsewhere.
TEST_F(BarViewModelTest, aLitChipWaitsForItsWindowUnlessTheUserGoesElsewhere)
{
    desktop.window(draft).faults.ignoredRequests = {"AXMain", "AXFocused", "AXRaise"};
    click(s(draft));
    desktop.retitle(notes, "Other");
    desktop.advance(seconds(0.1));
    EXPECT_TRUE(chip(draft)->isFocused);
    desktop.advance(seconds(2));
    EXPECT_FALSE(chip(draft)->isFocused);
    click(s(draft));
    desktop.activate(editor);
    desktop.advance(seconds(0.1));
    EXPECT_FALSE(chip(draft)->isFocused);

    auto other = desktop.open(mail, {.title = "Other"});
    settle();
    click(s(inbox));
    desktop.focus(other);
    desktop.advance(seconds(0.1));
    EXPECT_TRUE(chip(other)->isFocused) << "answered, the click is done with";

    focusOn(editor, notes);
    settle();
    desktop.window(draft).faults.ignoredRequests.insert("AXFocusedWindow");
    desktop.application(mail).faults.refusesActivation = true;
    click(s(draft));
    for (auto focused : {inbox, notes}) {
        focusOn(desktop.window(focused).pid, focused);
        desktop.advance(seconds(0.1));
        EXPECT_EQ(chip(draft)->isFocused, focused == inbox);
    }
    EXPECT_TRUE(chip(notes)->isFocused) << "after an answer, to come back to it is news";
}

TEST_F(BarViewModelTest, focusThroughAccessibilityAloneActivatesNobody)
{
    group();
    focusOn(editor, notes);
    auto before = desktop.workspace().activations();
    EXPECT_TRUE(model().focusWindowWithAXOnly(draft, "test"));
    EXPECT_EQ(model().focusedWindowID.value(), draft);
    EXPECT_EQ(desktop.workspace().activations(), before);
    EXPECT_FALSE(model().focusWindowWithAXOnly(WindowID{99}, "test"));

    focusOn(editor, notes);
    desktop.window(inbox).faults.ignoredRequests = {"AXFrontmost"};
    EXPECT_TRUE(model().focusWindowWithAXOnly(inbox, "test"));
    desktop.application(mail).faults.isHung = true;
    EXPECT_FALSE(model().focusWindowWithAXOnly(draft, "test"));
}

// Faults: the first request that is answered late is the last one that is made; the bar waits for
// each; an older click takes the focus of a newer one.
TEST_F(BarViewModelTest, whatAnApplicationAnswersLateIsAskedOfItAllTheSame)
{
    using enum BarViewModel::FocusBeforeActivation;
    std::set<std::string> threads;
    auto asked = [&] {
        std::vector<std::string> names;
        for (auto& message : desktop.accessibility().messages()) {
            if (message.kind != AXMessage::Kind::copy && message.pid == mail) {
                names.push_back(message.name);
                threads.insert(message.thread);
            }
        }
        return names;
    };
    auto cost = [&](const std::function<void()>& click) {
        desktop.accessibility().forgetMessages();
        auto before = desktop.dispatch().now();
        click();
        auto spent = desktop.dispatch().now() - before;
        settle();
        return spent;
    };
    desktop.minimise(draft);
    focusOn(editor, notes);
    settle();
    desktop.application(mail).faults.answersRequestsLate = true;
    EXPECT_EQ(cost([&] { model().activateWindow(draft, no); }), seconds(0.05));
    EXPECT_THAT(asked(), ElementsAre("AXMinimized", "AXMain", "AXFocused", "AXRaise"));
    EXPECT_THAT(threads, ElementsAre("com.quorvel.lateRequests", "main"));
    EXPECT_FALSE(desktop.window(draft).isMinimized);

    EXPECT_EQ(
        cost([&] { EXPECT_FALSE(model().focusWindowWithAXOnly(inbox, "test")); }), seconds(0.05));
    EXPECT_EQ(desktop.application(mail).focusedWindow, inbox);
    EXPECT_THAT(asked(), SizeIs(6)) << "the frontmost and the five of the window";

    EXPECT_EQ(cost([&] { model().minimizeWindows({inbox, draft}); }), seconds(0.05));
    EXPECT_TRUE(desktop.window(inbox).isMinimized && desktop.window(draft).isMinimized);

    cost([&] {
        model().activateWindow(draft, no);
        model().activateWindow(notes, no);
    });
    EXPECT_THAT(asked(), ElementsAre("AXMinimized")) << "the newer click holds";
}

// MARK: Stored applications

TEST_F(BarViewModelTest, aStoredApplicationHasANameAndCanBeOpened)
{
    auto& bundles = desktop.bundles();
    EXPECT_EQ(model().appName("mail"), "Mail") << "of its file";
    bundles.install("/Applications/Mail.app", {.name = "Post"});
    EXPECT_EQ(model().appName("mail"), "Post");
    bundles.install("/Applications/Mail.app", {.displayName = "Letters", .name = "Post"});
    EXPECT_EQ(model().appName("mail"), "Letters");
    EXPECT_EQ(model().appName("gone"), "gone");
    EXPECT_TRUE(model().icon("mail"));
    EXPECT_FALSE(model().icon("gone"));

    model().launchApp("gone");
    model().launchApp("mail");
    EXPECT_THAT(desktop.workspace().opened(), ElementsAre("/Applications/Mail.app"));
    EXPECT_THAT(model().bundleIDsWithWindows(kSpace), ElementsAre("editor", "mail"));
}

// Faults: an icon that comes late is never shown; each change of a title looks for one.
TEST_F(BarViewModelTest, aMissingIconIsLookedForWithEachNewWindow)
{
    auto& workspace = desktop.workspace();
    auto generic = workspace.genericApplicationIcon();
    Image icon;
    workspace.makeIcon = [&] { return icon; };
    auto late = desktop.launch({.name = "Late", .bundleIdentifier = "late"});
    auto first = desktop.open(late);
    settle();
    EXPECT_EQ(chip(first)->icon, generic);
    icon = std::make_shared<FakeImage>("late");
    auto lookups = workspace.iconLookups();
    desktop.retitle(first, "Other");
    settle();
    EXPECT_EQ(workspace.iconLookups(), lookups);

    auto second = desktop.open(late);
    settle();
    EXPECT_EQ(chip(first)->icon, icon);
    EXPECT_EQ(chip(second)->icon, icon);
}

// MARK: What is reused

}
