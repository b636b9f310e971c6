#include "Quorvel/Views/PermissionsGatePanel.h"

#include "Quorvel/CommandLine.h"
#include "Quorvel/Core/LaunchPermissionCenter.h"
#include "Quorvel/Core/PermissionsGateModel.h"
#include "Quorvel/Views/Kit/OverlayScroller.h"
#include "Tests/Support/BarFixture.h"

namespace quorvel::test {

namespace {

struct PermissionsGateTest : BarFixture {
    void grant(bool accessibility, bool screenRecording)
    {
        desktop.accessibility().setTrusted(accessibility);
        desktop.screenCapture().setAllowed(screenRecording);
    }
    void startWith(bool accessibility, bool screenRecording, QuorvelApp::Rehearsal rehearsal = {})
    {
        runtime.reset();
        grant(accessibility, screenRecording);
        runtime = std::make_unique<Runtime>(desktop.platform());
        QuorvelApp::launch(*runtime, rehearsal);
        desktop.drain();
    }
    FakePanel* window() { return desktop.surfaces().window(); }
    /// Of those with this name, one that comes so late.
    AccessibleElement* element(const std::string& name, int skipped = 0)
    {
        for (auto* candidate : window()->elements()) {
            if (candidate->accessibleState().name == name && skipped-- == 0)
                return candidate;
        }
        ADD_FAILURE() << "nothing is called " << name;
        return window()->accessibleRoot();
    }
    bool shows(const std::string& text) { return window()->render().text(text) != nullptr; }
    bool canContinue() { return element("Continue")->accessibleState().isEnabled; }
    void click(const std::string& name, int skipped = 0)
    {
        window()->click(element(name, skipped)->accessibleFrame().centre());
    }
    void press(KeyCode key, std::uint64_t modifiers = 0, bool isRepeat = false)
    {
        window()->pressKey({.keyCode = key, .modifiers = modifiers, .isRepeat = isRepeat});
    }
    std::vector<Symbol> symbols()
    {
        std::vector<Symbol> found;
        for (auto& drawn : window()->render().drawn<DrawnSymbol>())
            found.push_back(drawn.symbol);
        return found;
    }
    std::string focused()
    {
        for (auto* candidate : window()->elements()) {
            if (candidate->accessibleState().hasKeyFocus)
                return candidate->accessibleState().name;
        }
        return "";
    }
    bool isRunning() { return runtime->barManager() != nullptr; }
    bool hasQuit() { return desktop.program().isTerminated(); }

