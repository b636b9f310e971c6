#include "Quorvel/Core/DockController.h"

#include "Quorvel/Core/UpdaterService.h"
#include "Quorvel/Platform/Application.h"
#include "Quorvel/Quorvel.h"
#include "Tests/Support/SettingsFixture.h"

namespace quorvel::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Calls = std::vector<std::string>;

constexpr char kMarker[] = "/support/Quorvel/initialDockSettings.json";
constexpr char kHide[] = R"({"hideDock":true})";
constexpr char kShow[] = R"({"hideDock":false})";

const Calls kHiding{"auto-hide true", "autohide-delay 1000", "synchronise", "no-bouncing true",
    "synchronise", "restart"};
const Calls kRestoring{"auto-hide false", "autohide-delay 0.2", "synchronise", "no-bouncing false",
    "synchronise", "restart"};

struct Crash { };

struct DockControllerTest : SettingsFixture {
    FakeDock& dock = desktop.dock();
    std::unique_ptr<DockController> controller;

    DockController& begin(const std::string& settingsFile)
    {
        auto platform = desktop.platform();
        controller.reset();
        start(settingsFile);
        controller = std::make_unique<DockController>(
            *platform.dockControl, platform.files, *settings, platform.dispatch);
        return *controller;
    }
    std::string marker() { return desktop.files().bytes(kMarker).value_or("none"); }
    Calls callsAfterDrain()
    {
        desktop.drain();
        return dock.takeCalls();
    }

    /// Lets the program crash after the given number of changes; whether it came so far.
    bool crashesAfter(int changes, const std::function<void()>& action)
    {
        auto count = [&changes] {
            if (--changes == 0)
                throw Crash{};
        };
        dock.setAfterCall(count);
        desktop.files().setAfterChange(count);
        bool hasCrashed = false;
        try {
            action();
        } catch (Crash) {
            hasCrashed = true;
        }
        dock.setAfterCall([] { });
        desktop.files().setAfterChange([] { });
        controller.reset();
        dock.forgetUnsynchronised();
        return hasCrashed;
    }
};

}

// Faults: steps in another order, the Dock restarted before its preferences are stored, or twice;
// a marker that says what the program did and not what the user had.
TEST_F(DockControllerTest, hidesAndRestoresInOrderAndKeepsTheUsersOwnState)
{
    begin(kHide);
    EXPECT_EQ(marker(), "{\n  \"autoHideEnabled\": false\n}\n");
    EXPECT_EQ(callsAfterDrain(), kHiding);
    EXPECT_TRUE(dock.isOutOfReach());

    settings->setBarSize(BarSize::large);
    EXPECT_THAT(callsAfterDrain(), IsEmpty()) << "another setting";
    settings->setHideDock(false);
    EXPECT_EQ(marker(), "none");
    EXPECT_EQ(callsAfterDrain(), kRestoring);

    dock.setAutoHideEnabled(true);
    dock.takeCalls();
    settings->setHideDock(true);
    EXPECT_EQ(callsAfterDrain(), kHiding);
    settings->setHideDock(false);
    EXPECT_EQ(callsAfterDrain().front(), "auto-hide true") << "as the user had it";
}

// Faults: a start that touches a Dock that is as it should be; "1000" taken for any delay, or a
// preference of another type for a number.
TEST_F(DockControllerTest, aStartChangesOnlyWhatIsNotAsItShouldBe)
{
    begin(kShow);
    EXPECT_THAT(callsAfterDrain(), IsEmpty());

    auto startWith = [&](bool autoHide, Preferences::Value delay, Preferences::Value noBouncing) {
        dock.setAutoHideEnabled(autoHide);
        dock.setPreference(DockController::delayKey, delay);
        dock.setPreference(DockController::noBouncingKey, noBouncing);
        dock.takeCalls();
        begin(kHide);
        return callsAfterDrain();
    };
    EXPECT_THAT(startWith(true, 1000.00005, true), IsEmpty());
    EXPECT_THAT(startWith(true, 1000.0, 1.0), IsEmpty()) << "a number where a flag is meant";
    EXPECT_EQ(marker(), "none");
    EXPECT_EQ(startWith(true, 1000.0, false), kHiding);
    EXPECT_EQ(startWith(true, 999.0, true), kHiding);
    EXPECT_EQ(startWith(false, 1000.0, true), kHiding);
    EXPECT_EQ(startWith(true, Preferences::OtherType{}, true), kHiding);
    EXPECT_EQ(startWith(true, 1000.0, Preferences::Missing{}), kHiding);
    EXPECT_EQ(marker(), "{\n  \"autoHideEnabled\": true\n}\n") << "as first captured";
}

// Fault: the Dock is hidden without a way back.
TEST_F(DockControllerTest, doesNothingWithoutAMarkerThatCanBeWrittenOrRead)
{
    desktop.files().setReadOnly(true);
    begin(kHide);
    EXPECT_THAT(callsAfterDrain(), IsEmpty());
    settings->setHideDock(false);
    settings->setHideDock(true);
    EXPECT_THAT(callsAfterDrain(), IsEmpty());

    desktop.files().setReadOnly(false);
    for (auto* bytes : {"", "{", "[true]", R"({"autoHideEnabled":1})", R"({"other":true})"}) {
        desktop.files().put(kMarker, bytes);
        begin(kShow).restore(/*synchronous=*/true);
        EXPECT_THAT(callsAfterDrain(), IsEmpty()) << bytes;
        EXPECT_EQ(marker(), bytes);
    }

    desktop.files().setSupportFolder(std::nullopt);
    begin(kHide);
    EXPECT_THAT(callsAfterDrain(), IsEmpty());
}

