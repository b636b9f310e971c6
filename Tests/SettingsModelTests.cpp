// What the settings window shows, and what its changes do.
#include "Quorvel/Core/SettingsModel.h"

#include "Quorvel/Core/AppLauncher.h"
#include "Quorvel/Core/DockController.h"
#include "Quorvel/Core/HotkeyManager.h"
#include "Quorvel/Core/NumberKeys.h"
#include "Quorvel/Core/PinStore.h"
#include "Quorvel/Core/SettingsCoding.h"
#include "Quorvel/Core/UpdaterService.h"
#include "Quorvel/Core/UserSettingsCoding.h"
#include "Quorvel/Platform/KeyEvent.h"
#include "Tests/Support/SettingsFixture.h"

namespace quorvel::test {

namespace {

using Change = SettingsChange;

struct SettingsModelTest : SettingsFixture {
    std::unique_ptr<PinStore> pins;
    std::unique_ptr<AppLauncher> launcher;
    std::unique_ptr<HotkeyManager> hotkeys;
    std::unique_ptr<HotkeyManager> findHotkeys;
    std::unique_ptr<HotkeyManager> barHotkeys;
    std::unique_ptr<NumberKeys> numberKeys;
    std::unique_ptr<DockController> dock; ///< null: there is none
    std::unique_ptr<UpdaterService> updater; ///< null: there is none
    std::unique_ptr<SettingsModel> model;
    int descriptions = 0; ///< that were published
    Subscription watch;

