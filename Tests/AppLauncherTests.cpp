#include "Quorvel/Core/AppLauncher.h"

#include <gmock/gmock.h>

#include "Quorvel/Core/AppDiscovery.h"
#include "Tests/Support/FakeDesktop.h"

namespace quorvel::test {

using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr auto kTooSoon = AppLauncher::debounceInterval - seconds(0.001);

struct AppLauncherTest : testing::Test {
    void start()
    {
        launcher = std::make_unique<AppLauncher>(desktop.platform());
        change = launcher->allApps().subscribe([this](auto&) { ++published; });
        desktop.drain();
    }
    const std::vector<AppInfo>& apps() const { return launcher->allApps().value(); }
    std::vector<std::string> names() const
    {
        std::vector<std::string> all;
        for (auto& app : apps())
            all.push_back(app.name());
        return all;
    }
    std::vector<std::string> paths() const
    {
        std::vector<std::string> all;
        for (auto& app : apps())
            all.push_back(app.path().path);
        return all;
    }
    void install(const std::string& path, const std::string& id = {})
    {
        desktop.install(path, {.identifier = id.empty() ? std::nullopt : std::optional{id}});
    }

    FakeDesktop desktop;
    std::unique_ptr<AppLauncher> launcher;
    Subscription change;
    int published = 0;
};

const std::string kOwn = std::string{FakeBundles::kHome} + "/Applications";

}

// MARK: Discovery

TEST_F(AppLauncherTest, theFirstOfTheFoldersWinsAndOnlyTheUsersOwnIsWalked)
{
    install("/System/Applications/Mail.app", "mail");
    install("/Applications/Mail.app", "mail");
    install(kOwn + "/Mail.app", "mail");
    install("/Applications/Utilities/Console.app", "console");
    install("/Applications/Vendor/Tool.app", "tool");
    install("/System/Applications/Utilities/Disk.app", "disk");
    install("/System/Volumes/Preboot/Cryptexes/App/System/Applications/Safari.app", "safari");
    install(kOwn + "/a/b/c/Deep.app", "deep");
    install(kOwn + "/a/b/c/d/Deeper.app", "deeper");
    install(kOwn + "/Outer.app/Contents/Inner.app", "inner");
    install(kOwn + "/Outer.app", "outer");
    install("/System/Library/CoreServices/Finder.app", "finder");
    install("/System/Library/CoreServices/Dock.app", "dock");
    install("/elsewhere/Safari.app", "safari");
    install("/elsewhere/Chosen.app", "chosen");
    desktop.bundles().sources().extras.push_back({"/elsewhere/Safari.app"});
    desktop.bundles().sources().extras.push_back({"/elsewhere/Chosen.app"});
    desktop.bundles().sources().extras.push_back({"/elsewhere/Gone.app"});
    start();
    EXPECT_THAT(paths(),
        ElementsAre("/elsewhere/Chosen.app", "/Applications/Utilities/Console.app",
            kOwn + "/a/b/c/Deep.app", "/System/Applications/Utilities/Disk.app",
            "/System/Library/CoreServices/Finder.app", "/Applications/Mail.app",
            kOwn + "/Outer.app",
            "/System/Volumes/Preboot/Cryptexes/App/System/Applications/Safari.app"));
    EXPECT_EQ(published, 1);
}

