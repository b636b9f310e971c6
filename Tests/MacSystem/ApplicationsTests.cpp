#include <gmock/gmock.h>

#include "Hosts/MacOS/Rules/ApplicationPlaces.h"
#include "Hosts/MacOS/System/BundleInformation.h"
#include "Hosts/MacOS/System/CFText.h"
#include "Hosts/MacOS/System/CFValues.h"
#include "Hosts/MacOS/System/MacFileEvents.h"
#include "Tests/MacSystem/Support/MacFixture.h"

namespace quorvel::test {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct MacText final : CFText {
    Size measure(std::string_view, const TextStyle&) const override { return {}; }
    LineLayout lineLayout(std::string_view, const TextStyle&) const override { return {}; }
};

struct MacApplicationsTest : MacFixture {
    MacText letters;
};

}

// Faults: offsets counted in UTF-16; a text that is no UTF-8 is no string there, and null.
TEST_F(MacApplicationsTest, textIsCutIntoCharactersByBytes)
{
    EXPECT_THAT(letters.characterEnds("aé€"), ElementsAre(1, 3, 6));
    EXPECT_THAT(letters.characterEnds("e\u0301👍🏽!"), ElementsAre(3, 11, 12));
    EXPECT_THAT(letters.characterEnds("a\xFF\xC3"), ElementsAre(1, 2, 3));
    EXPECT_THAT(letters.characterEnds(""), IsEmpty());
}

TEST_F(MacApplicationsTest, textIsFoldedComparedAndClassified)
{
    EXPECT_EQ(letters.fold("ÀＢＣ"), "abc");
    EXPECT_EQ(letters.fold("か\u3099"), "が") << "as a file name on an old disk";
    EXPECT_EQ(letters.fold("\xFF"), "\xFF");
    EXPECT_EQ(letters.compare("alpha", "ALPHA"), std::weak_ordering::equivalent);
    EXPECT_EQ(letters.compare("alpha", "Beta"), std::weak_ordering::less);
    EXPECT_EQ(letters.compare("gamma", "Beta"), std::weak_ordering::greater);
    EXPECT_EQ(letters.compare("\xFF", "a"), std::weak_ordering::greater);
    using enum CharacterClass;
    const std::pair<char32_t, CharacterClass> expected[]{{U'a', lowerCaseLetter},
        {U'Ж', upperCaseLetter}, {U'ǅ', otherLetter}, {U'か', otherLetter}, {U'٣', decimalDigit},
        {U'Ⅳ', otherNumber}, {U'½', otherNumber}, {U'\u0301', other}, {U'-', other}};
    for (auto [point, kind] : expected)
        EXPECT_EQ(letters.classOf(point), kind) << static_cast<std::uint32_t>(point);
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
    EXPECT_FALSE(events.watch({"/a"}, seconds(1), [] {}));
    mac.answer("FSEventStreamCreate", {});
    EXPECT_FALSE(events.watch({"/a"}, seconds(1), [] {}));
    mac.watched = {};
}

}
