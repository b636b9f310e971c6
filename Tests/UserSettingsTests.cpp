#include "Quorvel/Core/UserSettings.h"

#include "Quorvel/Core/UserSettingsCoding.h"
#include "Quorvel/SettingsRequest.h"
#include "Tests/Support/BarFixture.h"
#include "Tests/Support/SettingsFixture.h"

namespace quorvel::test {

namespace {

using UserSettingsTest = SettingsFixture;
using Status = LoginItem::Status;

UserSettingsData defaults()
{
    return UserSettingsData::defaults(std::nullopt);
}

}

// MARK: What a file means

TEST_F(UserSettingsTest, whatAFileDoesNotSayIsAsOnTheFirstStart)
{
    for (auto* file :
        {"{}", R"({"barSize": null, "hideDock": null, "pinnedApps": null, "new": [1]})",
            R"({"more": null})", R"({"more": {"numberKeys": null, "new": [1]}})", "\xEF\xBB\xBF{}"})
        EXPECT_EQ(start(file).data().value(), defaults()) << file;
    settle();
    EXPECT_EQ(desktop.files().writes(), 0) << "reading is no change";

    for (auto [version, theme] : {std::pair{25, "frosted"}, {26, "longhorn"}, {27, "frosted"}}) {
        desktop.program().setSystemVersion(version);
        EXPECT_EQ(start("{}").data().value().theme, theme);
        EXPECT_EQ(rawValue(start(R"({"theme": "glass"})").theme()), theme);
    }
}

// Faults: a field that is stored under another's name, left out, or read back as something else.
TEST_F(UserSettingsTest, everyFieldIsStoredUnderItsNameAndReadBack)
{
    start();
    settings->setBarSize(BarSize::xxl);
    settings->setTheme(BarTheme::aero);
    settings->setScrollUpSpaceSwitch(SpaceScrollUpBehavior::right);
    settings->setHotkeyKeyCode(0xFFFFFFFF);
    settings->setHotkeyModifiers(0);
    settings->setGroupWindowsByApp(false);
    settings->setShowChipTitles(false);
    settings->setShowWindowNamesInChips(false);
    settings->setHideDock(true);
    settings->setShowOnAllDisplays(true);
    settings->setRunAtLogin(true);
    settings->setNumberKeys(true);
    settings->setNumberKeyModifiers(0x900);
    settings->setPinnedApps({{"com.example.mail", 3}, {"/opt/\"x\"/é", 1}});
    settle();

    EXPECT_EQ(published, 14);
    EXPECT_EQ(file(), R"({
  "barSize": "xxl",
  "groupWindowsByApp": false,
  "hideDock": true,
  "hotkeyKeyCode": 4294967295,
  "hotkeyModifiers": 0,
  "more": {
    "numberKeyModifiers": 2304,
    "numberKeys": true
  },
  "pinnedApps": [
    {
      "d": 3,
      "id": "com.example.mail"
    },
    {
      "d": 1,
      "id": "/opt/\"x\"/é"
    }
  ],
  "runAtLogin": true,
  "scrollUpSpaceSwitch": "right",
  "settingsVersion": 1,
  "showChipTitles": false,
  "showOnAllDisplays": true,
  "showWindowNamesInChips": false,
  "theme": "aero"
}
)");
    auto written = settings->data().value();
    EXPECT_EQ(start().data().value(), written);
    settings->setData(defaults());
    settle();
    EXPECT_THAT(file(), Not(HasSubstr("more"))) << "as before there was more";
}

// Fault: a shortcut that was taken away is written as null, which another version rejects.
TEST_F(UserSettingsTest, aShortcutThatIsTakenAwayIsAbsent)
{
    start();
    settings->setHotkeyKeyCode(4);
    settle();
    settings->setHotkeyKeyCode(std::nullopt);
    settle();
    EXPECT_THAT(file(), Not(HasSubstr("hotkeyKeyCode")));
}