TEST_F(DockControllerTest, aDockWithoutPreferencesIsOnlySentAway)
{
    dock.setHasPreferences(false);
    begin(kHide);
    EXPECT_THAT(callsAfterDrain(), ElementsAre("auto-hide true", "restart"));
    EXPECT_EQ(controller->currentAutoHideDelay(), std::nullopt);
    EXPECT_EQ(controller->currentBounceEnabled(), std::nullopt);
    controller->restore(/*synchronous=*/false);
    EXPECT_THAT(callsAfterDrain(), ElementsAre("auto-hide false", "restart"));
}

// Faults: the Dock's end blocks the main thread; quitting at once leaves a Dock that never read its
// preferences.
TEST_F(DockControllerTest, theDockIsRestartedElsewhereUnlessAskedForAtOnce)
{
    begin(kHide);
    EXPECT_NE(dock.takeCalls().back(), "restart");
    controller->finishRestarts();
    EXPECT_THAT(dock.takeCalls(), ElementsAre("restart"));
    EXPECT_TRUE(dock.isOutOfReach()) << "nothing restores it when the bar ends";
    EXPECT_THAT(callsAfterDrain(), IsEmpty());
    controller->restore(/*synchronous=*/true);
    EXPECT_EQ(dock.takeCalls(), kRestoring);
}

// Fault: some order of steps after which a start takes the Dock as the program left it for the
// user's, or leaves it hidden. After a crash in the last step only the Dock has yet to read what is
// stored; it does when it next starts.
TEST_F(DockControllerTest, aStartRepairsWhatACrashLeavesAtAnyStep)
{
    constexpr int kLastStep = 6;
    auto expectShown = [&](int crash) {
        EXPECT_FALSE(dock.isAutoHideEnabled()) << crash;
        EXPECT_EQ(marker(), "none") << crash;
        if (crash == kLastStep)
            dock.restart();
        EXPECT_FALSE(dock.isOutOfReach()) << crash;
    };
    auto expectHiddenWithAWayBack = [&](int crash) {
        EXPECT_EQ(marker(), "{\n  \"autoHideEnabled\": false\n}\n") << crash;
        if (crash == kLastStep)
            dock.restart();
        EXPECT_TRUE(dock.isOutOfReach()) << crash;
    };
    auto startAgain = [&](const char* settingsFile) {
        begin(settingsFile);
        desktop.drain();
    };
    for (auto* next : {kHide, kShow}) {
        int crash = 1;
        for (; crashesAfter(crash, [&] { startAgain(kHide); }); ++crash) {
            startAgain(next);
            next == kHide ? expectHiddenWithAWayBack(crash) : expectShown(crash);
            startAgain(kShow);
            expectShown(crash);
        }
        EXPECT_EQ(crash, kLastStep + 1) << "each step of hiding once";
        startAgain(kHide);
        for (crash = 1; crashesAfter(crash, [&] { startAgain(kShow); }); ++crash) {
            startAgain(next);
            next == kHide ? expectHiddenWithAWayBack(crash) : expectShown(crash);
            startAgain(kHide);
            expectHiddenWithAWayBack(crash);
        }
        EXPECT_EQ(crash, kLastStep + 1) << "each step of restoring once";
        startAgain(kShow);
    }
}

// Faults: the services are not made at start-up, or the updater starts late, twice or before the
// permissions; a system without them ends the program.
TEST(DockAndUpdater, areThereFromTheStartWhereTheSystemHasThem)
{
    FakeDesktop desktop;
    desktop.files().put(FakeFiles::kSettingsFile, kHide);
    desktop.updater().setCanCheck(true);
    {
        Runtime runtime(desktop.platform());
        QuorvelApp::launch(runtime);
        desktop.dock().takeCalls();
        desktop.program().terminate();
        EXPECT_THAT(desktop.dock().takeCalls(), ElementsAre("restart")) << "the end waits for it";
        EXPECT_TRUE(desktop.dock().isOutOfReach());
        auto* updater = UpdaterService::shared();
        EXPECT_EQ(desktop.updater().starts(), 1);
        EXPECT_TRUE(updater->canCheckForUpdates.value());
        desktop.updater().setCanCheck(false);
        EXPECT_FALSE(updater->canCheckForUpdates.value());
        updater->checkForUpdates();
        EXPECT_EQ(desktop.updater().checks(), 1);
    }
    desktop.removeDockAndUpdater();
    Runtime runtime(desktop.platform());
    QuorvelApp::launch(runtime);
    EXPECT_EQ(DockController::shared(), nullptr);
    EXPECT_EQ(UpdaterService::shared(), nullptr);
    runtime.userSettings().setHideDock(false);
}

}
