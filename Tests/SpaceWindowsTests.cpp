#include "Quorvel/Skylight/SpaceWindows.h"

#include <gtest/gtest.h>

#include "Tests/Support/FakeDesktop.h"

namespace quorvel::test {

namespace {

struct SpaceWindowsTest : testing::Test {
    FakeDesktop desktop;
    SpaceWindows spaces{desktop.windowServer(), desktop.displays()};

    SpaceWindowsTest()
    {
        desktop.setDisplays({
            {.number = DisplayNumber{1},
                .identifier = "37d8832a-aaaa",
                .frame = {0, 0, 1440, 900},
                .spaces = {{SpaceID{1}}, {SpaceID{2}, 4}},
                .current = SpaceID{2}},
            {.number = DisplayNumber{7},
                .identifier = "B",
                .frame = {1440, 0, 1920, 1080},
                .spaces = {{SpaceID{10}}},
                .current = SpaceID{10}},
            {.number = DisplayNumber{9},
                .identifier = "C",
                .frame = {0, 900, 800, 600},
                .spaces = {{SpaceID{20}}},
                .current = SpaceID{20}},
        });
    }
    std::vector<SpaceID> ids() const
    {
        std::vector<SpaceID> found;
        for (auto& info : spaces.getSpaces())
            found.push_back(info.spaceID);
        return found;
    }
};

}

TEST_F(SpaceWindowsTest, spacesComeInDisplayOrderThenSpaceOrder)
{
    using Info = SpaceWindows::Info;
    EXPECT_EQ(spaces.getSpaces(),
        (std::vector<Info>{
            {0, "37d8832a-aaaa", 0, SpaceID{1}, 0},
            {0, "37d8832a-aaaa", 1, SpaceID{2}, kFullscreenSpaceType},
            {1, "B", 0, SpaceID{10}, 0},
            {2, "C", 0, SpaceID{20}, 0},
        }));
    EXPECT_EQ(spaces.getActiveSpaceIDs(), (std::vector{SpaceID{2}, SpaceID{10}, SpaceID{20}}));
}

TEST_F(SpaceWindowsTest, displaysWithoutATextForAnIdentifierGetOne)
{
    desktop.windowServer().distortSpaces([](std::vector<ManagedDisplay>& displays) {
        displays[1].identifier = std::int64_t{-5};
        displays[2].identifier = std::monostate{};
    });

    auto infos = spaces.getSpaces();

    EXPECT_EQ(infos[2].displayIdentifier, "-5");
    EXPECT_EQ(infos[3].displayIdentifier, "Display 2");
}

TEST_F(SpaceWindowsTest, theLongIdentifierGoesFirstAndSpacesWithoutAnyAreLeftOut)
{
    desktop.windowServer().distortSpaces([](std::vector<ManagedDisplay>& displays) {
        displays[0].spaces[0] = {.id64 = std::nullopt, .managedSpaceID = 101, .type = {}};
        displays[0].spaces[1] = {.id64 = 0xFFFF'FFFF'FFFF'FFFF, .managedSpaceID = 102, .type = 4};
        displays[1].spaces[0] = {};
        displays[0].currentSpace = ManagedSpace{.id64 = 5, .managedSpaceID = 6, .type = {}};
        displays[1].currentSpace = ManagedSpace{};
        displays[2].currentSpace.reset();
    });

    EXPECT_EQ(ids(), (std::vector{SpaceID{101}, SpaceID{0xFFFF'FFFF'FFFF'FFFF}, SpaceID{20}}));
    EXPECT_EQ(spaces.getSpaces()[0].spaceType, 0);
    EXPECT_EQ(spaces.getActiveSpaceIDs(), std::vector{SpaceID{5}});
}

TEST_F(SpaceWindowsTest, identifiersMatchInAnyLetterCaseAndAliasesMeanTheMainDisplay)
{
    EXPECT_EQ(spaces.displayNumber("37D8832A-AAAA"), DisplayNumber{1});
    EXPECT_EQ(spaces.displayNumber("b"), DisplayNumber{7});
    EXPECT_EQ(spaces.displayNumber("main"), DisplayNumber{1});
    EXPECT_EQ(spaces.displayNumber("Primary"), DisplayNumber{1});
    EXPECT_EQ(spaces.displayNumber("unknown"), std::nullopt);
    EXPECT_EQ(spaces.displayNumber(""), std::nullopt);

    auto screens = desktop.displays().screens();
    EXPECT_EQ(spaces.screen("c", screens), screens[2]);
    EXPECT_EQ(spaces.screen("PRIMARY", screens), screens[0]);
    screens.pop_back();
    EXPECT_EQ(spaces.screen("c", screens), std::nullopt) << "not among the screens given";
}

TEST_F(SpaceWindowsTest, theMainScreensTopIsZeroWhereThereIsNone)
{
    auto screens = desktop.displays().screens();
    EXPECT_EQ(spaces.primaryScreenMaxY(screens), 900);
    screens.erase(screens.begin());
    EXPECT_EQ(spaces.primaryScreenMaxY(screens), 0);
    desktop.setDisplays({});
    EXPECT_EQ(spaces.primaryScreenMaxY({}), 0);
    EXPECT_EQ(spaces.displayNumber("B"), std::nullopt);
}

}
