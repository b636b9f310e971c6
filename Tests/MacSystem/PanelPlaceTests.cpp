#include "Hosts/MacOS/Rules/PanelPlace.h"

#include "Tests/MacSystem/Support/AppKitPanel.h"
#include "Tests/MacSystem/Support/MacFixture.h"

namespace quorvel::test {

namespace {

struct MacPanelPlaceTest : MacFixture {
    AppKitPanel panel{desktop};

    void show(PanelPlace& place, SpaceID space)
    {
        desktop.activateSpace(space);
        place.activeSpaceDidChange();
    }
};

}

// Faults: a bar of another space is seen on this one for a moment; a refused move goes unnoticed
// and the bar stays where it does not belong.
TEST_F(MacPanelPlaceTest, aPanelIsNeverSeenOnAnotherSpaceThanItsOwn)
{
    const auto server = makeWindowServer();
    PanelPlace second{server, panel, SpaceID{2}};
    second.orderFront();
    show(second, SpaceID{3});
    EXPECT_FALSE(panel.isIn);
    show(second, SpaceID{2});
    EXPECT_TRUE(panel.isIn);
    second.orderOut();
    show(second, SpaceID{1});
    show(second, SpaceID{2});
    EXPECT_FALSE(panel.isIn);

    AppKitPanel farPanel{desktop};
    PanelPlace far{server, farPanel, SpaceID{3}};
    mac.answer("CopySpacesForWindows", array({number(2)}));
    EXPECT_FALSE(far.orderFrontForKey()) << "the server lets it lie where it is";
    EXPECT_FALSE(farPanel.isIn);
    mac.forgetAnswer("CopySpacesForWindows");
    EXPECT_TRUE(far.orderFrontForKey());
    EXPECT_THAT(desktop.window(*farPanel.window).spaces, ElementsAre(SpaceID{3}));
    EXPECT_FALSE(farPanel.isUnseen);

    // It went in just when the user left the space.
    desktop.moveToSpace(*farPanel.window, SpaceID{1});
    show(far, SpaceID{2});
    EXPECT_THAT(desktop.window(*farPanel.window).spaces, ElementsAre(SpaceID{3}));
    EXPECT_THAT(farPanel.seenOn, ElementsAre(SpaceID{3}));
    EXPECT_THAT(panel.seenOn, ElementsAre(SpaceID{2}));

    // Nobody says what is active: a bar somewhere is better than none.
    AppKitPanel lost{desktop};
    mac.answer("CopyManagedDisplaySpaces", {});
    PanelPlace{server, lost, SpaceID{1}}.orderFront();
    EXPECT_TRUE(lost.isIn);
}

}
