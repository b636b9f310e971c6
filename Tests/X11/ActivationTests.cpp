
#include <xkbcommon/xkbcommon-keysyms.h>

#include "Tests/X11/Support/DesktopFixture.h"
#include "Tests/X11/Support/Keyboard.h"

namespace quorvel::x11tests {

/// A user who types in one window and then clicks another's chip. Managers let no window come
/// between, unless the request says that the user wants it, and when.
class Activation : public UnderEachManager {
protected:
    void SetUp() override
    {
        target = application.open({.title = "target", .applicationClass = "Target"});
        other = otherApplication.open({.title = "other", .frame = {250, 150, 300, 200}});
        ASSERT_TRUE(bar.appears());
        ASSERT_TRUE(settles(bar));
    }

    testing::AssertionResult isShownActive(xcb_window_t window)
    {
        auto active = eventually(
            [&] { return desktop.activeWindow() == window && !desktop.isHidden(window); });
        return active ? bar.agreesWith(desktop) : active << " for " << desktop.title(window);
    }
    void typeInOther()
    {
        ASSERT_TRUE(eventually(desktop.activation(other)));
        ASSERT_TRUE(bar.agreesWith(desktop));
        auto* const connection = otherApplication.connection().get();
        const std::uint32_t keys = XCB_EVENT_MASK_KEY_PRESS;
        xcb_change_window_attributes(connection, other, XCB_CW_EVENT_MASK, &keys);
        otherApplication.connection().sync();
        // The focus follows the active window a moment later; metacity sometimes forgets to give it
        // to a window that it has named, until it is asked again.
        ASSERT_TRUE(eventually([&, tries = 0]() mutable {
            if (++tries % 100 == 0)
                desktop.activate(other);
            return keyboard.type(XKB_KEY_a), takeKeyPress();
        }));
    }
    /// Clicks the target's chip as the user would, with the keys still warm.
    void clickTarget()
    {
        clickChip(bar, target);
        EXPECT_TRUE(isShownActive(target));
    }

    Keyboard keyboard{server.display()};
    Client application{server};
    Client otherApplication{server};
    Bar bar{server};
    xcb_window_t target = XCB_NONE;
    xcb_window_t other = XCB_NONE;

private:
    /// What a toolkit does: it tells the manager when its user was last busy.
    bool takeKeyPress()
    {
        bool isTaken = false;
        auto& connection = otherApplication.connection();
        connection.sync();
        while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(connection.get())}) {
            if ((event->response_type & 0x7f) == XCB_KEY_PRESS) {
                const auto time = reinterpret_cast<xcb_key_press_event_t*>(event.get())->time;
                connection.setNumbers(other, "_NET_WM_USER_TIME", "CARDINAL", {time});
                connection.sync();
                isTaken = true;
            }
        }
        return isTaken;
    }
};

// Faults: a request without a time, with a stale one or as an application's own, which managers
// answer with a window that blinks; a window that is made active and not shown.
TEST_P(Activation, bringsAWindowToTheFrontWhileTheUserTypesElsewhere)
{
    typeInOther();
    clickTarget();

    desktop.minimise(target);
    ASSERT_TRUE(eventually([&] { return desktop.isHidden(target); }));
    typeInOther();
    clickTarget();

    typeInOther();
    desktop.setState(target, "_NET_WM_STATE_SHADED", true);
    ASSERT_TRUE(settles(bar));
    clickTarget();
    desktop.setState(target, "_NET_WM_STATE_SHADED", false);

    desktop.moveToDesktop(target, kAllDesktops);
    typeInOther();
    clickTarget();
}

// Fault: a window that asked for no focus when it came gets none when the user asks for it.
TEST_P(Activation, bringsAWindowToTheFrontThatHasJustCome)
{
    typeInOther();
    const auto late
        = application.open({.title = "late", .applicationClass = "Target", .userTime = 0});
    ASSERT_TRUE(getsChip(bar, late));
    clickChip(bar, late);
    EXPECT_TRUE(isShownActive(late));
}

INSTANTIATE_TEST_SUITE_P(, Activation,
    testing::Values(
        ManagerKind::openbox, ManagerKind::xfwm4, ManagerKind::metacity, ManagerKind::icewm),
    managerName);

}