    enum class System { plain, withDockAndUpdater };
    void open(const std::string& file = "{}", System system = System::plain)
    {
        model.reset();
        numberKeys.reset();
        barHotkeys.reset();
        findHotkeys.reset();
        hotkeys.reset();
        start(file);
        hotkeys
            = std::make_unique<HotkeyManager>(&desktop.hotkeys(), *settings, desktop.dispatch());
        findHotkeys = std::make_unique<HotkeyManager>(&desktop.hotkeys(), *settings,
            desktop.dispatch(), HotkeyPurpose::windows, std::vector{hotkeys.get()});
        barHotkeys = std::make_unique<HotkeyManager>(&desktop.hotkeys(), *settings,
            desktop.dispatch(), HotkeyPurpose::bar, std::vector{hotkeys.get(), findHotkeys.get()});
        numberKeys = std::make_unique<NumberKeys>(&desktop.hotkeys(),
            std::vector<const HotkeyManager*>{hotkeys.get(), findHotkeys.get(), barHotkeys.get()},
            *settings, desktop.dispatch());
        if (system == System::withDockAndUpdater) {
            auto platform = desktop.platform();
            dock = std::make_unique<DockController>(
                *platform.dockControl, platform.files, *settings, platform.dispatch);
            updater = std::make_unique<UpdaterService>(*platform.updater);
        }
        pins = std::make_unique<PinStore>(*settings);
        launcher = std::make_unique<AppLauncher>(desktop.platform());
        settle();
        model = std::make_unique<SettingsModel>(SettingsSubjects{.settings = *settings,
            .pinStore = *pins,
            .appLauncher = *launcher,
            .loginItem = desktop.loginItem(),
            .hotkeyManager = *hotkeys,
            .findHotkeyManager = *findHotkeys,
            .barHotkeyManager = *barHotkeys,
            .numberKeys = *numberKeys,
            .hotkeys = &desktop.hotkeys(),
            .dockController = dock.get(),
            .updaterService = updater.get()});
        watch = model->description().subscribe([this](auto&) { ++descriptions; });
    }
    const SettingsRow& row(const std::string& id)
    {
        static const SettingsRow none{.id = "none", .title = {}, .help = {}, .control = {}};
        auto* found = model->description().value().row(id);
        EXPECT_TRUE(found) << id;
        return found ? *found : none;
    }
    template <typename Control> Control control(const std::string& id)
    {
        auto* found = std::get_if<Control>(&row(id).control);
        EXPECT_TRUE(found) << id;
        return found ? *found : Control{};
    }
    template <typename What> std::string apply(What what)
    {
        auto refusal = model->apply({std::move(what)});
        return refusal ? refusal->reason : "";
    }
    std::string stored(const std::string& field)
    {
        return encodeUserSetting(settings->dataThatHolds(), field).value_or("no field");
    }
    std::vector<std::string> titles(const std::string& list)
    {
        std::vector<std::string> found;
        for (auto& item : control<SettingsList>(list).items)
            found.push_back(item.title);
        return found;
    }
};

}

// Faults: a field without a row, a row that changes another field, one that shows the old value, a
// value that is only offered.
TEST_F(SettingsModelTest, everyRowOfAFieldShowsItAndChangesIt)
{
    open("{}", System::withDockAndUpdater);
    std::set<std::string> fields;
    UserSettingsData::forEachSetting(
        settings->data().value(), [&](const char* name, auto&) { fields.insert(name); });
    for (auto* elsewhere :
        {"pinnedApps", "settingsVersion", "hotkeyKeyCode", "hotkeyModifiers", "numberKeyModifiers",
            "findKeyCode", "findModifiers", "barKeyCode", "barModifiers", "mendedMatches"})
        EXPECT_EQ(fields.erase(elsewhere), 1U);
    for (auto& field : fields) {
        SCOPED_TRACE(field);
        auto before = settings->dataThatHolds();
        if (std::holds_alternative<SettingsToggle>(row(field).control)) {
            bool isOn = control<SettingsToggle>(field).value;
            EXPECT_EQ(stored(field), isOn ? "true" : "false");
            for (bool value : {!isOn, isOn}) {
                EXPECT_EQ(apply(Change::Set{field, value}), "");
                EXPECT_EQ(stored(field), value ? "true" : "false");
                EXPECT_EQ(control<SettingsToggle>(field).value, value);
            }
        } else {
            auto initial = control<SettingsChoice>(field).value;
            for (auto& option : control<SettingsChoice>(field).options) {
                EXPECT_EQ(apply(Change::Set{field, option.value}), "");
                EXPECT_EQ(stored(field), "\"" + option.value + "\"");
                EXPECT_EQ(control<SettingsChoice>(field).value, option.value);
            }
            EXPECT_EQ(apply(Change::Set{field, initial}), "");
        }
        EXPECT_EQ(settings->dataThatHolds(), before) << "and nothing else";
    }
}

// Faults: a shortcut that is shown and does not work; bits that no shortcut has are stored; our own
// that acts instead of being recorded, or never again.
TEST_F(SettingsModelTest, theShortcutIsRecordedByEitherKindOfWindow)
{
    open();
    auto shown = [this] { return control<SettingsShortcut>("hotkey"); };
    EXPECT_EQ(shown().recordHelp, "Press a key combination with modifiers. Press Esc to cancel.");
    EXPECT_EQ(apply(Change::Record{{{0x10000 | 49, 0x400 | HotkeyModifier::option}}}), "");
    EXPECT_EQ(shown().value, (SettingsShortcut::Keys{49, HotkeyModifier::option}));
    EXPECT_EQ(shown().text, "⌥Space");
    EXPECT_EQ(shown().status, "");
    EXPECT_THAT(desktop.hotkeys().registered(), SizeIs(1));

    auto elsewhere = model->holdShortcuts();
    EXPECT_THAT(desktop.hotkeys().registered(), IsEmpty());
    desktop.hotkeys().takeElsewhere({40, HotkeyModifier::command});
    EXPECT_EQ(apply(Change::Record{{{40, HotkeyModifier::command}}}), "");
    elsewhere = {};
    EXPECT_EQ(shown().status, "Taken by another program");

    model->setRecordingRow("hotkey"); // in a window of this process
    EXPECT_TRUE(model->keyPressed(0, 0)) << "goes on";
    EXPECT_TRUE(model->keyPressed(4, KeyModifier::control));
    EXPECT_EQ(model->recordingRow().value(), "");
    EXPECT_EQ(shown().text, "⌃H");
    EXPECT_EQ(shown().status, "");
    EXPECT_EQ(settings->hotkeyKeyCode(), 4U);
    EXPECT_EQ(apply(Change::Record{}), "");
    EXPECT_EQ(shown().value, std::nullopt);
    EXPECT_EQ(settings->hotkeyModifiers(), std::nullopt);
}

// Faults: one row records for the other, or both at once; both shortcuts on the same keys act, or
// which of them does depends on the order, or another program is blamed; the second is not free
// once the first has gone.
TEST_F(SettingsModelTest, theListOfWindowsHasAShortcutBesideTheFirstOne)
{
    open(R"({"hotkeyKeyCode": 49, "hotkeyModifiers": 2048})");
    auto shown = [this](auto* row) { return control<SettingsShortcut>(row); };
    model->setRecordingRow("hotkey");
    model->setRecordingRow("findHotkey");
    EXPECT_EQ(model->recordingRow().value(), "findHotkey");
    EXPECT_THAT(desktop.hotkeys().registered(), IsEmpty());
    EXPECT_TRUE(model->keyPressed(49, KeyModifier::option));
    EXPECT_EQ(model->recordingRow().value(), "");
    EXPECT_EQ(settings->data().value().more.findKeyCode, 49U);
    EXPECT_EQ(shown("findHotkey").status, "Taken by another shortcut of Quorvel");
    EXPECT_EQ(shown("hotkey").status, "");
    EXPECT_THAT(desktop.hotkeys().registered(), SizeIs(1));

    EXPECT_EQ(apply(Change::Record{{{40, HotkeyModifier::command}}, "findHotkey"}), "");
    EXPECT_EQ(shown("findHotkey").text, "⌘K");
    EXPECT_THAT(desktop.hotkeys().registered(), SizeIs(2));
    EXPECT_EQ(apply(Change::Record{{{40, HotkeyModifier::command}}}), "");
    EXPECT_EQ(shown("findHotkey").status, "Taken by another shortcut of Quorvel");
    EXPECT_EQ(apply(Change::Record{}), "");
    EXPECT_EQ(shown("findHotkey").status, "");
    EXPECT_EQ(apply(Change::Record{{}, "theme"}), "The running bar has no such setting.");
    EXPECT_EQ(apply(Change::Record{{}, "findHotkey"}), "");
    EXPECT_THAT(desktop.hotkeys().registered(), IsEmpty());
}

// Faults: a shortcut that is recorded for nothing, for ever at that; the same keys as for a list,
// of which one or the other acts; a row that does not say why it cannot be changed.
TEST_F(SettingsModelTest, theBarHasAShortcutWhileItHides)
{
    open(R"({"more": {"findKeyCode": 40, "findModifiers": 256}})");
    auto shown = [this] { return control<SettingsShortcut>("barHotkey"); };
    const Change::Record record{{{40, HotkeyModifier::command}}, "barHotkey"};
    EXPECT_FALSE(row("barHotkey").isEnabled);
    EXPECT_EQ(apply(record), "This cannot be changed at present.");
    EXPECT_EQ(apply(Change::Set{"autoHide", true}), "");
    EXPECT_EQ(apply(record), "");
    EXPECT_EQ(settings->data().value().more.barKeyCode, 40U);
    EXPECT_EQ(shown().text, "⌘K");
    EXPECT_EQ(shown().status, "Taken by another shortcut of Quorvel");
    EXPECT_EQ(apply(Change::Record{{}, "findHotkey"}), "");
    EXPECT_EQ(shown().status, "");
    EXPECT_THAT(desktop.hotkeys().registered(), SizeIs(1));
    model->setRecordingRow("barHotkey");
    EXPECT_EQ(apply(Change::Set{"autoHide", false}), "");
    EXPECT_EQ(model->recordingRow().value(), "");
    EXPECT_FALSE(hotkeys->isSuspended().value());
    EXPECT_EQ(shown().text, "⌘K") << "for the next time";
    EXPECT_THAT(desktop.hotkeys().registered(), IsEmpty());
}

// Faults: modifiers that a hand wrote into the file are lost or shown as others; a number that is
// kept where the host's own choice was meant.
TEST_F(SettingsModelTest, numberKeysHaveTheModifiersOfTheUsersChoice)
{
    open(R"({"more": {"numberKeyModifiers": 4608}})");
    auto shown = [this] { return control<SettingsChoice>("numberKeyModifiers"); };
    EXPECT_FALSE(row("numberKeyModifiers").isEnabled);
    EXPECT_EQ(apply(Change::Set{"numberKeys", true}), "");
    EXPECT_EQ(shown().value, "4608");
    EXPECT_EQ(shown().options.back().title, "⌃⇧1 to 9");
    EXPECT_EQ(shown().options.front().title, "⌘1 to 9") << "the host's own";
    EXPECT_EQ(apply(Change::Set{"numberKeyModifiers", "6144"}), "");
    EXPECT_EQ(settings->numberKeyModifiers(), HotkeyModifier::control | HotkeyModifier::option);
    EXPECT_NE(apply(Change::Set{"numberKeyModifiers", "4608"}), "") << "is offered no longer";
    EXPECT_NE(apply(Change::Set{"numberKeyModifiers", "4294973440"}), "") << "overflows";
    EXPECT_EQ(apply(Change::Set{"numberKeyModifiers", ""}), "");
    EXPECT_EQ(settings->numberKeyModifiers(), std::nullopt);
    for (auto none : {0U, HotkeyModifier::shift, 0x400U}) {
        settings->setNumberKeyModifiers(none);
        EXPECT_EQ(shown().value, "") << "the host's own hold";
    }
    settings->setNumberKeyModifiers(0x400 | HotkeyModifier::control);
    EXPECT_EQ(shown().value, "4096");
}

// Faults: a number key that does nothing and a row that does not say so, or goes on saying it; a
// window that is opened shows what was taken when the bar started.
TEST_F(SettingsModelTest, numberKeysThatAreTakenAreTold)
{
    constexpr auto command = HotkeyModifier::command;
    constexpr auto shift = HotkeyModifier::shift;
    for (auto key : NumberKeys::kKeyCodes)
        desktop.hotkeys().takeElsewhere({key, command | shift});
    desktop.hotkeys().takeElsewhere({19, command});
    desktop.hotkeys().takeElsewhere({20, command});
    open(R"({"more": {"numberKeys": true}})");
    auto help = [this] { return row("numberKeyModifiers").help; };
    EXPECT_EQ(help(), "Taken by another program: ⇧⌘1 to 9, ⌘2, ⌘3");
    desktop.hotkeys().giveBackElsewhere({19, command});
    EXPECT_EQ(help(), "Taken by another program: ⇧⌘1 to 9, ⌘3");
    desktop.hotkeys().giveBackUnnoticed({20, command});
    model->refresh();
    EXPECT_THAT(help(), HasSubstr("⌘3"));
    model->lookAgain();
    EXPECT_THAT(help(), Not(HasSubstr("⌘3")));
    EXPECT_EQ(apply(Change::Set{"numberKeyModifiers", "6144"}), "");
    EXPECT_EQ(help(), "");
}

// Faults: a value that no control offers is stored; a refusal that says nothing, or changes
// something.
TEST_F(SettingsModelTest, whatCannotBeIsRefusedWithAReason)
{
    open(R"({"showChipTitles": false})");
    desktop.loginItem().setRefuses(true);
    auto before = settings->data().value();
    for (auto& what :
        std::vector<decltype(Change::what)>{Change::Set{"theme", "glass"},
            Change::Set{"theme", true}, Change::Set{"theme", {}},
            Change::Set{"showOnAllDisplays", "true"}, Change::Set{"version", "2"},
            Change::Set{"colour", "red"}, Change::Set{"hideDock", true},
            Change::Set{"pinnedApps", "[]"}, Change::Set{"showWindowNamesInChips", false},
            Change::Set{"runAtLogin", true}, Change::Press{"theme"}, Change::Press{"nothing"},
            Change::Move{"theme", "x", 0}, Change::Remove{"reset", "x"}, Change::Record{{{49, 0}}},
            Change::Record{{{49, 0x400}}}, Change::Record{{{0x10000 | 53, HotkeyModifier::option}}},
            Change::Record{{{54, HotkeyModifier::option}}},
            Change::Record{{{63, HotkeyModifier::option}}}}) {
        auto refusal = model->apply({what});
        ASSERT_TRUE(refusal) << what.index();
        EXPECT_NE(refusal->reason, "");
        EXPECT_EQ(settings->data().value(), before);
    }
    EXPECT_FALSE(row("showWindowNamesInChips").isEnabled) << "there is no title to have a name in";

    desktop.loginItem().setStatus(LoginItem::Status::requiresApproval);
    EXPECT_THAT(apply(Change::Set{"runAtLogin", true}), HasSubstr("Login Items"));
    EXPECT_THAT(row("runAtLogin").help, HasSubstr("approval"));
    EXPECT_FALSE(control<SettingsToggle>("runAtLogin").value);
}

// Fault: the window goes on showing what was.
TEST_F(SettingsModelTest, changesFromElsewhereShowAtOnceAndEqualOnesDoNot)
{
    open(R"({"barSize": "huge"})");
    EXPECT_EQ(control<SettingsChoice>("barSize").value, "medium") << "what holds";
    settings->setTheme(BarTheme::aero);
    EXPECT_EQ(control<SettingsChoice>("theme").value, "aero");
    EXPECT_EQ(descriptions, 1);
    settle(); // the file is there now
    auto link = control<SettingsLink>("settingsFile");
    EXPECT_EQ(link.url, "file://" + std::string{kFile});
    descriptions = 0;
    settings->setTheme(BarTheme::aero);
    model->refresh();
    EXPECT_EQ(descriptions, 0);

    desktop.files().setFull(true);
    settings->setTheme(BarTheme::frosted);
    settle();
    EXPECT_THAT(row("settingsFile").help, HasSubstr("cannot be written"));
    desktop.files().setFull(false);
    settings->setTheme(BarTheme::aero);
    settle();
    EXPECT_EQ(row("settingsFile").help, kFile);

    desktop.files().setSupportFolder(std::nullopt);
    open();
    EXPECT_FALSE(model->description().value().row("settingsFile"));
    EXPECT_THAT(encodeSettingsNews(model->description().value()), HasSubstr("no place to save"));

    desktop.files().setSupportFolder("/my files");
    open();
    EXPECT_EQ(control<SettingsLink>("settingsFile").url, "file:///my%20files/Quorvel")
        << "there is no file before the first change";
}

// Faults: pins of one place moved with the other's, moved one too far, an application that is gone
// without a name.
TEST_F(SettingsModelTest, pinsAreNamedMovedAndRemovedPlaceByPlace)
{
    desktop.install("/Applications/Mail.app", {.identifier = "mail"});
    open(R"({"pinnedApps": [{"id": "mail", "d": 3}, {"id": "/opt/Lost.app", "d": 2},
        {"id": "b", "d": 1}, {"id": "c", "d": 1}]})");
    EXPECT_THAT(titles("pinsOnBar"), ElementsAre("Mail", "b", "c"));
    EXPECT_THAT(titles("pinsInLauncher"), ElementsAre("Mail", "Lost.app"));
    EXPECT_EQ(control<SettingsList>("pinsOnBar").items.front().icon, "/Applications/Mail.app");

    for (auto [to, order] : std::vector<std::pair<std::size_t, std::vector<std::string>>>{
             {1, {"b", "Mail", "c"}}, {2, {"b", "c", "Mail"}}, {2, {"b", "c", "Mail"}},
             {0, {"Mail", "b", "c"}}, {99, {"b", "c", "Mail"}}}) {
        EXPECT_EQ(apply(Change::Move{"pinsOnBar", "mail", to}), "");
        EXPECT_EQ(titles("pinsOnBar"), order) << to;
    }
    EXPECT_EQ(apply(Change::Move{"pinsOnBar", "/opt/Lost.app", 0}), "");
    EXPECT_THAT(titles("pinsOnBar"), ElementsAre("b", "c", "Mail")) << "is not on the bar";

    EXPECT_EQ(apply(Change::Remove{"pinsOnBar", "mail"}), "");
    EXPECT_THAT(titles("pinsOnBar"), ElementsAre("b", "c"));
    EXPECT_THAT(titles("pinsInLauncher"), Contains("Mail"));
}