    const std::string general = "x-apple.systempreferences:com.apple.preference.security";
    const std::string accessibilityPage = general + "?Privacy_Accessibility";
    const std::string screenRecordingPage = general + "?Privacy_ScreenCapture";
    const std::string privacyPage = general + "?Privacy";
};

}

// Faults: a text, a mark or a row that is missing or in the wrong place; a program that asks before
// the user has; a button that does the other row's work; a page too many, or none when the first is
// not there.
TEST_F(PermissionsGateTest, saysWhatIsMissingAndLeadsToIt)
{
    desktop.program().setBundleIdentifier(std::nullopt);
    startWith(false, false);
    ASSERT_TRUE(window());
    EXPECT_FALSE(isRunning());
    EXPECT_TRUE(window()->hasKeyboard());
    EXPECT_EQ(window()->options().title, "Quorvel Setup");
    auto frame = window()->frame();
    EXPECT_NEAR(frame.centre().x, 720, 1);
    EXPECT_LT(frame.height, 700) << "fits the smallest screens";
    EXPECT_THAT(window()->render().texts(),
        ElementsAre("Quorvel Setup", "Set up permissions before the app can start.", "Required",
            "Quorvel needs both permissions before it can start.", "Accessibility", "Required",
            "Needed to observe windows and respond to focus changes.",
            "System Settings > Privacy & Security > Accessibility", "Request Access",
            "Open Settings", "Screen Recording", "Required",
            "Needed to display window titles and thumbnails.",
            "System Settings > Privacy & Security > Screen Recording", "Request Access",
            "Open Settings", "Notes",
            "If Screen Recording was just granted, macOS may require a restart.",
            "1. Click Request Access for each missing permission.",
            "2. If needed, use Open Settings to grant it manually.",
            "3. Click Continue once both rows show Granted.",
            "4. Accessibility entry must match bundle ID: <missing CFBundleIdentifier>",
            "Grant both permissions to continue", "Quit", "Continue"));
    EXPECT_THAT(symbols(), ElementsAre(Symbol::lockShield, Symbol::figureStand, Symbol::display));
    EXPECT_EQ(element("Accessibility, Required")->accessibleState().role, AccessibleRole::group);
    desktop.advance(seconds(5));
    EXPECT_EQ(desktop.accessibility().prompts(), 0);
    EXPECT_EQ(desktop.screenCapture().requests(), 0);

    click("Request Access");
    EXPECT_EQ(desktop.accessibility().prompts(), 1);
    EXPECT_EQ(desktop.screenCapture().requests(), 0);
    desktop.screenCapture().setAllowed(true);
    click("Request Access", 1);
    EXPECT_TRUE(shows("Granted")) << "it looks at once";
    EXPECT_THAT(symbols(), Contains(Symbol::checkmarkCircle).Times(1));
    EXPECT_EQ(desktop.screenCapture().requests(), 1);

    auto& workspace = desktop.workspace();
    click("Open Settings");
    workspace.openableURLs = {privacyPage, general};
    click("Open Settings", 1);
    workspace.openableURLs.insert(accessibilityPage);
    click("Open Settings");
    EXPECT_THAT(workspace.triedURLs(),
        ElementsAre(accessibilityPage, privacyPage, general, screenRecordingPage, privacyPage,
            accessibilityPage));

    desktop.program().setBundleIdentifier("com.example.quorvel");
    startWith(false, true);
    EXPECT_TRUE(shows("4. Accessibility entry must match bundle ID: com.example.quorvel"));
}

// Faults: it goes on with one permission, by itself, or on the strength of an old answer; a trusted
// program is asked for again; the bar starts twice, or the window stays with it; it looks for ever;
// a grant that was taken back leaves no window, or the keyboard on a dead button.
TEST_F(PermissionsGateTest, goesOnWhenBothAreThereAndNobodyLies)
{
    startWith(false, true);
    EXPECT_FALSE(canContinue());
    EXPECT_TRUE(shows("Grant both permissions to continue"));
    click("Continue");
    press(KeyCode::enter, 0, true);
    desktop.advance(seconds(60));
    ASSERT_TRUE(window());
    EXPECT_FALSE(hasQuit());

    window()->forgetPaints();
    desktop.advance(seconds(60));
    EXPECT_THAT(window()->paints(), IsEmpty()) << "nothing is new";
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 1U) << "it looks for ever";
    desktop.accessibility().setTrusted(true);
    desktop.advance(seconds(1));
    EXPECT_TRUE(canContinue());
    EXPECT_TRUE(shows("All required permissions granted"));
    EXPECT_FALSE(isRunning()) << "that is for the user to say";
    click("Check Again");
    EXPECT_EQ(desktop.accessibility().prompts(), 0);

    grant(true, false);
    click("Continue");
    desktop.drain();
    EXPECT_FALSE(canContinue());
    grant(true, true);
    desktop.advance(seconds(1));
    while (focused() != "Continue")
        press(KeyCode::tab);
    grant(false, true);
    desktop.advance(seconds(1));
    EXPECT_EQ(focused(), "Request Access");

    grant(true, true);
    desktop.advance(seconds(1));
    click("Continue");
    grant(true, false);
    desktop.drain();
    ASSERT_TRUE(window()) << "it comes back";
    EXPECT_FALSE(isRunning());
    EXPECT_FALSE(hasQuit());

    grant(true, true);
    desktop.advance(seconds(1));
    click("Continue");
    EXPECT_FALSE(window());
    desktop.advance(seconds(5));
    ASSERT_TRUE(isRunning());
    auto panelsMade = desktop.surfaces().panelsMade();
    grant(false, false);
    desktop.advance(seconds(60));
    EXPECT_EQ(desktop.surfaces().panelsMade(), panelsMade);
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0u) << "nobody looks for permissions any more";
    EXPECT_FALSE(hasQuit());
}