// Faults: a name that is there and empty falls back; what is not offered lets a later copy in.
TEST_F(AppLauncherTest, anEntryTakesItsIdentityAndNameFromTheBundle)
{
    desktop.install("/Applications/1.app", {.identifier = "1", .displayName = "Seen", .name = "B"});
    desktop.install("/Applications/2.app", {.identifier = "2", .name = "Bundle"});
    desktop.install("/Applications/Some File.app", {.identifier = "3"});
    install("/Applications/No Bundle.app");
    desktop.install("/Applications/Nameless.app", {.identifier = ""});
    desktop.install("/Applications/5.app", {.identifier = "5", .displayName = "", .name = "B"});
    desktop.install("/Applications/6.app", {.identifier = "6", .isOffered = false});
    desktop.install(kOwn + "/5.app", {.identifier = "5", .displayName = "Later"});
    desktop.install(kOwn + "/6.app", {.identifier = "6", .displayName = "Later"});
    for (auto* none : {"/Applications/.app", "/Applications/Upper.APP", "/Applications/app",
             "/Applications/An.app.zip"})
        install(none);
    install("/Applications/Hidden.app");
    install(kOwn + "/hidden/Inside.app");
    desktop.bundles().setHidden("/Applications/Hidden.app");
    desktop.bundles().setHidden(kOwn + "/hidden");
    desktop.bundles().makeFolder("/Applications/Folder.app");
    start();
    EXPECT_THAT(names(), ElementsAre("Bundle", "Nameless", "No Bundle", "Seen", "Some File"));
    EXPECT_EQ(apps()[0].id(), "2");
    EXPECT_TRUE(apps()[0].hasBundleIdentifier());
    for (std::size_t index : {1U, 2U}) {
        EXPECT_EQ(apps()[index].id(), apps()[index].path().path);
        EXPECT_FALSE(apps()[index].hasBundleIdentifier());
    }
}

// Faults: which copy is listed depends on the order of the disk; equal names change places.
TEST_F(AppLauncherTest, ofTwoInOneFolderTheSameOneIsListedEachTime)
{
    install(kOwn + "/z/Copy.app", "copy");
    install(kOwn + "/b.app", "copy");
    desktop.install("/Applications/y.app", {.identifier = "y", .displayName = "same"});
    desktop.install("/Applications/x.app", {.identifier = "x", .displayName = "Same"});
    start();
    EXPECT_THAT(
        paths(), ElementsAre(kOwn + "/b.app", "/Applications/x.app", "/Applications/y.app"));
    EXPECT_EQ(apps()[1].nameOrder(), apps()[2].nameOrder());
    EXPECT_EQ(launcher->searchResults({apps()[2], apps()[1]}, "same").front(), apps()[2]);
}

TEST_F(AppLauncherTest, foldersThatCannotBeListedAreLeftOut)
{
    install("/Applications/One.app");
    install("/System/Applications/Two.app");
    install(kOwn + "/folder/Three.app");
    install(kOwn + "/other/Four.app");
    desktop.bundles().setUnreadable({"/System/Applications", kOwn + "/folder"});
    start();
    EXPECT_THAT(names(), ElementsAre("Four", "One"));
}

// Faults: a tree without an end, as where a folder links to its own parents; one folder with many
// others hides what lies beside it.
TEST_F(AppLauncherTest, aDiskFullOfFoldersComesToAnEnd)
{
    desktop.bundles().sources().folders = {{"/full", 1'000'000}, {"/later"}};
    for (std::size_t i = 0; i < AppDiscovery::kMostFolders; ++i)
        desktop.bundles().makeFolder("/full/a/" + std::to_string(i));
    install("/full/a/last/TooMuch.app");
    install("/full/First.app");
    install("/full/z/second.app");
    install("/later/Third.app");
    start();
    EXPECT_THAT(names(), ElementsAre("First", "second", "Third"));
}

// MARK: Threads

TEST_F(AppLauncherTest, discoveryRunsInTheBackgroundAndTheListIsSwappedOnTheMainThread)
{
    install("/Applications/One.app");
    bool isListedHalfway = false;
    std::set<std::string> threads;
    desktop.bundles().onQuestion = [&] {
        threads.insert(desktop.dispatch().currentLabel());
        isListedHalfway = isListedHalfway || !apps().empty();
    };
    launcher = std::make_unique<AppLauncher>(desktop.platform());
    EXPECT_THAT(apps(), IsEmpty());
    EXPECT_THAT(threads, IsEmpty());
    std::string thread;
    change
        = launcher->allApps().subscribe([&](auto&) { thread = desktop.dispatch().currentLabel(); });
    desktop.drain();
    EXPECT_EQ(thread, "main");
    EXPECT_THAT(threads, ElementsAre("com.quorvel.apps"));
    EXPECT_FALSE(isListedHalfway);
}