// Faults: a mended match that the window does not show, goes on showing, or cannot remove; a list
// of none.
TEST_F(SettingsModelTest, mendedMatchesAreShownUntilTheyAreRemoved)
{
    desktop.install("/Applications/Mail.app", {.identifier = "mail"});
    open();
    auto* id = SettingsRowID::mendedMatches;
    EXPECT_FALSE(model->description().value().row(id));
    settings->setMendedMatches({{"class:a.A", "mail"}, {"class:b.B", "lost"}});
    EXPECT_THAT(titles(id), ElementsAre("Mail  \u2013  class:a.A", "lost  \u2013  class:b.B"));
    EXPECT_EQ(control<SettingsList>(id).items.front().icon, "/Applications/Mail.app");

    EXPECT_EQ(apply(Change::Remove{id, "class:a.A"}), "");
    EXPECT_THAT(settings->mendedMatches(), ElementsAre(Pair("class:b.B", "lost")));
    EXPECT_THAT(titles(id), SizeIs(1));
    EXPECT_EQ(apply(Change::Remove{id, "class:b.B"}), "");
    EXPECT_FALSE(model->description().value().row(id));
}

// Faults: a row where the system has no such thing; a Dock that nobody gets back.
TEST_F(SettingsModelTest, theDockAndUpdatesAreOfferedWhereThereAreAny)
{
    constexpr char marker[] = "/support/Quorvel/initialDockSettings.json";
    open();
    for (auto* id : {"hideDock", "restoreDock", "checkForUpdates"})
        EXPECT_FALSE(model->description().value().row(id)) << id;
    open("{}", System::withDockAndUpdater);
    EXPECT_FALSE(row("checkForUpdates").isEnabled);
    EXPECT_NE(apply(Change::Press{"checkForUpdates"}), "");
    desktop.updater().setCanCheck(true);
    EXPECT_EQ(apply(Change::Press{"checkForUpdates"}), "");
    EXPECT_EQ(desktop.updater().checks(), 1);

    EXPECT_EQ(apply(Change::Set{"hideDock", true}), "");
    EXPECT_TRUE(desktop.files().exists(marker));
    for (bool isSettingOn : {true, false}) {
        if (!isSettingOn) // and the Dock is hidden all the same
            desktop.files().put(marker, R"({"autoHideEnabled": false})");
        EXPECT_EQ(apply(Change::Press{"restoreDock"}), "");
        EXPECT_FALSE(settings->hideDock());
        EXPECT_FALSE(desktop.files().exists(marker)) << isSettingOn;
    }
}