// Faults: a second start looks twice as often, or opens a second window; one that ends goes on
// looking; a state that is told though it is the old one.
TEST_F(PermissionsGateTest, startingAgainDoesNothingNew)
{
    startWith(false, false);
    LaunchPermissionCenter center{desktop.platform().accessibility,
        desktop.platform().screenCapture, desktop.platform().workspace};
    PermissionsGateModel model{desktop.dispatch(), center};
    int told = 0;
    auto telling = model.state().subscribe([&](auto&) { ++told; });
    model.startMonitoring();
    model.startMonitoring();
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 2U) << "the window's and this one";
    desktop.advance(seconds(10));
    EXPECT_EQ(told, 0);
    desktop.screenCapture().setAllowed(true);
    desktop.advance(PermissionsGateModel::kPollInterval);
    EXPECT_EQ(told, 1);
    model.stopMonitoring();
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 1U);

    auto panelsMade = desktop.surfaces().panelsMade();
    EXPECT_EQ(desktop.control().send({"--settings"})->exitStatus, 1);
    desktop.drain();
    EXPECT_EQ(desktop.surfaces().panelsMade(), panelsMade);
}

// Faults: a window higher than its screen, of which the buttons are out of reach; notes that
// neither the wheel nor the keys lead to; the keyboard on what is out of sight.
TEST_F(PermissionsGateTest, scrollsOnALowScreen)
{
    auto displays = desktop.model().displays;
    displays.front().frame = {0, 0, 800, 360};
    displays.front().visibleFrame = {};
    desktop.setDisplays({displays.front()});
    startWith(false, false);
    auto room = window()->bounds();
    EXPECT_LT(window()->frame().maxY(), 360 - 20) << "room for a title bar";
    EXPECT_GE(window()->frame().y, 0);
    EXPECT_TRUE(room.contains(element("Continue")->accessibleFrame()));
    auto last = "3. Click Continue once both rows show Granted.";
    EXPECT_FALSE(shows(last));
    const auto isScrollerShown = [&] {
        return std::ranges::any_of(window()->render().drawn<DrawnFill>(),
            [&](auto& fill) { return fill.rect.x > room.maxX() - OverlayScroller::kWidth; });
    };
    EXPECT_TRUE(isScrollerShown()) << "nobody would know that there is more";
    desktop.advance(OverlayScroller::kStays + OverlayScroller::kFades + seconds(0.1));
    EXPECT_FALSE(isScrollerShown());
    window()->scroll({100, 100}, -20);
    EXPECT_TRUE(shows(last));
    press(KeyCode::tab);
    press(KeyCode::tab, KeyModifier::shift);
    EXPECT_EQ(focused(), "Request Access");
    EXPECT_TRUE(room.contains(element("Request Access")->accessibleFrame()));
    EXPECT_FALSE(shows(last));
    press(KeyCode::pageDown);
    EXPECT_TRUE(shows(last));
}

// Faults: closing leaves a program that nobody sees; Escape, or a window that the program itself
// closes, ends it.
TEST_F(PermissionsGateTest, quitsWhenItIsClosedOrToldTo)
{
    startWith(true, false);
    press(KeyCode::escape);
    desktop.drain();
    ASSERT_TRUE(window());
    EXPECT_FALSE(hasQuit());
    window()->clickCloseButton();
    EXPECT_FALSE(window());
    desktop.drain();
    EXPECT_TRUE(hasQuit());
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0u);

    FakeDesktop another;
    another.accessibility().setTrusted(false);
    runtime.reset();
    runtime = std::make_unique<Runtime>(another.platform());
    QuorvelApp::launch(*runtime);
    for (auto* element : another.surfaces().window()->elements()) {
        if (element->accessibleState().name == "Quit")
            element->performAccessibleAction(0);
    }
    another.drain();
    EXPECT_TRUE(another.program().isTerminated());
    runtime.reset();
}

