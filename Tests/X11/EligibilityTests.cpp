#include <functional>
#include <vector>

#include "Tests/X11/Support/DesktopFixture.h"

namespace quorvel::x11tests {

class Eligibility : public UnderEachManager {
protected:
    void SetUp() override { ASSERT_TRUE(bar.appears()); }

    Client client{server};
    Bar bar{server};
};

// Faults: a window judged once and for all, or again only when something else happens to it.
TEST_P(Eligibility, comesAndGoesWithEachPropertyThatDecidesIt)
{
    const auto window = client.open({.title = "changing", .isDecorated = false});
    const auto parent = client.open({.title = "parent"});
    ASSERT_TRUE(getsChip(bar, window));
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
        EXPECT_TRUE(eventually([&] { return !bar.state().chipOf(window); })) << property.name;
        property.admit();
        // xfwm4 adds it to what is no normal window, and does not take it away.
        desktop.setState(window, "SKIP_TASKBAR", false);
        EXPECT_TRUE(getsChip(bar, window)) << property.name;
    }
}

QUORVEL_UNDER_EACH_MANAGER(Eligibility);

}