// Faults: a discovery, an event or a refresh that comes late finds no catalogue any more.
TEST_F(AppLauncherTest, aCatalogueThatIsGoneIsNotCalled)
{
    install("/Applications/One.app");
    launcher = std::make_unique<AppLauncher>(desktop.platform());
    launcher.reset();
    launcher = std::make_unique<AppLauncher>(desktop.platform());
    desktop.post([this] { launcher.reset(); }); // after the discovery, before its list arrives
    desktop.drain();
    EXPECT_EQ(launcher, nullptr);

    start();
    install("/Applications/Two.app");
    desktop.advance(AppLauncher::kEventLatency + kTooSoon);
    launcher.reset();
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0U);
    EXPECT_THAT(desktop.fileEvents().watched(), IsEmpty());
    desktop.advance(seconds(10));
}

// MARK: Changes

TEST_F(AppLauncherTest, aBurstOfChangesIsOneRefreshTwoSecondsAfterTheLast)
{
    install("/Applications/One.app");
    start();
    EXPECT_THAT(desktop.fileEvents().watched(), ElementsAre(ElementsAre("/Applications")));
    int looks = 0;
    desktop.bundles().onQuestion = [&] { ++looks; };
    for (int i = 0; i < 20; ++i) {
        install("/Applications/New " + std::to_string(i) + ".app");
        desktop.advance(seconds(0.3));
    }
    // Now it is 6.0 s. The change at 4.8 s was told of at 5.8 s, together with those after it.
    desktop.advance(kTooSoon - seconds(0.2));
    EXPECT_EQ(looks, 0);
    desktop.advance(seconds(0.001));
    EXPECT_THAT(apps(), SizeIs(21));
    EXPECT_EQ(published, 2);
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0U);
}

TEST_F(AppLauncherTest, installedRemovedAndRenamedApplicationsShowWithinFourSeconds)
{
    install("/Applications/One.app", "one");
    install(kOwn + "/sub/Two.app", "two");
    start();
    const auto before = apps().front();
    desktop.install("/Applications/One.app", {.identifier = "one", .displayName = "Uno"});
    install(kOwn + "/sub/Three.app", "three");
    desktop.uninstall(kOwn + "/sub/Two.app");
    desktop.advance(seconds(4));
    EXPECT_THAT(names(), ElementsAre("Three", "Uno"));
    EXPECT_EQ(apps().back(), before) << "the same application";
    EXPECT_EQ(before.name(), "One") << "a list that somebody holds does not change";

    published = 0;
    desktop.uninstall("/Applications"); // the whole folder
    desktop.advance(seconds(4));
    EXPECT_THAT(names(), ElementsAre("Three"));
    desktop.fileEvents().change("/Applications");
    desktop.advance(seconds(4));
    EXPECT_EQ(published, 1) << "nothing has changed";
}

TEST_F(AppLauncherTest, onlyFoldersThatExistAreWatchedUnlessTheSystemWaitsForThem)
{
    start();
    EXPECT_THAT(desktop.fileEvents().watched(), IsEmpty());
    launcher->refresh();
    install(kOwn + "/Late.app");
    desktop.drain();
    EXPECT_THAT(names(), ElementsAre("Late"));
    EXPECT_THAT(desktop.fileEvents().watched(), IsEmpty()) << "only once";

    desktop.bundles().sources().folders = {{"/none", 2, FolderWatch::always},
        {kOwn, 0, FolderWatch::whileItExists}, {"/gone", 0, FolderWatch::whileItExists}};
    start();
    EXPECT_THAT(desktop.fileEvents().watched(), ElementsAre(ElementsAre("/none", kOwn)));
}

TEST_F(AppLauncherTest, aSystemThatCannotWatchOnlyNeverRefreshes)
{
    install("/Applications/One.app");
    desktop.fileEvents().setRefuses(true);
    start();
    install("/Applications/Two.app");
    desktop.advance(seconds(10));
    EXPECT_THAT(names(), ElementsAre("One"));
    launcher->refresh();
    desktop.drain();
    EXPECT_THAT(names(), ElementsAre("One", "Two"));
}

// MARK: Icons

struct AppIconsTest : AppLauncherTest {
    AppIconsTest()
    {
        for (int i = 100; i < 400; ++i)
            install("/Applications/" + std::to_string(i) + ".app", "app" + std::to_string(i));
        start();
        arrivals = icons().didArrive.subscribe([this](auto& id) { arrived.push_back(id); });
    }
    AppIcons& icons() { return launcher->icons(); }
    std::string icon(std::size_t app, double scale = 1)
    {
        auto image = std::dynamic_pointer_cast<const FakeImage>(icons().icon(apps()[app], scale));
        return image ? image->name : "none";
    }
    const std::vector<std::string>& rendered() { return desktop.workspace().renderedIcons(); }

