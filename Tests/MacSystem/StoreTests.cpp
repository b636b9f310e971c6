#include <gmock/gmock.h>

#include "Quorvel/Skylight/AXObserverManager.h"
#include "Quorvel/Skylight/SpaceWindows.h"
#include "Quorvel/Skylight/WindowStore.h"
#include "Tests/MacSystem/Support/MacFixture.h"

namespace quorvel::test {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// The store and the observers on the host's services, wired as the program wires them.
struct MacStoreTest : MacFixture {
    MacAccessibility accessibility{PrivateSymbols::load()};
    MacWindowServer windowServer = makeWindowServer();
    MacDisplays displays;
    Platform platform = desktop.platform();
    WindowStore store{
        mac.dispatch(), accessibility, windowServer, displays, platform.workspace, platform.trace};
    AXObserverManager observers{mac.dispatch(), accessibility, desktop.dispatch().main()};
    ProcessID mail = desktop.launch({.name = "Mail", .bundleIdentifier = "com.example.mail"});

    MacStoreTest()
    {
        displays.setScreens(desktop.displays().screens());
        observers.onEvent = [this](const AXWindowEvent& event) { store.handleAXEvent(event); };
        observers.onObserverAdded = [this](ProcessID pid) { store.handleObserverAttached(pid); };
        observers.start();
    }
    std::vector<WindowID> tracked() const
    {
        std::vector<WindowID> ids;
        for (const auto& [id, window] : store.windows())
            ids.push_back(id);
        return ids;
    }
};

}

TEST_F(MacStoreTest, aScanTakesWhatTheWindowListAndTheApplicationAgreeOn)
{
    const auto inbox = desktop.open(mail, {.title = "Inbox", .frame = {10, 20, 500, 400}});
    desktop.open(mail, {.layer = 25});
    desktop.open(mail, {.role = "AXMenu"});
    const auto other = desktop.open(mail, {.title = "Elsewhere", .spaces = {SpaceID{2}}});
    desktop.window(other).distortEntry = [](CGWindowInfo& info) { info.windowName.reset(); };

    store.populate();

    EXPECT_THAT(tracked(), ElementsAre(inbox, other));
    const auto& window = *store.window(inbox);
    EXPECT_EQ(window.appName, "Mail");
    EXPECT_EQ(window.windowTitle, "Inbox");
    EXPECT_EQ(window.spaceIDs, std::set{SpaceID{1}});
    EXPECT_EQ(store.window(other)->spaceIDs, std::set{SpaceID{2}});
    EXPECT_EQ(store.window(other)->windowTitle, "Elsewhere") << "told by the application";
}

TEST_F(MacStoreTest, eventsFollowAnAttachThatNeededARetry)
{
    const auto inbox = desktop.open(mail, {.title = "Inbox"});
    store.populate();
    desktop.activate(mail);
    desktop.application(mail).faults.failingObservers = 1;
    observers.observe(mail);
    desktop.drain();
    EXPECT_EQ(desktop.accessibility().observersOf(mail), 0u);
    desktop.advance(seconds(0.5));
    EXPECT_EQ(desktop.accessibility().observersOf(mail), 1u);

    desktop.retitle(inbox, "Inbox (3)");
    desktop.minimise(inbox);
    const auto draft = desktop.open(mail, {.title = "Draft"});
    desktop.advance(seconds(1));
    EXPECT_EQ(store.window(inbox)->windowTitle, "Inbox (3)");
    EXPECT_TRUE(store.window(inbox)->isMinimized);
    EXPECT_THAT(tracked(), ElementsAre(inbox, draft));
    EXPECT_EQ(store.focusedWindowID(), draft);

    desktop.close(draft);
    desktop.advance(seconds(1));
    EXPECT_THAT(tracked(), ElementsAre(inbox));
}

TEST_F(MacStoreTest, aWindowMovedToAnotherSpaceIsThereAfterARefresh)
{
    const auto inbox = desktop.open(mail);
    store.populate();
    SpaceWindows{windowServer, displays}.moveWindowExclusively(inbox, SpaceID{3});
    store.refreshSpaces();
    EXPECT_EQ(store.window(inbox)->spaceIDs, std::set{SpaceID{3}});

    mac.answer("CopySpacesForWindows", {});
    mac.answer("CopyWindowsWithOptionsAndTags", {});
    store.refreshSpaces();
    EXPECT_EQ(store.window(inbox)->spaceIDs, std::set{SpaceID{3}})
        << "what cannot be read stays as it was";
}

}