// Faults: a number or text taken for a boolean, a number cut to fit, half of a bad file believed.
TEST_F(UserSettingsTest, oneWrongValueRejectsTheWholeFile)
{
    for (std::string wrong : {R"("hideDock": "yes")", R"("hideDock": 1)", R"("barSize": 2)",
             R"("hotkeyKeyCode": true)", R"("hotkeyKeyCode": -1)", R"("hotkeyKeyCode": 4294967296)",
             R"("hotkeyKeyCode": 1.5)", R"("hotkeyKeyCode": 1e300)", R"("settingsVersion": "1")",
             R"("settingsVersion": 9223372036854775808)", R"("pinnedApps": {})",
             R"("pinnedApps": [null])", R"("pinnedApps": [{"id": "a"}])",
             R"("pinnedApps": [{"id": "a", "d": null}])", R"("pinnedApps": [{"id": 1, "d": 1}])",
             R"("theme": "\ud800")", "\"theme\": \"\xff\"", R"("theme": ["aero"])",
             R"("more": true)", R"("more": {"numberKeys": 1})"}) {
        EXPECT_EQ(start(R"({"barSize": "xl", "runAtLogin": true, )" + wrong + "}").data().value(),
            defaults())
            << wrong;
    }
    for (std::string malformed : {"", " ", "null", "[]", "{", "{} {}", R"({"barSize": "xl",})"})
        EXPECT_EQ(start(malformed).data().value(), defaults()) << malformed;
    EXPECT_EQ(desktop.loginItem().requests(), 0) << "a rejected file asks for nothing";

    EXPECT_EQ(start(R"({"hotkeyKeyCode": 49.0, "settingsVersion": -7})").hotkeyKeyCode(), 49U);
    EXPECT_EQ(settings->data().value().settingsVersion, -7);
}