    Subscription arrivals;
    std::vector<std::string> arrived;
};

TEST_F(AppIconsTest, anIconIsRenderedOnceForAScaleWhenItIsFirstAskedFor)
{
    EXPECT_THAT(rendered(), IsEmpty()) << "none of 300 is seen";
    EXPECT_EQ(icon(0), "none");
    EXPECT_EQ(icon(0), "none");
    EXPECT_THAT(rendered(), IsEmpty()) << "not on the main thread";
    desktop.drain();
    EXPECT_THAT(arrived, ElementsAre("app100"));
    EXPECT_EQ(icon(0), "/Applications/100.app in 32");
    EXPECT_EQ(icon(0, 1.5), "none");
    desktop.drain();
    EXPECT_EQ(icon(0, 1.5), "/Applications/100.app in 48");
    EXPECT_EQ(icon(0), "/Applications/100.app in 32");
    desktop.drain();
    EXPECT_THAT(rendered(), SizeIs(2));
}

TEST_F(AppIconsTest, anIconThatCannotBeRenderedIsTheSystemsOwn)
{
    desktop.workspace().brokenIcons.insert("/Applications/100.app");
    icon(0);
    desktop.drain();
    EXPECT_EQ(icon(0), "/Applications/100.app");
    EXPECT_THAT(rendered(), SizeIs(1)) << "and not tried again";
}

// Faults: memory that grows with what was ever seen; what is in sight goes before what is not.
TEST_F(AppIconsTest, theIconsSeenLongestAgoMakeRoom)
{
    constexpr double kScale = 4; // 64 KB each
    for (std::size_t app = 0; app < apps().size(); ++app) {
        icon(0, kScale);
        icon(app, kScale);
        desktop.drain();
        EXPECT_LE(icons().bytes(), AppIcons::kMostBytes);
    }
    EXPECT_GT(icons().bytes(), AppIcons::kMostBytes * 9 / 10);
    EXPECT_NE(icon(0, kScale), "none");
    EXPECT_NE(icon(apps().size() - 1, kScale), "none");
    EXPECT_EQ(icon(1, kScale), "none");
    EXPECT_THAT(rendered(), SizeIs(apps().size()));
}

// Faults: the rows in sight wait until the icons of all rows that were scrolled past are there.
TEST_F(AppIconsTest, whatIsAskedForLastComesFirstAndWhatWasScrolledPastNotAtAll)
{
    for (std::size_t app = 0; app < apps().size(); ++app)
        icon(app);
    desktop.drain();
    EXPECT_THAT(rendered(), SizeIs(AppIcons::kMostWanted + 1)) << "and the first one";
    EXPECT_EQ(rendered()[1], apps().back().path().path);
    EXPECT_EQ(icon(1), "none");
    EXPECT_NE(icon(apps().size() - 1), "none");
}

// Faults: the old picture stays for ever; every row is blank until all are drawn anew.
TEST_F(AppIconsTest, anIconThatMayHaveChangedIsShownUntilTheNewOneIsThere)
{
    icon(0);
    icon(1);
    desktop.drain();
    arrived.clear();
    desktop.workspace().iconDidChange.emit("app100");
    EXPECT_THAT(arrived, ElementsAre("app100"));
    EXPECT_NE(icon(0), "none");
    EXPECT_NE(icon(1), "none");
    desktop.workspace().iconDidChange.emit("app100"); // while it is being rendered
    desktop.drain();
    EXPECT_THAT(rendered(), SizeIs(3));
    icon(0);
    desktop.drain();
    EXPECT_THAT(rendered(), SizeIs(4)) << "the one that was under way may be the old one";
    icon(0);
    desktop.drain();
    EXPECT_THAT(rendered(), SizeIs(4));

    install("/Applications/New.app"); // a theme, or an update of the application
    desktop.advance(seconds(4));
    EXPECT_EQ(arrived.back(), "") << "any of them";
    icon(1);
    desktop.drain();
    EXPECT_THAT(rendered(), SizeIs(5));
}

}
