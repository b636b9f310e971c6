#include <functional>
#include <vector>

#include "Tests/X11/Support/DesktopFixture.h"

namespace quorvel::x11tests {

class Eligibility : public UnderEachManager {
protected:
    void SetUp() override { ASSERT_TRUE(bar.appears()); }

    bool hasChip(xcb_window_t window) const
    {
        const auto state = bar.state();
        return state && state->chipOf(window);
    }
    testing::AssertionResult getsChip(xcb_window_t window, std::chrono::milliseconds deadline = 1s)
    {
        return eventually(deadline, [&] { return hasChip(window); });
    }
    testing::AssertionResult losesChip(xcb_window_t window)
    {
        return eventually(1s, [&] { return !hasChip(window); });
    }

    Client client{server};
    Bar bar{server};
};

// Faults: the size taken without or with a frame that is not there, a window that is judged once
// and never again when it grows.
TEST_P(Eligibility, beginsAtFortyPixels)
{
    const auto narrow
        = client.open({.title = "narrow", .frame = {100, 100, 39, 400}, .isDecorated = false});
    const auto square
        = client.open({.title = "square", .frame = {300, 100, 40, 40}, .isDecorated = false});
    ASSERT_TRUE(getsChip(square));
    ASSERT_EQ(desktop.frame(narrow).width, 39);
    EXPECT_FALSE(hasChip(narrow));

    client.setTitle(narrow, "narrow and retitled");
    const auto later = client.open({.title = "later"});
    ASSERT_TRUE(getsChip(later));
    EXPECT_FALSE(hasChip(narrow));

    client.resize(narrow, 40, 400);
    EXPECT_TRUE(getsChip(narrow, 3s));
}

// Faults: a chip for what other taskbars leave out; one that stays out after it has changed.
TEST_P(Eligibility, followsTypeParentAndSkipTaskbar)
{
    const auto parent = client.open({.title = "parent"});
    const auto skipped = client.open({.title = "skipped", .state = "_NET_WM_STATE_SKIP_TASKBAR"});
    const auto dock = client.open({.title = "dock", .type = "_NET_WM_WINDOW_TYPE_DOCK"});
    const auto dialog
        = client.open({.title = "dialog", .type = "_NET_WM_WINDOW_TYPE_DIALOG", .parent = parent});
    const auto orphan = client.open({.title = "orphan", .type = "_NET_WM_WINDOW_TYPE_DIALOG"});
    ASSERT_TRUE(getsChip(orphan));
    EXPECT_TRUE(getsChip(parent));
    for (const auto window : {skipped, dock, dialog})
        EXPECT_FALSE(hasChip(window)) << desktop.title(window);

    desktop.setState(orphan, "SKIP_TASKBAR", true);
    EXPECT_TRUE(losesChip(orphan));
    for (const auto window : {skipped, dock, dialog})
        EXPECT_FALSE(hasChip(window)) << desktop.title(window);
}

// Faults: a window judged once and for all, or again only when something else happens to it.
TEST_P(Eligibility, comesAndGoesWithEachPropertyThatDecidesIt)
{
    const auto window = client.open({.title = "changing", .isDecorated = false});
    const auto parent = client.open({.title = "parent"});
    ASSERT_TRUE(getsChip(window));
    const auto setOpacity = [&](std::uint32_t opacity) {
        client.connection().setNumbers(window, "_NET_WM_WINDOW_OPACITY", "CARDINAL", {opacity});
        client.connection().sync();
    };
    const auto becomesDialogOf = [&](xcb_window_t owner) {
        client.setParent(window, owner);
        client.setType(window, "_NET_WM_WINDOW_TYPE_DIALOG");
    };
    struct Property {
        const char* name;
        std::function<void()> refuse;
        std::function<void()> admit;
    };
    const std::vector<Property> properties{
        {"skip taskbar", [&] { desktop.setState(window, "SKIP_TASKBAR", true); },
            [&] { desktop.setState(window, "SKIP_TASKBAR", false); }},
        {"modal", [&] { desktop.setState(window, "MODAL", true); },
            [&] { desktop.setState(window, "MODAL", false); }},
        {"type", [&] { client.setType(window, "_NET_WM_WINDOW_TYPE_UTILITY"); },
            [&] { client.setType(window, "_NET_WM_WINDOW_TYPE_NORMAL"); }},
        {"size", [&] { client.resize(window, 39, 200); }, [&] { client.resize(window, 40, 200); }},
        {"opacity", [&] { setOpacity(0); }, [&] { setOpacity(0xFFFFFFFF); }},
        {"parent", [&] { becomesDialogOf(parent); }, [&] { becomesDialogOf(XCB_NONE); }},
    };

    for (const auto& property : properties) {
        property.refuse();
        EXPECT_TRUE(eventually(3s, [&] { return !hasChip(window); })) << property.name;
        property.admit();
        // xfwm4 adds it to what is no normal window, and does not take it away.
        desktop.setState(window, "SKIP_TASKBAR", false);
        EXPECT_TRUE(getsChip(window, 3s)) << property.name;
    }
}

// Fault: a window of all desktops only where it was opened.
TEST_P(Eligibility, ofAWindowOnAllDesktopsIsOnEverySpace)
{
    const auto window = client.open({.title = "everywhere"});
    ASSERT_TRUE(getsChip(window));
    desktop.moveToDesktop(window, kAllDesktops);
    const auto isEverywhere = [&] {
        const auto state = bar.state();
        return state && state->spacesShowing(window) == std::vector<std::uint64_t>{1, 2, 3, 4};
    };
    ASSERT_TRUE(eventually(1s, isEverywhere));

    desktop.switchTo(2);

    EXPECT_TRUE(bar.agreesWith(desktop, 1s));
    EXPECT_TRUE(hasChip(window));
}

// Faults: chips of a dead process, or those of its neighbour gone with them.
TEST_P(Eligibility, endsWithTheApplication)
{
    Terminal neighbour(server, desktop, "neighbour");
    ClientProcess doomed(server, "doomed", 10);
    ASSERT_TRUE(eventually(5s, [&] { return desktop.taskbarClients().size() == 11; }));
    ASSERT_TRUE(bar.agreesWith(desktop, 2s));

    doomed.kill();

    ASSERT_TRUE(eventually(5s, [&] { return desktop.taskbarClients().size() == 1; }));
    EXPECT_TRUE(bar.agreesWith(desktop, 1s));
    EXPECT_TRUE(hasChip(neighbour.window()));
}

QUORVEL_UNDER_EACH_MANAGER(Eligibility);

}
