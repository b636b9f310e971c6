#include <gmock/gmock.h>

#include "Hosts/MacOS/Rules/ApplicationPlaces.h"
#include "Hosts/MacOS/System/BundleInformation.h"
#include "Hosts/MacOS/System/CFValues.h"
#include "Hosts/MacOS/System/MacFileEvents.h"
#include "Tests/MacSystem/Support/MacFixture.h"

namespace quorvel::test {

using testing::ElementsAre;

namespace {

struct MacApplicationsTest : MacFixture { };

}

TEST_F(MacApplicationsTest, aBundleSaysWhatItsDictionaryHoldsAsText)
{
    mac.answer("/Applications/A.app",
        dictionary({{"CFBundleIdentifier", text("a")}, {"CFBundleDisplayName", number(3)},
            {"CFBundleName", text("")}}));
    BundleDescription expected;
    expected.identifier = "a";
    expected.name = "";
    EXPECT_EQ(bundleInformation("/Applications/A.app"), expected);
    EXPECT_EQ(bundleInformation("/Applications/None.app"), BundleDescription{});
    EXPECT_EQ(bundleInformation(""), BundleDescription{});
}

TEST_F(MacApplicationsTest, applicationsAreLookedForInFixedFoldersAndTheUsersOwn)
{
    const auto sources = applicationPlaces("/Users/me", ApplicationURL{"/x/Safari.app"});
    constexpr auto kWatched = FolderWatch::whileItExists;
    EXPECT_THAT(sources.folders,
        ElementsAre(ApplicationFolder{"/Applications", 0, kWatched},
            ApplicationFolder{"/System/Applications", 0, kWatched},
            ApplicationFolder{"/Applications/Utilities"},
            ApplicationFolder{"/System/Applications/Utilities"},
            ApplicationFolder{"/System/Volumes/Preboot/Cryptexes/App/System/Applications"},
            ApplicationFolder{"/Users/me/Applications", 3, kWatched}));
    EXPECT_THAT(sources.extras,
        ElementsAre(ApplicationURL{"/System/Library/CoreServices/Finder.app"},
            ApplicationURL{"/x/Safari.app"}));
}

// Faults: a callback after the end; a stream that could not start is stopped all the same.
TEST_F(MacApplicationsTest, aStreamOfFileEventsLivesAsLongAsItsSubscription)
{
    MacFileEvents events;
    int changes = 0;
    auto watch = events.watch({"/a", "/b"}, seconds(1), [&] { ++changes; });
    ASSERT_TRUE(watch);
    std::vector<std::string> paths;
    forEachIn(arrayFrom(mac.watched.paths.get()),
        [&](CFTypeRef path) { paths.push_back(textFrom(path).value()); });
    EXPECT_THAT(paths, ElementsAre("/a", "/b"));
    EXPECT_TRUE(mac.watched.isFromNow);
    EXPECT_EQ(mac.watched.latency, 1);
    EXPECT_EQ(mac.watched.flags, 17U);
    mac.changeFiles();
    EXPECT_EQ(changes, 1);
    watch.reset();
    mac.changeFiles();
    EXPECT_EQ(changes, 1);

    mac.answer("FSEventStreamStart", {});
    EXPECT_FALSE(events.watch({"/a"}, seconds(1), [] { }));
    mac.answer("FSEventStreamCreate", {});
    EXPECT_FALSE(events.watch({"/a"}, seconds(1), [] { }));
    mac.watched = {};
}

}
