#include <xcb/xfixes.h>
#include <xkbcommon/xkbcommon-keysyms.h>

#include "Tests/X11/Support/DesktopFixture.h"
#include "Tests/X11/Support/Keyboard.h"
#include "Tests/X11/Support/SurfaceHost.h"

namespace quorvel::x11tests {

/// The host's side of a launcher, beside a program that has the focus.
class LauncherSurfaces : public UnderEachManager {
protected:
    void SetUp() override
    {
        active = application.open({.title = "work", .frame = {500, 100, 400, 300}});
        ASSERT_TRUE(eventually(desktop.activation(active)));
        panel->setFrame({100, 300, 300, 200}); // 300 from the top
    }
    bool runUntil(const std::function<bool()>& condition)
    {
        return surfaces.host.runUntil(condition);
    }
    testing::AssertionResult types(std::uint32_t symbol, const std::string& text)
    {
        keyboard.type(symbol);
        runUntil([&] { return record.field.text == text; });
        return testing::AssertionResult(record.field.text == text) << record.field.text;
    }

    Client application{server};
    xcb_window_t active = XCB_NONE;
    Keyboard keyboard{server.display()};
    SurfaceHost surfaces{server};
    SurfaceRecord record;
    std::unique_ptr<PanelSurface> panel = surfaces.make(PanelKind::launcher, record);
};

// Faults: keys that still reach the program below, or the focus that leaves it; a press in the list
// that ends the typing, one outside that does not, one that is told twice, or while a menu has it;
// a menu that does not give the keyboard back; a new window that covers the launcher.
TEST_P(LauncherSurfaces, haveTheKeysUntilAPressOutside)
{
    std::vector<Point> own;
    std::vector<Point> others;
    const auto monitors = std::make_pair(surfaces.surfaces.monitorPresses(PointerScope::ownWindows,
                                             [&](auto& place, auto&) { own.push_back(place); }),
        surfaces.surfaces.monitorPresses(
            PointerScope::otherPrograms, [&](auto& place, auto&) { others.push_back(place); }));
    panel->makeKeyAndOrderFront();
    ASSERT_TRUE(record.hasKeyboard);
    EXPECT_TRUE(types(XKB_KEY_a, "a"));
    EXPECT_EQ(desktop.activeWindow(), active);
    const auto window = desktop.windowAt(250, 400);

    pointer.click({200, 350, 10, 10});
    ASSERT_TRUE(runUntil([&] { return !record.pointer.empty() && !own.empty(); }));
    EXPECT_TRUE(record.hasKeyboard);
    EXPECT_TRUE(types(XKB_KEY_b, "ab"));
    EXPECT_EQ(own, (std::vector<Point>{{205, 355}}));

    SurfaceRecord entries;
    const auto menu = surfaces.make(PanelKind::menu, entries);
    menu->setFrame({150, 350, 50, 50});
    menu->orderFront();
    ASSERT_TRUE(menu->grabInput());
    keyboard.type(XKB_KEY_x);
    pointer.click({1000, 600, 10, 10});
    auto wasPressed = [&] { return entries.pointer.size() > 1 && !entries.keys.empty(); };
    EXPECT_TRUE(runUntil(wasPressed));
    menu->orderOut();
    EXPECT_TRUE(types(XKB_KEY_c, "abc"));

    application.open({.title = "newcomer", .frame = {150, 250, 400, 400}});
    ASSERT_TRUE(eventually([&] { return desktop.clientTitled("newcomer").has_value(); }));
    ASSERT_TRUE(desktop.finishRequests());
    EXPECT_TRUE(runUntil([&] { return desktop.windowAt(250, 400) == window; }));
    EXPECT_TRUE(types(XKB_KEY_d, "abcd"));

    EXPECT_EQ(own.size() + others.size(), 1U);
    pointer.click({1000, 600, 10, 10});
    EXPECT_TRUE(runUntil([&] { return !record.hasKeyboard && !others.empty(); }));
    EXPECT_EQ(others, (std::vector<Point>{{1005, 605}}));
    EXPECT_EQ(own.size(), 1U);
}

// Faults: a keyboard that the window manager, or a program, holds for a moment longer is not waited
// for, or for ever; an end of which nobody is told.
TEST_P(LauncherSurfaces, waitForAKeyboardThatIsHeld)
{
    Connection holder{server.display()};
    const auto holds = [&] { // once the server has heard who lets go of it
        return eventually([&] {
            const auto reply = holder.wait(xcb_grab_keyboard_reply,
                xcb_grab_keyboard(holder.get(), false, holder.root(), XCB_CURRENT_TIME,
                    XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
            return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
        });
    };
    ASSERT_TRUE(holds());
    panel->makeKeyAndOrderFront();
    EXPECT_FALSE(record.hasKeyboard);
    xcb_ungrab_keyboard(holder.get(), XCB_CURRENT_TIME);
    holder.sync();
    EXPECT_TRUE(runUntil([&] { return record.hasKeyboard; }));
    panel->orderOut();
    EXPECT_FALSE(record.hasKeyboard);
    ASSERT_TRUE(holds());
    record.hasKeyboard = true;
    panel->makeKeyAndOrderFront();
    EXPECT_TRUE(runUntil([&] { return !record.hasKeyboard; }));
}

INSTANTIATE_TEST_SUITE_P(, LauncherSurfaces,
    testing::Values(
        ManagerKind::openbox, ManagerKind::xfwm4, ManagerKind::metacity, ManagerKind::icewm),
    managerName);

// Fault: the pointer of whatever is below, over a bare root a cross.
TEST(SurfaceCursors, areArrowsOverAnyRoot)
{
    XServer server;
    Connection screen{server.display()};
    auto* raw = screen.get();
    screen.wait(xcb_xfixes_query_version_reply, xcb_xfixes_query_version(raw, 4, 0));
    const auto font = xcb_generate_id(raw);
    const auto cross = xcb_generate_id(raw);
    xcb_open_font(raw, font, 6, "cursor");
    xcb_create_glyph_cursor(raw, cross, font, font, 0, 1, 0, 0, 0, 0xFFFF, 0xFFFF, 0xFFFF);
    xcb_change_window_attributes(raw, screen.root(), XCB_CW_CURSOR, &cross);
    const auto isArrow = [&] { // its tip is in a corner
        const auto image
            = screen.wait(xcb_xfixes_get_cursor_image_reply, xcb_xfixes_get_cursor_image(raw));
        return image && image->xhot * 4 < image->width && image->yhot * 4 < image->height;
    };
    Pointer pointer{server.display()};
    SurfaceHost surfaces{server};
    pointer.moveTo(250, 400);
    ASSERT_FALSE(isArrow());
    for (const auto kind : {PanelKind::launcher, PanelKind::menu, PanelKind::popup}) {
        SurfaceRecord record;
        const auto panel = surfaces.make(kind, record);
        panel->setCursor(Cursor::arrow);
        panel->setFrame({100, 300, 300, 200});
        panel->orderFront();
        EXPECT_TRUE(surfaces.host.runUntil(isArrow));
        panel->orderOut();
        EXPECT_TRUE(surfaces.host.runUntil([&] { return !isArrow(); }));
    }
}

}
