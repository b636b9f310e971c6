#include "Tests/Support/StoreFixture.h"

namespace quorvel::test {

namespace {

struct WindowStoreFullscreenTest : StoreFixture {
    static constexpr SpaceID space{2};
    ProcessID player = desktop.launch({.name = "Player"});

    WindowID openThere(const std::string& title, Size size)
    {
        return desktop.open(
            player, {.title = title, .frame = Rect::from({}, size), .spaces = {space}});
    }
};

}

TEST_F(WindowStoreFullscreenTest, theLargestWindowIsTheOneToActivate)
{
    auto small = openThere("Controls", {400, 100});
    auto large = openThere("Film", {1440, 900});
    desktop.open(player, {.title = "Elsewhere", .frame = {0, 0, 2000, 2000}});

    EXPECT_EQ(store.trackSoleWindow(space), large);
    EXPECT_TRUE(isTracked(small));
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(store.trackSoleWindow(space), large);
    EXPECT_EQ(changes, 1) << "nothing new the second time";
}

TEST_F(WindowStoreFullscreenTest, aTitleDecidesBetweenEqualsAndMinimisedOnesComeLast)
{
    openThere("", {800, 600});
    auto titled = openThere("Film", {800, 600});
    auto minimised = openThere("Minimised", {1440, 900});
    desktop.minimise(minimised);
    desktop.drain();

    EXPECT_EQ(store.trackSoleWindow(space), titled);
}

// Fault: the space of a full-screen window that was left has no window to activate.
TEST_F(WindowStoreFullscreenTest, aKnownWindowThatItsApplicationDoesNotShowFromAfarCounts)
{
    auto film = openThere("Film", {1440, 900});
    store.populate();
    desktop.window(film).faults.isListed = false;
    auto unknown = openThere("Extras", {2000, 2000});
    desktop.window(unknown).faults.isListed = false;

    EXPECT_EQ(store.trackSoleWindow(space), film);
    EXPECT_FALSE(isTracked(unknown));
}

TEST_F(WindowStoreFullscreenTest, whatIsNoUsersWindowIsNoCandidate)
{
    auto helper = desktop.launch({.name = "Helper", .policy = ActivationPolicy::accessory});
    desktop.open(helper, {.frame = {0, 0, 1440, 900}, .spaces = {space}});
    desktop.open(player, {.frame = {0, 0, 1440, 900}, .spaces = {space}, .alpha = 0});
    desktop.open(player, {.frame = {0, 0, 1440, 39}, .spaces = {space}});
    desktop.open(player, {.frame = {0, 0, 900, 900}, .spaces = {space}, .subrole = "AXDialog"});

    EXPECT_FALSE(store.trackSoleWindow(space));
    EXPECT_TRUE(store.windows().empty());
    EXPECT_EQ(changes, 0);
}

}