TEST_F(UserSettingsTest, aPathologicalFileIsRejectedWithoutHarm)
{
    auto nested = [](std::size_t depth) {
        return R"({"barSize": "xl", "x": )" + std::string(depth, '[') + std::string(depth, ']')
            + "}";
    };
    EXPECT_EQ(start(nested(5)).barSize(), BarSize::xl);
    EXPECT_EQ(start(nested(200'000)).data().value(), defaults());
    EXPECT_EQ(start(R"({"x": )" + std::string(200'000, '[')).data().value(), defaults());
    EXPECT_EQ(
        start("{\"barSize\": \"xl\"}" + std::string(5'000'000, ' ')).data().value(), defaults())
        << "larger than anything of ours";
    EXPECT_EQ(start("{\"" + std::string(3'000'000, 'k') + "\": 1}").data().value(), defaults());
}

TEST_F(UserSettingsTest, whatThisVersionDoesNotKnowIsKept)
{
    start(R"({"barSize": "huge", "theme": "glass", "scrollUpSpaceSwitch": "up",
        "settingsVersion": 12})");
    EXPECT_EQ(settings->barSize(), BarSize::medium);
    EXPECT_EQ(settings->theme(), BarTheme::frosted);
    EXPECT_EQ(settings->scrollUpSpaceSwitch(), SpaceScrollUpBehavior::left);
    EXPECT_THAT(desktop.program().warnings(),
        ElementsAre(HasSubstr("no barSize \"huge\"; \"medium\" holds"), HasSubstr("\"glass\""),
            HasSubstr("\"up\"")));
    EXPECT_EQ(answerSettingsRequest(*settings, {"--get", "theme"}).output, "\"frosted\"\n");
    EXPECT_THAT(answerSettingsRequest(*settings, {"--get"}).output, HasSubstr("\"medium\""));

    settings->setHideDock(true);
    settle();
    for (auto* text : {"\"huge\"", "\"glass\"", "\"up\"", "\"settingsVersion\": 12"})
        EXPECT_THAT(file(), HasSubstr(text));
}

// MARK: When it is written

TEST_F(UserSettingsTest, aRowOfChangesIsOneWriteHalfASecondAfterTheLast)
{
    start();
    settings->setBarSize(BarSize::medium);
    settings->setHotkeyKeyCode(std::nullopt);
    settings->setPinnedApps({});
    settings->setData(settings->data().value());
    EXPECT_EQ(published, 0);
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0U);

    for (auto size : {BarSize::small, BarSize::large, BarSize::xl}) {
        desktop.advance(seconds(0.4));
        settings->setBarSize(size);
        EXPECT_EQ(settings->barSize(), size) << "at once";
    }
    desktop.advance(seconds(0.499));
    EXPECT_EQ(desktop.files().writes(), 0);
    desktop.advance(seconds(0.001));
    EXPECT_EQ(desktop.files().writes(), 1);
    EXPECT_EQ(published, 3);
    EXPECT_EQ(start().barSize(), BarSize::xl);
}

// Faults: a change lost on quitting, or one made by an observer; a file written for nothing.
TEST_F(UserSettingsTest, quittingSavesAtOnceAndOnlyWhatHasChanged)
{
    start(R"({"barSize": "bad)");
    desktop.program().terminate();
    EXPECT_EQ(file(), R"({"barSize": "bad)") << "left as it is until something changes";

    FakeDesktop other;
    auto platform = other.platform();
    UserSettings quitting(platform.files, platform.loginItem, platform.application,
        platform.dispatch, platform.trace);
    auto ending = quitting.data().subscribe([&](auto&) { other.program().terminate(); });
    quitting.setHideDock(true);
    EXPECT_THAT(other.files().bytes(kFile).value_or(""), HasSubstr("\"hideDock\": true"));
    EXPECT_EQ(other.dispatch().pendingTimers(), 0U);
}

// Two bars of one user on two displays. Faults: the pins of one thrown away with a setting of the
// other, a field that a newer version or a hand wrote, a shortcut that does not stay cleared.
TEST_F(UserSettingsTest, aSaveWritesOnlyWhatThisBarHasChanged)
{
    start(R"({"hotkeyKeyCode": 4, "theme": "aero",
        "more": {"numberKeys": true, "new": 1}})")
        .setHotkeyKeyCode(std::nullopt);
    FakeDesktop elsewhere;
    auto platform = elsewhere.platform();
    UserSettings other(desktop.files(), platform.loginItem, platform.application, platform.dispatch,
        platform.trace);
    other.setPinnedApps({{"mail", 3}});
    ASSERT_TRUE(other.saveChanges());
    settle();
    desktop.files().put(kFile, R"({"x": null, )" + file().substr(1)); // by hand
    settings->setBarSize(BarSize::xl);
    settle();
    other.setHideDock(true);
    other.setNumberKeyModifiers(256);
    ASSERT_TRUE(other.saveChanges());

    EXPECT_THAT(file(), HasSubstr("\"new\": 1"));
    EXPECT_THAT(file(), HasSubstr("\"x\": null"));
    auto found = start().data().value();
    EXPECT_EQ(found.pinnedApps, other.pinnedApps());
    EXPECT_EQ(found.barSize, "xl");
    EXPECT_EQ(found.theme, "aero");
    EXPECT_EQ(found.hotkeyKeyCode, std::nullopt);
    EXPECT_TRUE(found.hideDock);
    EXPECT_EQ(found.more, (MoreSettings{true, 256}));
}

// MARK: When the disk fails

TEST_F(UserSettingsTest, theProgramGoesOnWhateverTheDiskDoes)
{
    using Step = FakeFiles::Step;
    auto& disk = desktop.files();
    const std::vector<std::pair<const char*, std::function<void(bool)>>> faults{
        {"full", [&](bool on) { disk.setFull(on); }},
        {"read-only", [&](bool on) { disk.setReadOnly(on); }},
        {"write", [&](bool on) { disk.setFailing(on ? std::set{Step::write} : std::set<Step>{}); }},
    };
    start("{}");
    std::size_t told = 0;
    for (auto& [name, set] : faults) {
        auto before = file();
        set(true);
        settings->setBarSize(settings->barSize() == BarSize::xl ? BarSize::small : BarSize::xl);
        settle();
        settings->saveChanges();
        EXPECT_EQ(file(), before) << name;
        EXPECT_THAT(desktop.program().warnings(), SizeIs(++told)) << "once";
        set(false);
        settings->setHideDock(!settings->hideDock());
        settle();
        EXPECT_EQ(decodeUserSettings(file(), {}), settings->data().value())
            << name << ": the next save has everything";
    }
    disk.setFull(true);
    settings->setBarSize(BarSize::large);
    settle();
    disk.setFull(false);
    desktop.program().terminate();
    EXPECT_EQ(start().barSize(), BarSize::large) << "quitting tries once more";
}

TEST_F(UserSettingsTest, withoutAFolderTheSettingsLiveInMemory)
{
    desktop.files().setSupportFolder("/file/in the way");
    desktop.files().put("/file", "");
    start().setBarSize(BarSize::xl);
    settle();
    desktop.files().setSupportFolder(std::nullopt);
    start().setBarSize(BarSize::xl);
    settle();
    EXPECT_EQ(settings->barSize(), BarSize::xl);
    EXPECT_EQ(desktop.files().writes(), 0);

    desktop.files().setSupportFolder("/new");
    desktop.files().setFailing({FakeFiles::Step::createFolder});
    start();
    desktop.files().setFailing({});
    settings->setBarSize(BarSize::xl);
    settle();
    EXPECT_EQ(desktop.files().writes(), 1) << "made when it is needed";
}

// Faults: a file with a typo is lost, an older backup is lost, or a backup is made of a good file.
TEST_F(UserSettingsTest, aRejectedFileIsKeptBesideTheNewOneWhereTheHostSaysSo)
{
    auto& disk = desktop.files();
    start("first");
    EXPECT_THAT(desktop.program().warnings(), ElementsAre(HasSubstr(kFile)));
    disk.setFailing({FakeFiles::Step::rename});
    settings->setHideDock(true);
    settle();
    EXPECT_EQ(file(), "first") << "not overwritten while it cannot be kept";
    disk.setFailing({FakeFiles::Step::write});
    settings->setHideDock(false);
    settle();
    EXPECT_EQ(file(), "first") << "nor put aside while there is nothing in its place";
    EXPECT_THAT(desktop.program().warnings(), SizeIs(2)) << "and that it cannot be written";
    disk.setFailing({});
    settings->setHotkeyKeyCode(1);
    settle();
    settings->setHotkeyKeyCode(2);
    settle();
    start("second").setHideDock(true);
    settle();

    EXPECT_EQ(disk.bytes(std::string{kFile} + ".rejected"), "first");
    EXPECT_EQ(disk.bytes(std::string{kFile} + ".rejected-2"), "second");
    EXPECT_THAT(disk.list("/support/Quorvel"), SizeIs(3));
    EXPECT_TRUE(start().hideDock());
    EXPECT_THAT(desktop.program().warnings().back(), HasSubstr(".rejected-2"));

    disk.setKeepsRejectedFiles(false);
    start("third").setHideDock(true);
    settle();
    EXPECT_THAT(disk.list("/support/Quorvel"), SizeIs(3));
    EXPECT_TRUE(start().hideDock());
}

// MARK: The login item

TEST_F(UserSettingsTest, runAtLoginIsWhatTheSystemSays)
{
    auto& item = desktop.loginItem();
    start().setRunAtLogin(true);
    EXPECT_TRUE(settings->runAtLogin());
    EXPECT_EQ(item.status(), Status::enabled);
    settings->setRunAtLogin(true);
    EXPECT_EQ(item.requests(), 1);

    item.setRefuses(true);
    settings->setRunAtLogin(false);
    EXPECT_TRUE(settings->runAtLogin());
    EXPECT_EQ(published, 1);
    item.setStatus(Status::requiresApproval);
    settings->setRunAtLogin(true);
    EXPECT_FALSE(settings->runAtLogin()) << "asked for, and not granted yet";
}

TEST_F(UserSettingsTest, theStoredWishIsCarriedOutAtTheStartOrCorrected)
{
    auto& item = desktop.loginItem();
    start(R"({"runAtLogin": true})");
    EXPECT_EQ(item.status(), Status::enabled);
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0U);

    item.setStatus(Status::notRegistered);
    item.setRefuses(true);
    EXPECT_FALSE(start(R"({"runAtLogin": true})").runAtLogin());
    settle();
    EXPECT_THAT(file(), HasSubstr("\"runAtLogin\": false"));

    item.setStatus(Status::enabled);
    item.setRefuses(false);
    EXPECT_TRUE(start("unreadable").runAtLogin()) << "nobody asked for a change";
    EXPECT_EQ(item.status(), Status::enabled);
    EXPECT_EQ(file(), "unreadable");
}

// MARK: In the running program

namespace {

struct SettingsInTheBar : BarFixture {
    std::optional<ControlReply> ask(std::vector<std::string> arguments)
    {
        return desktop.control().send(arguments);
    }
    /// What is refused, and with which words.
    void expectRefusal(const std::string& assignment, const std::string& words)
    {
        auto before = runtime->userSettings().data().value();
        auto reply = ask({"--set", assignment});
        EXPECT_EQ(reply->exitStatus, 1) << assignment;
        EXPECT_THAT(reply->error, HasSubstr(words));
        EXPECT_EQ(reply->output, "");
        EXPECT_EQ(runtime->userSettings().data().value(), before);
    }
};

}

TEST_F(SettingsInTheBar, theBarHasItsStoredSizeAndFollowsAChangeAtOnce)
{
    auto inbox = desktop.open(desktop.launch(), {.title = "Inbox"});
    desktop.files().put(FakeFiles::kSettingsFile, R"({"barSize": "xl"})");
    start();
    EXPECT_EQ(panel().frame().height, barHeight(BarSize::xl));
    panel().press(chipFrame(inbox)->centre());
    EXPECT_EQ(ask({"--set", "barSize=small"})->exitStatus, 0);
    desktop.drain();
    EXPECT_EQ(panel(SpaceID{2}).frame().height, barHeight(BarSize::small));
    EXPECT_EQ(chipFrame(inbox)->height, barHeight(BarSize::small));
    panel().release(chipFrame(inbox)->centre());
    clickChip(inbox);
    EXPECT_TRUE(chip(inbox)->isFocused);
}

TEST_F(SettingsInTheBar, aScriptReadsAndSetsThem)
{
    start();
    EXPECT_EQ(ask({"--get", "barSize"})->output, "\"medium\"\n");
    EXPECT_EQ(ask({"--get", "hotkeyKeyCode"})->output, "null\n");
    EXPECT_THAT(ask({"--get"})->output, HasSubstr("\"hotkeyKeyCode\": null"));
    EXPECT_THAT(ask({"--get"})->output, HasSubstr("  \"numberKeys\": false,\n"))
        << "by its name alone, and what holds";
    EXPECT_EQ(ask({"--get", "colour"})->exitStatus, 1);

    for (auto [name, value] : {std::pair{"barSize", "large"}, {"theme", "\"aero\""},
             {"groupWindowsByApp", "true"}, {"hotkeyKeyCode", "49"}, {"hotkeyKeyCode", "null"},
             {"hotkeyModifiers", "0"}, {"numberKeys", "true"}, {"runAtLogin", "true"}}) {
        EXPECT_EQ(ask({"--set", fmt::format("{}={}", name, value)})->exitStatus, 0) << name;
        EXPECT_THAT(ask({"--get", name})->output, HasSubstr(value));
    }
    EXPECT_THAT(*desktop.files().bytes(FakeFiles::kSettingsFile), HasSubstr("\"large\""))
        << "saved when the reply comes";

    expectRefusal("colour=red", "no setting 'colour'");
    expectRefusal("=red", "no setting ''");
    expectRefusal("barSize=huge", "one of small, medium, large, xl, xxl");
    expectRefusal("barSize=", "one of small");
    expectRefusal("barSize=null", "one of small");
    expectRefusal("groupWindowsByApp=yes", "true or false");
    expectRefusal("groupWindowsByApp=1", "true or false");
    expectRefusal("groupWindowsByApp=null", "true or false");
    expectRefusal("numberKeys=1", "true, false or null");
    expectRefusal("hotkeyKeyCode=4294967296", "from 0 to 4294967295");
    expectRefusal("hotkeyKeyCode=\"49\"", "whole number");
    expectRefusal("settingsVersion=2", "cannot be set");
    expectRefusal("pinnedApps=[]", "cannot be set");
    expectRefusal("barSize", "FIELD=VALUE");
    desktop.loginItem().setRefuses(true);
    expectRefusal("runAtLogin=false", "refuses");
    desktop.files().setFull(true);
    auto reply = ask({"--set", "hideDock=true"});
    EXPECT_EQ(reply->exitStatus, 1);
    EXPECT_THAT(reply->error, HasSubstr("settings.json cannot be written"));
    EXPECT_TRUE(runtime->userSettings().hideDock());
}

}
