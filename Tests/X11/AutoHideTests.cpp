#include "Tests/X11/Support/DesktopFixture.h"
#include "Tests/X11/Support/FileDrag.h"
#include "Tests/X11/Support/MonitorLayout.h"

namespace quorvel::x11tests {

namespace {

constexpr Frame kEdge{640, 799, 1, 1};
constexpr Frame kAway{640, 300, 1, 1};

}

class HidingBar : public BarUnderEachManager {
protected:
    void SetUp() override
    {
        BarUnderEachManager::SetUp();
        window = client.open({.title = "large"});
        other = client.open({.title = "small", .frame = {100, 50, 200, 100}});
        ASSERT_TRUE(bar.agreesWith(desktop));
        pointer.moveTo(kAway);
        ASSERT_EQ(run({"--set", "groupWindowsByApp=false"}).status, 0);
        ASSERT_EQ(run({"--set", "autoHide=true"}).status, 0);
    }

    /// It has a window only while something of it can be seen.
    bool isOut() { return desktop.docks().empty(); }
    bool isIn()
    {
        const auto docks = desktop.docks();
        return docks.size() == 1 && desktop.isViewable(docks[0])
            && desktop.frame(docks[0]) == Frame{0, 800 - 36, 1280, 36};
    }
    void maximise()
    {
        desktop.maximise(window);
        ASSERT_TRUE(eventually([&] { return isOut(); }));
    }
    /// For what makes it come for a moment, which a busy machine may miss.
    testing::AssertionResult comesWhen(const std::function<void()>& asked)
    {
        return eventually([&] {
            asked();
            return !staysTrue(1s, [&] { return !isIn(); });
        });
    }
    /// The large window has the screen's last row, and not a strip that listens there.
    bool reachesEdge()
    {
        return desktop.windowAt(kEdge.x, kEdge.y) == desktop.windowAt(kAway.x, kAway.y);
    }

