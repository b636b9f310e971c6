#include "Quorvel/Core/PinStore.h"

#include "Tests/Support/SettingsFixture.h"

namespace quorvel::test {

namespace {

constexpr auto kBar = PinDestination::bar;
constexpr auto kLauncher = PinDestination::launcher;

struct PinStoreTest : SettingsFixture {
    /// A letter for each pin: "a3 b1" are two, the first in both places.
    PinStore& pinned(const std::string& pins)
    {
        store.reset();
        start();
        std::vector<PinnedAppRecord> records;
        for (std::size_t at = 0; at + 1 < pins.size(); at += 3)
            records.push_back({pins.substr(at, 1), pins[at + 1] - '0'});
        settings->setPinnedApps(records);
        settle();
        published = 0;
        store = std::make_unique<PinStore>(*settings);
        return *store;
    }
    /// In the same words.
    std::string pins()
    {
        EXPECT_EQ(store->pinnedApps().value(), settings->pinnedApps());
        std::string text;
        for (auto& record : store->pinnedApps().value())
            text += (text.empty() ? "" : " ") + record.id + std::to_string(record.destinationsRaw);
        return text;
    }

    std::unique_ptr<PinStore> store;
};

}

TEST_F(PinStoreTest, anApplicationHasOneRecordForAllItsPlaces)
{
    pinned("x2 y1");
    store->setPin("s", kBar, true);
    store->setPin("s", kLauncher, true);
    store->setPin("z", kBar | kLauncher, true);
    EXPECT_EQ(pins(), "x2 y1 s3 z3");
    EXPECT_THAT(store->pinnedAppIDs(kBar), ElementsAre("y", "s", "z"));
    EXPECT_THAT(store->pinnedAppIDs(kBar | kLauncher), ElementsAre("s", "z"));
    EXPECT_TRUE(store->isPinned("s", kBar | kLauncher));
    EXPECT_FALSE(store->isPinned("y", kBar | kLauncher));

    store->setPin("s", kBar, false);
    EXPECT_EQ(pins(), "x2 y1 s2 z3") << "in its place";
    store->setPin("s", kLauncher, false);
    EXPECT_EQ(pins(), "x2 y1 z3");
}

TEST_F(PinStoreTest, whatChangesNothingWritesNothing)
{
    pinned("a1 b2 c1");
    store->setPin("", kBar, true);
    store->setPin("a", kBar, true);
    store->setPin("a", kLauncher, false);
    store->setPin("nobody", kBar, false);
    store->setPin("nobody", PinDestination{}, true);
    store->movePinnedApp("a", "a", kBar);
    store->movePinnedApp("a", "c", kBar); // just before it already
    store->movePinnedApp("b", "a", kBar); // not in this place
    store->movePinnedApp("nobody", std::nullopt, kBar);
    store->movePinnedApp("c", "b", kBar); // no target in this place: to the end, where it is
    EXPECT_EQ(pins(), "a1 b2 c1");
    EXPECT_EQ(published, 0);
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0U);
}

TEST_F(PinStoreTest, movingInOnePlaceLeavesTheOthersSlotsAlone)
{
    pinned("a1 b2 c1").movePinnedApp("c", "a", kBar);
    EXPECT_EQ(pins(), "c1 b2 a1");
    pinned("a1 b2 c1 d3 e2").movePinnedApp("a", std::nullopt, kBar);
    EXPECT_EQ(pins(), "c1 b2 d3 a1 e2");
    store->movePinnedApp("e", "b", kLauncher);
    EXPECT_EQ(pins(), "c1 e2 b2 a1 d3");
    EXPECT_EQ(published, 2);
}

// A file may list an application twice: whatever comes of it, no pin is invented or lost for good.
TEST_F(PinStoreTest, ofARepeatedRecordTheFirstCounts)
{
    pinned("a1 b1 a3");
    EXPECT_FALSE(store->isPinned("a", kLauncher));
    store->setPin("a", kBar, false);
    EXPECT_EQ(pins(), "b1 a3");
    pinned("a1 b1 a2").movePinnedApp("a", std::nullopt, kBar);
    EXPECT_EQ(pins(), "b1 a2 a2") << "the later record stands for the identifier";
}

TEST_F(PinStoreTest, pinsAreStoredAndFollowTheSettings)
{
    pinned("");
    store->setPin("com.example.mail", kLauncher, true);
    settle();
    EXPECT_THAT(file(), HasSubstr("\"d\": 2"));

    settings->setPinnedApps({{"other", 1}});
    EXPECT_EQ(pins(), "other1");
}

}
