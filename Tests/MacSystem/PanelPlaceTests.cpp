#include "Hosts/MacOS/Rules/PanelPlace.h"

#include "Hosts/MacOS/Rules/KeyboardSession.h"
#include "Tests/MacSystem/Support/AppKitPanel.h"
#include "Tests/MacSystem/Support/MacFixture.h"
#include "Tests/MacSystem/Support/PanelClient.h"

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

// Faults: the launcher moves the user to another space, or takes the program before out of front; a
// window of ours lies inactive behind the others, or the program stays active once it has gone; a
// bar of another space takes the keys where nobody sees it.
TEST_F(MacPanelPlaceTest, aPanelIsBroughtUpAsWhatItIs)
{
    using Keys = PanelTraits::Keys;
    const auto server = makeWindowServer();
    PanelClient client;
    auto& mainQueue = desktop.dispatch().main();
    for (auto keys : {Keys::fromTheStart, Keys::whenKey}) {
        AppKitPanel everywhere{desktop};
        PanelPlace place{server, everywhere, std::nullopt};
        KeyboardSession keyboard{everywhere, client, mainQueue, keys};
        keyboard.makeKeyAndOrderFront(place);
        EXPECT_TRUE(everywhere.isIn);
        EXPECT_TRUE(keyboard.isWanted());
        EXPECT_EQ(everywhere.isProgramActive, keys == Keys::whenKey);
        place.orderOut();
        keyboard.panelDidGo();
        EXPECT_FALSE(everywhere.isProgramActive);
    }

    PanelPlace far{server, panel, SpaceID{3}};
    KeyboardSession bar{panel, client, mainQueue, Keys::onRequest};
    mac.answer("CopySpacesForWindows", array({number(2)}));
    bar.makeKeyAndOrderFront(far);
    EXPECT_FALSE(panel.isKeyNow) << "the server lets it lie where it is";
    mac.forgetAnswer("CopySpacesForWindows");
    bar.makeKeyAndOrderFront(far);
    EXPECT_TRUE(panel.isKeyNow);
    EXPECT_FALSE(bar.isWanted()) << "the user goes there, the keys stay where they are";
}

}