// Faults: a button that Tab does not reach, or a dead one that it does; Return that does nothing,
// or presses what it should not; a press that is let go elsewhere counts.
TEST_F(PermissionsGateTest, isUsedWithTheKeyboardAlone)
{
    startWith(true, true, LaunchPermissionsState{});
    std::string order;
    for (int stop = 0; stop < 6; ++stop) {
        order += focused() + ", ";
        press(KeyCode::tab);
    }
    EXPECT_EQ(order,
        "Request Access, Open Settings, Request Access, Open Settings, Quit, Request Access, ");
    desktop.surfaces().pressElsewhere({5, 5});
    EXPECT_EQ(focused(), "");
    window()->makeKeyAndOrderFront();
    EXPECT_EQ(focused(), "Open Settings") << "it goes on where it was";
    press(KeyCode::tab, KeyModifier::shift);
    auto strokes = window()->render().drawn<DrawnStroke>();
    auto ring = std::ranges::find(strokes, 2.0, &DrawnStroke::width);
    ASSERT_NE(ring, strokes.end());
    EXPECT_TRUE(ring->visible.contains(element("Request Access")->accessibleFrame()));

    window()->press(element("Request Access")->accessibleFrame().centre());
    window()->release({1, 1});
    EXPECT_FALSE(shows("Granted"));
    press(KeyCode::enter);
    EXPECT_TRUE(element("Accessibility, Granted"));
    EXPECT_EQ(focused(), "Check Again");
    press(KeyCode::tab);
    press(KeyCode::tab);
    press(KeyCode::space);
    EXPECT_TRUE(element("Screen Recording, Granted"));
    EXPECT_EQ(desktop.accessibility().prompts() + desktop.screenCapture().requests(), 0)
        << "a rehearsal asks nobody";
    press(KeyCode::enter);
    desktop.drain();
    EXPECT_TRUE(isRunning());
    EXPECT_FALSE(window());

    startWith(true, true, LaunchPermissionsState{true, true});
    while (focused() != "Quit")
        press(KeyCode::tab);
    press(KeyCode::enter);
    desktop.drain();
    EXPECT_FALSE(isRunning());
    EXPECT_TRUE(hasQuit());

    startWith(true, false, LaunchPermissionsState{true, true});
    EXPECT_FALSE(canContinue()) << "what is missing in earnest is not rehearsed";
}

// Faults: a side that does not turn round, or parts that overlap; a look that keeps half of the old
// one.
TEST_F(PermissionsGateTest, followsTheLookAndTheDirection)
{
    startWith(true, false);
    auto width = window()->bounds().width;
    auto before = window()->elements();
    std::vector<Rect> frames;
    for (auto* each : before)
        frames.push_back(each->accessibleFrame());
    window()->forgetPaints();
    desktop.program().setAppearance({.isDark = true, .isRightToLeft = true});
    desktop.drain();
    ASSERT_THAT(window()->paints(), Not(IsEmpty()));
    EXPECT_EQ(window()->paints().back().damage, window()->bounds());
    auto after = window()->elements();
    ASSERT_EQ(before, after) << "read in the same order";
    for (std::size_t index = 0; index < after.size(); ++index)
        EXPECT_NEAR(after[index]->accessibleFrame().x, width - frames[index].maxX(), 1)
            << after[index]->accessibleState().name;
    std::vector<Rect> placed;
    for (auto* each : after) {
        if (each->accessibleChildren().empty())
            placed.push_back(each->accessibleFrame());
    }
    for (auto& one : placed) {
        EXPECT_TRUE(window()->bounds().contains(one));
        EXPECT_EQ(
            std::ranges::count_if(placed, [&](auto& other) { return one.intersects(other); }), 1);
    }
}

// Faults: a word that is not understood begins something else than was asked for; users find it in
// the help, or start a program from it that asks another one.
TEST(PermissionsRehearsalTest, isAskedForOnTheCommandLine)
{
    using Outcome = std::variant<CommandLine, ControlReply>;
    auto parse = [](const std::vector<std::string>& arguments) -> Outcome {
        return CommandLine::parse(arguments);
    };
    const std::string option = "--show-permissions-gate";
    auto rehearsal = [&](const std::string& granted) {
        return std::get<CommandLine>(parse({option + granted})).permissionsRehearsal;
    };
    EXPECT_EQ(rehearsal(""), LaunchPermissionsState{});
    EXPECT_EQ(rehearsal("=screen-recording"), (LaunchPermissionsState{false, true}));
    EXPECT_EQ(rehearsal("=screen-recording,accessibility"), (LaunchPermissionsState{true, true}));
    for (auto& wrong : {std::vector{option + "=screen"}, {option + "s"}, {option, "--state"}})
        EXPECT_EQ(std::get<ControlReply>(parse(wrong)).exitStatus, 2);
    EXPECT_THAT(std::get<ControlReply>(parse({"--help"})).output, Not(HasSubstr("permissions")));
    EXPECT_FALSE(std::get<CommandLine>(parse({})).permissionsRehearsal);
}

}
