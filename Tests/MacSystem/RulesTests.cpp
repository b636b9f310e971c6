#include "Hosts/MacOS/Rules/DropOperation.h"
#include "Hosts/MacOS/Rules/KeyRoute.h"
#include "Hosts/MacOS/Rules/KeyTable.h"
#include "Hosts/MacOS/Rules/KeyboardSession.h"
#include "Hosts/MacOS/Rules/MenuSession.h"
#include "Hosts/MacOS/Rules/PanelSlide.h"
#include "Hosts/MacOS/Rules/PanelTraits.h"
#include "Hosts/MacOS/Rules/PointerSession.h"
#include "Hosts/MacOS/Rules/ProgramArguments.h"
#include "Hosts/MacOS/Rules/ScrollTranslation.h"
#include "Hosts/MacOS/Rules/SettingsControls.h"
#include "Hosts/MacOS/Rules/StandardShortcut.h"
#include "Tests/MacSystem/Support/AppKitPanel.h"
#include "Tests/MacSystem/Support/PanelClient.h"
#include "Tests/Support/Matchers.h"

namespace quorvel::test {

namespace {

struct MacRulesTest : testing::Test {
    FakeDesktop desktop;
    AppKitPanel panel{desktop};
    PanelClient client;
    Queue& mainQueue = desktop.dispatch().main();
};

}

TEST_F(MacRulesTest, aPanelHasOneTraitOfEachKindThatTheSystemKnows)
{
    using namespace behavior;
    const std::vector<std::uint64_t> alternatives{kCanJoinAllSpaces | kMoveToActiveSpace,
        kManaged | kTransient | kStationary,
        kFullScreenPrimary | kFullScreenAuxiliary | kFullScreenNone,
        kPrimary | kAuxiliary | kCanJoinAllApplications};
    for (auto kind : {PanelKind::bar, PanelKind::fullscreenProxy, PanelKind::popup, PanelKind::menu,
             PanelKind::launcher, PanelKind::window, PanelKind::edge}) {
        const auto traits = PanelTraits::of(kind);
        const bool isOrdinary = kind == PanelKind::window;
        for (auto bits : alternatives)
            EXPECT_LE(std::popcount(traits.collectionBehavior & bits), 1);
        EXPECT_EQ(traits.isTitled, isOrdinary);
        EXPECT_EQ(bool(traits.collectionBehavior & (kCanJoinAllApplications | kIgnoresCycle)),
            !isOrdinary)
            << "Stage Manager, Command-`";
        EXPECT_EQ(traits.isClosable, traits.keys != PanelTraits::Keys::onRequest) << "Command-W";
        EXPECT_EQ(traits.hasOwnSpace,
            !(traits.collectionBehavior & (kCanJoinAllSpaces | kMoveToActiveSpace)));
        const bool isSaidToTheSystem
            = kind == PanelKind::fullscreenProxy || kind == PanelKind::edge;
        EXPECT_EQ(traits.ignoresMouse.has_value(), isSaidToTheSystem);
        EXPECT_EQ(traits.ignoresMouse.value_or(false), kind == PanelKind::fullscreenProxy);
        EXPECT_EQ(bool(traits.collectionBehavior & kFullScreenAuxiliary),
            kind != PanelKind::bar && kind != PanelKind::edge);
    }
}

// Faults: the client draws its ring although the keys go elsewhere; it is told of an end that had
// no beginning; the panel stays key after the end.
TEST_F(MacRulesTest, theKeyboardIsTheClientsOnceTheSystemHasHadItsSay)
{
    KeyboardSession keyboard{panel, client, mainQueue, PanelTraits::Keys::onRequest};
    EXPECT_FALSE(keyboard.take()) << "nobody would see what the keys do";
    panel.orderIn();
    keyboard.take();
    keyboard.keyDidChange(true);
    EXPECT_FALSE(keyboard.isHeld());
    keyboard.keyDidChange(false); // the server gave it to somebody else
    desktop.advance(KeyboardSession::kPatience);
    EXPECT_FALSE(keyboard.isWanted());
    EXPECT_THAT(client.keyboard, IsEmpty());

    keyboard.take();
    desktop.advance(KeyboardSession::kPatience);
    EXPECT_TRUE(keyboard.isHeld());
    keyboard.release();
    EXPECT_FALSE(panel.isKeyNow);
    EXPECT_THAT(client.keyboard, ElementsAre(true, false));

    panel.mayBecomeKey = false;
    keyboard.take();
    desktop.advance(KeyboardSession::kPatience);
    EXPECT_FALSE(keyboard.isWanted());
    EXPECT_THAT(client.keyboard, ElementsAre(true, false));
}

// Faults: a launcher stays open over what the user turned to before the keys were known to be its
// own, or after they came late; it is told twice.
TEST_F(MacRulesTest, whereTheKeysMatterMostEveryLossIsTold)
{
    panel.orderIn();
    KeyboardSession keyboard{panel, client, mainQueue, PanelTraits::Keys::fromTheStart};
    keyboard.take();
    keyboard.keyDidChange(false);
    EXPECT_THAT(client.keyboard, ElementsAre(false)) << "before the confirmation";

    panel.mayBecomeKey = false;
    keyboard.take();
    desktop.advance(KeyboardSession::kPatience);
    keyboard.keyDidChange(true);
    keyboard.keyDidChange(false);
    EXPECT_THAT(client.keyboard, ElementsAre(false, false)) << "keys that came late";

    panel.mayBecomeKey = true;
    keyboard.take();
    desktop.advance(KeyboardSession::kPatience);
    keyboard.keyDidChange(false);
    EXPECT_THAT(client.keyboard, ElementsAre(false, false, true, false));
}

// Faults: the settings have no keys after the user has been elsewhere; they ask again and again for
// what they have; a window cannot be the key one, or a bar can that nobody has allowed to; a field
// gets the keys of the launcher's list, or goes on losing its own when that has closed.
TEST_F(MacRulesTest, whatThePanelIsDecidesWhatBeingTheKeyWindowMeans)
{
    using Keys = PanelTraits::Keys;
    panel.orderIn();
    KeyboardSession window{panel, client, mainQueue, Keys::whenKey};
    EXPECT_TRUE(window.mayBecomeKey());
    for (int turns : {1, 2}) {
        panel.isKeyNow = true;
        window.keyDidChange(true);
        window.keyDidChange(true);
        EXPECT_EQ(panel.turnsToContent, turns);
        desktop.advance(KeyboardSession::kPatience);
        EXPECT_TRUE(window.isHeld());
        window.keyDidChange(false);
    }
    EXPECT_THAT(client.keyboard, ElementsAre(true, false, true, false));
    EXPECT_FALSE(panel.clientSeesKeysFirst);

    KeyboardSession bar{panel, client, mainQueue, Keys::onRequest};
    EXPECT_FALSE(bar.mayBecomeKey());
    bar.keyDidChange(true);
    EXPECT_FALSE(bar.isWanted()) << "a click on it";
    bar.setCanBecomeKey(true);
    EXPECT_TRUE(bar.mayBecomeKey());

    KeyboardSession launcher{panel, client, mainQueue, Keys::fromTheStart};
    launcher.keyDidChange(true);
    EXPECT_TRUE(panel.clientSeesKeysFirst);
    launcher.keyDidChange(false);
    EXPECT_FALSE(panel.clientSeesKeysFirst);
}

// Faults: a chip stays lit after its bar went with its space; a hover timer sleeps; the program is
// kept awake for ever.
TEST_F(MacRulesTest, thePointerLeavesWithItsSurfaceAndTheProgramIsAwakeWhileItIsThere)
{
    auto awake = std::make_shared<int>();
    PointerSession pointer{client, mainQueue, [&] { return Subscription{awake}; }};
    const auto holds = [&] { return awake.use_count() - 1; };

    pointer.moved({1, 1}, 0);
    pointer.entered({1, 1});
    EXPECT_THAT(client.heard, ElementsAre(PointerAction::entered, PointerAction::moved));
    EXPECT_EQ(holds(), 1);
    pointer.surfaceDidGo();
    pointer.surfaceDidGo();
    pointer.exited({0, 0});
    EXPECT_EQ(client.losses, 2);
    EXPECT_EQ(client.heard.size(), 2u);
    pointer.entered({2, 2});
    desktop.advance(PointerSession::kAwakeAfterwards);
    EXPECT_EQ(holds(), 1) << "it is there again";
    pointer.exited({0, 0});
    EXPECT_EQ(holds(), 1) << "what leaving sets off";
    pointer.dragged({-5, -5}, 0);
    desktop.advance(PointerSession::kAwakeAfterwards);
    EXPECT_EQ(holds(), 0) << "a drag that left it does not hold it";
}

// Faults: a Control-click that ends without Control presses with one button and lets another go; so
// does one that the right button comes into; a button for "back" closes windows as the middle one.
TEST_F(MacRulesTest, aButtonMeansTheSameUntilItIsLetGo)
{
    using enum PointerButton;
    PointerSession pointer{client, mainQueue, [] { return Subscription{}; }};
    constexpr auto left = PointerSession::kLeft, right = PointerSession::kRight;
    pointer.pressed(left, {}, KeyModifier::control | KeyModifier::shift);
    pointer.pressed(right, {}, 0);
    pointer.released(right, {}, 0);
    pointer.released(left, {}, 0);
    EXPECT_THAT(client.buttons, testing::Each(secondary));
    client.buttons.clear();
    pointer.pressed(left, {}, KeyModifier::command);
    pointer.released(left, {}, KeyModifier::control);
    pointer.pressed(PointerSession::kMiddle, {}, KeyModifier::control);
    pointer.pressed(3, {}, 0);
    EXPECT_THAT(client.buttons, ElementsAre(primary, primary, middle));
}

// Faults: a bar that slides is seen on the display below, or its upper part goes first; one that
// has gone leaves a line of itself at the edge.
TEST_F(MacRulesTest, aBarSlidesBehindTheEdgeItStandsOn)
{
    const Rect frame{100, 900, 1000, 40};
    const auto half = PanelSlide::of(frame, 0.5), gone = PanelSlide::of(frame, 1);
    EXPECT_EQ(half.panel, (Rect{100, 900, 1000, 20}));
    EXPECT_EQ(half.content, (Rect{0, -20, 1000, 40}));
    EXPECT_FALSE(half.isGone);
    EXPECT_EQ(PanelSlide::of(frame, 0.99).panel.height, 1) << "AppKit has no panels below";
    EXPECT_EQ(gone.panel, (Rect{100, 900, 1000, 1}));
    EXPECT_EQ(gone.content.maxY(), 0);
    EXPECT_TRUE(gone.isGone);
}

// Faults: the action runs under the open menu; a program that ends waits for the user to close a
// menu; a menu opens inside the loop of the one that it replaces.
TEST_F(MacRulesTest, aMenuIsClosedBeforeItsActionAndGoesWhenAnotherOneComesOrTheProgramEnds)
{
    Signal<> willTerminate;
    std::vector<std::string> log;
    const auto note = [&](std::string text) { return [&log, text] { log.push_back(text); }; };
    const auto nothing = [] { };
    const auto make = [&](std::string name) {
        const auto closed = [&log, name](MenuEnding ending) {
            log.push_back(name + (ending == MenuEnding::chosen ? " chosen" : " closed"));
        };
        auto session = std::make_shared<MenuSession>(mainQueue, closed);
        session->add(note(name + " acts"));
        return session;
    };
    OpenMenu menu{willTerminate};
    const auto first = make("1");
    menu.open(first, note("1 begins"));
    const auto chooseFirst = [&] {
        first->choose(0);
        return MenuEnding::chosen;
    };
    first->run(chooseFirst, nothing);
    EXPECT_THAT(log, ElementsAre("1 begins"));
    desktop.drain();
    EXPECT_THAT(log, ElementsAre("1 begins", "1 chosen", "1 acts"));
    first->choose(0); // some systems say it late
    desktop.drain();
    EXPECT_EQ(log.back(), "1 acts");

    log.clear();
    const auto second = make("2"), third = make("3"), fourth = make("4");
    menu.open(second, nothing);
    second->run(
        [&] {
            second->choose(0);
            menu.open(third, note("3 begins"));
            menu.open(fourth, note("4 begins"));
            log.emplace_back("2 goes");
            return MenuEnding::chosen;
        },
        note("2 is told"));
    const auto show = [&] {
        log.emplace_back("3 is shown");
        return MenuEnding::dismissed;
    };
    third->run(show, nothing);
    desktop.drain();
    EXPECT_THAT(log, ElementsAre("2 is told", "2 goes", "4 begins", "3 closed", "2 closed"));

    log.clear();
    const auto endProgram = [&] {
        willTerminate.emit();
        return MenuEnding::escaped;
    };
    fourth->run(endProgram, note("4 is told"));
    const auto late = make("5");
    menu.open(late, note("5 begins"));
    desktop.drain();
    EXPECT_THAT(log, ElementsAre("4 is told", "4 closed", "5 closed"));
}

// Faults: after Escape the keys do not go back to where they were; after a press elsewhere they do.
TEST_F(MacRulesTest, aMenuThatAKeyEndedWasEscaped)
{
    constexpr std::uint64_t leftMouseDown = 1, none = 0;
    EXPECT_EQ(MenuSession::endingOf(true, MenuSession::kKeyDown), MenuEnding::chosen) << "Return";
    EXPECT_EQ(MenuSession::endingOf(false, MenuSession::kKeyDown), MenuEnding::escaped);
    EXPECT_EQ(MenuSession::endingOf(false, leftMouseDown), MenuEnding::dismissed);
    EXPECT_EQ(MenuSession::endingOf(false, none), MenuEnding::dismissed);
}

// Faults: a field without a menu bar cannot paste; a Cyrillic layout has no shortcuts; Return
// chooses an application while it should choose a character.
TEST_F(MacRulesTest, keysReachTheFieldOrThePanelTheyAreFor)
{
    const auto command = [](std::string typed, std::uint64_t more = 0) {
        return standardActionOf({.characters = std::move(typed),
            .charactersIgnoringModifiers = "ф",
            .modifiers = KeyModifier::command | more});
    };
    EXPECT_EQ(command("w"), StandardAction::close);
    EXPECT_EQ(command("x"), StandardAction::cut);
    EXPECT_EQ(command("c"), StandardAction::copy);
    EXPECT_EQ(command("v"), StandardAction::paste);
    EXPECT_EQ(command("a"), StandardAction::selectAll);
    EXPECT_EQ(command("z"), StandardAction::undo);
    EXPECT_EQ(command("Z", KeyModifier::shift), StandardAction::redo);
    EXPECT_EQ(command("v", KeyModifier::shift), std::nullopt);
    EXPECT_EQ(command("v", KeyModifier::option), std::nullopt);
    EXPECT_EQ(command("q"), std::nullopt);
    EXPECT_EQ(standardActionOf({.characters = "v"}), std::nullopt);

    EXPECT_TRUE((KeyRoute{true, true, false}.asksClientFirst()));
    EXPECT_FALSE((KeyRoute{true, true, true}.asksClientFirst()));
    EXPECT_FALSE((KeyRoute{true, false, false}.asksClientFirst()));
    EXPECT_FALSE((KeyRoute{false, true, false}.asksClientFirst()));
}

// Faults: an arrow types a character that no font has, and a letter just outside their range types
// nothing; a shortcut without modifiers is none because the key is an arrow; a menu shows the wrong
// of two Delete keys.
TEST_F(MacRulesTest, aKeyThatTypesNothingHasNoText)
{
    constexpr std::uint64_t numericPad = 1 << 21, function = 1 << 23, rightShift = 4;
    const auto shift = KeyModifier::shift;
    const auto up
        = keyEventOf({126, "\uF700", "\uF700", numericPad | function | shift | rightShift});
    EXPECT_EQ(up.keyCode, KeyCode::up);
    EXPECT_EQ(up.characters + up.charactersIgnoringModifiers, "");
    EXPECT_EQ(up.modifiers, shift);
    const auto menu = keyEventOf({110, "\uF735", "\uF735", function, true});
    EXPECT_TRUE(menu.asksForMenu());
    EXPECT_TRUE(menu.isRepeat);
    EXPECT_EQ(menu.characters, "");
    EXPECT_EQ(keyEventOf({0, "\uF747"}).characters, "");
    for (const char* text : {"\uF6FF", "\uF748", "abc", "o\\@", "\uF700\uF700", "\r", ""})
        EXPECT_EQ(keyEventOf({0, text}).characters, text);

    EXPECT_EQ(menuCharacterOf(KeyCode::enter), u'\r');
    EXPECT_EQ(menuCharacterOf(KeyCode::backspace), u'\b');
    EXPECT_EQ(menuCharacterOf(KeyCode::forwardDelete), u'\uF728');
    EXPECT_EQ(menuCharacterOf(KeyCode::up), 0);
}

// Faults: a wheel that turns fast switches many spaces; a gesture that the system cancels, or ends
// with its last step, never ends; fingers that rest before they scroll begin one; momentum counts
// as one more gesture.
TEST_F(MacRulesTest, aWheelTurnsByNotchesAndFingersBeginAndEnd)
{
    const auto wheel = scrollEventOf({.deltaX = -0.1, .deltaY = 12, .isDirectionInverted = true});
    EXPECT_EQ(wheel.unit, ScrollUnit::notches);
    EXPECT_EQ(wheel.deltaX, -1);
    EXPECT_EQ(wheel.deltaY, 1);
    EXPECT_TRUE(wheel.isDirectionInverted);
    EXPECT_EQ(scrollEventOf({}).deltaY, 0);

    const auto fingers = [](std::uint64_t phase, std::uint64_t momentum = 0) {
        return scrollEventOf(
            {.deltaY = -2.5, .hasPreciseDeltas = true, .phase = phase, .momentumPhase = momentum});
    };
    EXPECT_EQ(fingers(scroll::kBegan).phase, ScrollPhase::began);
    EXPECT_EQ(fingers(scroll::kBegan).unit, ScrollUnit::points);
    EXPECT_EQ(fingers(scroll::kChanged).deltaY, -2.5);
    EXPECT_EQ(fingers(scroll::kChanged).phase, ScrollPhase::changed);
    EXPECT_EQ(fingers(scroll::kChanged | scroll::kEnded).phase, ScrollPhase::ended);
    EXPECT_EQ(fingers(scroll::kCancelled).phase, ScrollPhase::ended);
    EXPECT_FALSE(fingers(scroll::kEnded).isMomentum);
    for (auto resting : {scroll::kMayBegin, scroll::kStationary})
        EXPECT_EQ(fingers(resting).phase, ScrollPhase::none);
    const auto momentum = fingers(0, scroll::kBegan);
    EXPECT_EQ(momentum.phase, ScrollPhase::none);
    EXPECT_TRUE(momentum.isMomentum);
}

// Faults: controls made anew under the user's pointer for each change of a value; a row that shows
// another's; something dropped or moved one place too far; a key that is held empties a list.
TEST_F(MacRulesTest, controlsOfTheSettingsStayWhileTheirRowsAreTheSame)
{
    SettingsRow row{.id = "a", .title = "A", .help = {}, .control = SettingsToggle{true}};
    SettingsRow choice{.id = "b",
        .title = "B",
        .help = {},
        .control = SettingsChoice{"x", {{"x", "X"}, {"y", "Y"}}}};
    SettingsDescription made{"1", {{"page", "Page", "", {{"group", "Group", "", {row, choice}}}}}};
    auto changed = [&](auto change) {
        auto other = made;
        change(other.pages[0].groups[0].rows);
        return haveSameControls(made, other);
    };
    EXPECT_TRUE(changed([](auto& rows) {
        rows[0].control = SettingsToggle{false};
        rows[0].help = "help";
        std::get<SettingsChoice>(rows[1].control).value = "y";
    }));
    EXPECT_FALSE(changed([](auto& rows) { rows.pop_back(); }));
    EXPECT_FALSE(changed([](auto& rows) { std::swap(rows[0], rows[1]); }));
    EXPECT_FALSE(changed([](auto& rows) { rows[0].control = SettingsText{"text"}; }));
    EXPECT_FALSE(
        changed([](auto& rows) { std::get<SettingsChoice>(rows[1].control).options.pop_back(); }));

    EXPECT_EQ(placeAfterDrop(0, 2), 1U);
    EXPECT_EQ(placeAfterDrop(2, 0), 0U);
    EXPECT_EQ(placeAfterDrop(1, 1), 1U);
    EXPECT_EQ(
        listKeyOf({.keyCode = KeyCode::up, .modifiers = KeyModifier::option}), ListKey::moveUp);
    EXPECT_EQ(listKeyOf({.keyCode = KeyCode::up}), std::nullopt) << "it selects";
    EXPECT_EQ(listKeyOf({.keyCode = KeyCode::backspace}), ListKey::remove);
    EXPECT_EQ(listKeyOf({.keyCode = KeyCode::backspace, .isRepeat = true}), std::nullopt);
    EXPECT_EQ(placeAfterKey(ListKey::moveUp, 0, 2), std::nullopt);
    EXPECT_EQ(placeAfterKey(ListKey::moveUp, 1, 2), 0U);
    EXPECT_EQ(placeAfterKey(ListKey::moveDown, 0, 2), 1U);
    EXPECT_EQ(placeAfterKey(ListKey::moveDown, 1, 2), std::nullopt);
    EXPECT_EQ(symbolNameOf("view-pin-symbolic"), "pin");
    EXPECT_EQ(symbolNameOf("unknown"), "");
}

TEST_F(MacRulesTest, dropsArgumentsAndVersionsAreWhatTheSystemMeans)
{
    EXPECT_EQ(dropOperation(drag::kCopy | drag::kGeneric | drag::kMove), drag::kGeneric);
    EXPECT_EQ(dropOperation(drag::kCopy), drag::kCopy) << "Option is held, or only a copy is given";
    EXPECT_EQ(dropOperation(drag::kLink), drag::kLink);
    EXPECT_EQ(dropOperation(drag::kMove | drag::kDelete | drag::kPrivate), drag::kNone);

    EXPECT_THAT(withoutSystemArguments({"-NSTreatUnknownArgumentsAsOpen", "NO", "--set",
                    "barSize=large", "-AppleLanguages", "(ar)", "-NSShowNonLocalizedStrings",
                    "--trace", "-psn_0_12345", "-ApplePersistenceIgnoreState"}),
        ElementsAre("--set", "barSize=large", "--trace"));
    EXPECT_EQ(systemMajorVersion(15), 15);
    EXPECT_EQ(systemMajorVersion(16), 26);
    EXPECT_EQ(systemMajorVersion(26), 26);
    EXPECT_EQ(systemMajorVersion(27), 27);
}

}