// Faults: what the user has made himself is thrown away; a login item that stays; a button that
// does nothing.
TEST_F(SettingsModelTest, resetRestoresEverythingButThePins)
{
    open(R"({"barSize": "xl", "theme": "glass", "hotkeyKeyCode": 4, "hotkeyModifiers": 256,
        "showOnAllDisplays": true, "hideDock": true, "runAtLogin": true, "settingsVersion": 7,
        "pinnedApps": [{"id": "mail", "d": 3}]})");
    auto expected = settings->defaults();
    expected.pinnedApps = {{"mail", 3}};
    expected.settingsVersion = 7;
    EXPECT_TRUE(row("reset").isEnabled);
    EXPECT_EQ(apply(Change::Press{"reset"}), "");
    EXPECT_EQ(settings->data().value(), expected);
    EXPECT_EQ(desktop.loginItem().status(), LoginItem::Status::notRegistered);
    EXPECT_FALSE(row("reset").isEnabled);

    settings->setRunAtLogin(true);
    desktop.loginItem().setRefuses(true);
    EXPECT_NE(apply(Change::Press{"reset"}), "");
    EXPECT_TRUE(settings->runAtLogin());
}

// Faults: a member under another name than the window knows, an absent text that is sent as "".
TEST_F(SettingsModelTest, theDescriptionAndTheChangesCrossAsTheyAre)
{
    open(
        R"({"hotkeyKeyCode": 49, "hotkeyModifiers": 2048, "pinnedApps": [{"id": "\u00e9", "d": 1}]})");
    auto& description = model->description().value();
    auto line = encodeSettingsNews(description);
    EXPECT_EQ(decodeSettingsNews(line), SettingsNews{description});
    for (auto* part : {R"({"choices":[{"title":"Small","value":"small"})",
             R"("icon":"view-pin-symbolic","id":"pins")", R"("kind":"toggle")",
             R"("isEnabled":true,"kind":"shortcut")", R"("value":{"keyCode":49,"modifiers":2048})",
             R"("items":[{"id":"é","title":"é"}])", R"("movable":true)", R"("label":"Reset")",
             R"("url":"file://)"})
        EXPECT_THAT(line, HasSubstr(part));
    EXPECT_THAT(line, Not(HasSubstr(R"("help":"")")));

    using Request = std::optional<SettingsRequest>;
    EXPECT_EQ(decodeSettingsRequest(R"({"set":{"row":"theme","value":"aero"},"new":1})"),
        (Request{Change{Change::Set{"theme", "aero"}}}));
    EXPECT_EQ(decodeSettingsRequest(R"({"move":{"row":"a","item":"b","to":2}})"),
        (Request{Change{Change::Move{"a", "b", 2}}}));
    EXPECT_EQ(decodeSettingsRequest(R"({"record":{"keyCode":null}})"),
        (Request{Change{Change::Record{}}}));
    EXPECT_EQ(decodeSettingsRequest(R"({"record":{"keyCode":null,"row":"b"}})"),
        (Request{Change{Change::Record{{}, "b"}}}));
    EXPECT_EQ(decodeSettingsRequest(R"({"recording":true})"), (Request{SettingsRecording{true}}));
    EXPECT_EQ(decodeSettingsRequest(encodeSettingsRequest(SettingsQuestion{})),
        Request{SettingsQuestion{}});
    for (auto* nonsense : {"", "{", "[]", "null", "{}", R"({"set":{"row":"theme"}})",
             R"({"set":[]})", R"({"move":{"row":"a","item":"b","to":-1}})",
             R"({"record":{"keyCode":4294967296,"modifiers":0}})", R"({"recording":1})",
             R"({"ask":false})"})
        EXPECT_FALSE(decodeSettingsRequest(nonsense)) << nonsense;
}

}
