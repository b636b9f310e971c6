#include <algorithm>
#include <fstream>

#include "Tests/X11/Support/DesktopFixture.h"

namespace quorvel::x11tests {

/// Two pinned applications, of which one has a window on another desktop.
class Pins : public UnderEachManager {
protected:
    static constexpr std::uint32_t kFar = 2;

    Pins()
    {
        server.addApplication("far", "Far", "Exec=far");
        server.addApplication("idle", "Idle", "Exec=idle");
        std::ofstream(server.settingsFile())
            << R"({"pinnedApps": [{"id": "far", "d": 1}, {"id": "idle", "d": 1}]})";
        window = client.open({.title = "window", .applicationClass = "Far"});
        here = other.open({.title = "here"});
    }

    static std::vector<std::string> pins(const Bar& bar)
    {
        std::vector<std::string> ids;
        for (const auto& pin : bar.state().panel().pins)
            ids.push_back(pin.id);
        return ids;
    }
    Frame tip()
    {
        constexpr int kAboveBar = 12;
        const auto over = desktop.windowAt(pointedAt.x + pointedAt.width / 2, 800 - 36 - kAboveBar);
        return desktop.title(over) == "Quorvel" ? desktop.frame(over) : Frame{};
    }
    void pointAtPin(const Bar& bar, std::size_t index)
    {
        pointedAt = bar.state().panel().pins.at(index).frame;
        pointer.moveTo(pointedAt);
    }
    /// In the middle above it, but wholly on the screen.
    testing::AssertionResult isNamed()
    {
        return eventually([&] {
            const auto found = tip();
            const int off = 2 * found.x + found.width - 2 * pointedAt.x - pointedAt.width;
            return found.width > 0 && (std::abs(off) <= 2 || found.x <= 8);
        });
    }

    Client client{server};
    Client other{server};
    xcb_window_t window = XCB_NONE;
    xcb_window_t here = XCB_NONE;
    Frame pointedAt;
};

// Faults: a name that takes the pointer from its pin and so goes, comes again and goes, that stays
// where the last pin was, in the way of a press or with the focus; a pin whose release beside the
// bar is not heard, or that starts what runs elsewhere.
TEST_P(Pins, nameThemselvesGoByHandAndLeadToOtherDesktops)
{
    Bar bar{server};
    ASSERT_TRUE(bar.appears());
    desktop.moveToDesktop(window, kFar);
    ASSERT_TRUE(eventually(desktop.activation(here)));
    ASSERT_TRUE(settles(bar));
    const std::vector<std::string> both{"far", "idle"};
    ASSERT_TRUE(eventually([&] { return pins(bar) == both; }));

    pointAtPin(bar, 0);
    EXPECT_TRUE(isNamed());
    pointAtPin(bar, 1);
    EXPECT_TRUE(isNamed());
    EXPECT_TRUE(staysTrue(500ms, [&] { return tip().width > 0; }));
    EXPECT_EQ(desktop.activeWindow(), here);
    pointer.press(Button::primary);
    EXPECT_TRUE(eventually([&] { return tip().width == 0; }));
    for (const int y : {760, 600, 300})
        pointer.moveTo(pointedAt.x, y);
    pointer.release(Button::primary);
    EXPECT_TRUE(eventually([&] { return pins(bar) == std::vector<std::string>{"far"}; }));

    pointAtPin(bar, 0);
    pointer.press(Button::primary);
    pointer.release(Button::primary);
    EXPECT_TRUE(becomesActive(window));
    EXPECT_EQ(desktop.currentDesktop(), kFar);
    EXPECT_TRUE(settles(bar));
}

QUORVEL_UNDER_EACH_MANAGER(Pins);

}