    Client client{server};
    xcb_window_t window = XCB_NONE;
    xcb_window_t other = XCB_NONE;
};

// Faults: room that is kept for a bar that hides, or not taken again; a bar that stays over the
// window, that does not come to the hand, or goes from under it; one that comes back as a window
// of another kind.
TEST_P(HidingBar, makesRoomForALargeWindowAndComesToTheEdge)
{
    EXPECT_TRUE(eventually([&] { return desktop.workArea().bottom() == 800; }));
    EXPECT_TRUE(isIn());
    maximise();
    EXPECT_TRUE(eventually([&] { return desktop.frame(window).bottom() == 800; }));
    ASSERT_TRUE(eventually(desktop.activation(window)));

    pointer.moveTo(kEdge);
    EXPECT_TRUE(eventually([&] { return isIn(); }));
    EXPECT_TRUE(staysTrue(1500ms, [&] { return isIn(); })) << "the pointer is over it";
    EXPECT_EQ(desktop.desktopOf(desktop.docks()[0]), kAllDesktops);
    EXPECT_EQ(desktop.frame(window).bottom(), 800);
    pointer.click(bar.state().chipFrame(other));
    EXPECT_TRUE(becomesActive(other));
    pointer.press(Button::secondary);
    pointer.release(Button::secondary);
    EXPECT_TRUE(eventually([&] { return !bar.state().menu.empty(); }));
    pointer.moveTo(kAway);
    EXPECT_TRUE(staysTrue(1500ms, [&] { return isIn(); })) << "its menu is open";
    pointer.click(kAway);
    EXPECT_TRUE(eventually([&] { return isOut(); }));

    desktop.minimise(window);
    EXPECT_TRUE(eventually([&] { return isIn(); }));
    EXPECT_EQ(run({"--set", "autoHide=false"}).status, 0);
    EXPECT_TRUE(eventually([&] { return desktop.workArea().bottom() == 800 - 36; }));
    EXPECT_TRUE(bar.agreesWith(desktop));
}

// Faults: a request, a window or files that nobody sees coming; a walk whose bar stays away.
TEST_P(HidingBar, comesWhenItIsCalled)
{
    maximise();
    EXPECT_EQ(run({"--toggle-bar"}).status, 0);
    EXPECT_TRUE(eventually([&] { return isIn(); }));
    EXPECT_TRUE(staysTrue(1500ms, [&] { return isIn(); }));
    EXPECT_EQ(run({"--toggle-bar"}).status, 0);
    EXPECT_TRUE(eventually([&] { return isOut(); }));

    EXPECT_EQ(run({"--focus"}).status, 0);
    EXPECT_TRUE(eventually([&] { return bar.state().panel().keyFocus && isIn(); }));
    EXPECT_TRUE(staysTrue(1500ms, [&] { return isIn(); }));
    pointer.click(kAway);
    EXPECT_TRUE(eventually([&] { return isOut(); }));

    ASSERT_TRUE(eventually(desktop.activation(window)));
    EXPECT_TRUE(comesWhen([&] {
        desktop.setState(other, "DEMANDS_ATTENTION", false);
        desktop.setState(other, "DEMANDS_ATTENTION", true);
    }));
    desktop.setState(other, "DEMANDS_ATTENTION", false);
    EXPECT_TRUE(eventually([&] { return isOut(); }));

    EXPECT_TRUE(comesWhen([&] {
        FileDrag files(server.display(), "file:///tmp/a\r\n");
        if (isOut()) {
            EXPECT_EQ(files.moveTo(kEdge), false) << "the edge takes none";
        }
    }));
}

// Faults: a desktop that is shown without its bar; a bar whose coming ends that, or that stays when
// the windows are back.
TEST_P(HidingBar, comesToTheShownDesktop)
{
    maximise();
    const auto isInOnIt = [&] { return isIn() && desktop.isShown(); };
    desktop.show(true);
    EXPECT_TRUE(eventually(isInOnIt));
    EXPECT_TRUE(staysTrue(1500ms, isInOnIt));
    desktop.show(false);
    EXPECT_TRUE(eventually([&] { return isOut() && !desktop.isShown(); }));

    pointer.moveTo(kEdge);
    ASSERT_TRUE(eventually([&] { return isIn(); }));
    pointer.click(bar.state().panel().showDesktop);
    EXPECT_TRUE(eventually(isInOnIt));
    pointer.moveTo(kAway);
    EXPECT_TRUE(staysTrue(1500ms, isInOnIt));
    pointer.click(bar.state().panel().showDesktop);
    pointer.moveTo(kAway);
    EXPECT_TRUE(eventually([&] { return isOut() && !desktop.isShown(); }));
}

// Faults: a strip that takes the edge from a film, or that the next window covers; one that
// outlives its bar.
TEST_P(HidingBar, leavesTheEdgeToWhoeverHasIt)
{
    maximise();
    EXPECT_TRUE(eventually([&] { return !reachesEdge(); }));
    desktop.setState(window, "FULLSCREEN", true);
    EXPECT_TRUE(eventually([&] { return reachesEdge(); }));
    pointer.moveTo(kEdge);
    EXPECT_TRUE(staysTrue(1500ms, [&] { return isOut(); }));
    pointer.moveTo(kAway);
    desktop.setState(window, "FULLSCREEN", false);
    pointer.moveTo(kEdge);
    EXPECT_TRUE(eventually([&] { return isIn(); }));
    pointer.moveTo(kAway);
    EXPECT_TRUE(eventually([&] { return isOut(); }));

    // What lies above everything lies below the strip once windows have changed their order.
    auto& connection = desktop.connection();
    const auto above = xcb_generate_id(connection.get());
    constexpr std::uint32_t isUnmanaged = 1;
    xcb_create_window(connection.get(), XCB_COPY_FROM_PARENT, above, connection.root(), 0, 700,
        1280, 100, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT,
        &isUnmanaged);
    xcb_map_window(connection.get(), above);
    connection.sync();
    client.open({.title = "one more", .frame = {700, 50, 200, 100}});
    EXPECT_TRUE(eventually([&] { return desktop.windowAt(kEdge.x, kEdge.y) != above; }));
    xcb_destroy_window(connection.get(), above);
    connection.sync();
    bar.kill();
    EXPECT_TRUE(eventually([&] { return reachesEdge(); }));
}

QUORVEL_UNDER_EACH_MANAGER(HidingBar);

class HidingBars : public UnderOpenbox { };

// Faults: a bar that slides across the display below; an edge there that calls no bar.
TEST_F(HidingBars, slideWithinTheirOwnDisplay)
{
    MonitorLayout monitors{server};
    monitors.set({{0, 0, 1280, 400}, {0, 400, 1280, 400}});
    Client client{server};
    Bar bar{server};
    ASSERT_TRUE(bar.appears());
    const auto window = client.open({.title = "upper", .frame = {100, 50, 400, 100}});
    ASSERT_TRUE(bar.agreesWith(desktop));
    ASSERT_EQ(run({"--set", "showOnAllDisplays=true"}).status, 0);
    ASSERT_EQ(run({"--set", "autoHide=true"}).status, 0);
    const auto count = [&] { return desktop.docks().size(); };
    ASSERT_TRUE(eventually([&] { return count() == 2; }));
    const Frame below{0, 400, 1280, 100};
    const auto before = desktop.picture(below);
    const auto isUntouched = [&] { return desktop.picture(below) == before; };

    pointer.moveTo(640, 200);
    client.place(window, {100, 50, 400, 350});
    EXPECT_TRUE(staysTrue(1500ms, isUntouched));
    EXPECT_TRUE(eventually([&] { return count() == 1; })) << "the one below is not in the way";
    pointer.moveTo(640, 399);
    EXPECT_TRUE(staysTrue(1500ms, isUntouched));
    EXPECT_TRUE(eventually([&] { return count() == 2; }));
}

}
