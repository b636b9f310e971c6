#include <xkbcommon/xkbcommon-keysyms.h>

#include "Tests/X11/Support/DesktopFixture.h"
#include "Tests/X11/Support/Keyboard.h"
#include "Tests/X11/Support/SurfaceHost.h"

namespace quorvel::x11tests {

/// The host's side of an ordinary window, beside a program that has the focus.
class WindowSurfaces : public UnderEachManager {
protected:
    void SetUp() override
    {
        work = application.open({.title = "work", .frame = {500, 100, 400, 300}});
        desktop.activate(work);
        ASSERT_TRUE(becomesActive(work));
        panel->setFrame({100, 300, 300, 200});
    }
    testing::AssertionResult comes(const std::function<bool()>& condition)
    {
        return testing::AssertionResult(surfaces.host.runUntil(condition));
    }
    Frame placeOfContent() const
    {
        const auto place = static_cast<const xdg::PlacedSurface&>(*panel).framePixels();
        return {static_cast<int>(place.x), static_cast<int>(place.y), static_cast<int>(place.width),
            static_cast<int>(place.height)};
    }
    /// As the manager asks whether a program is alive; the answer goes to the root.
    bool answersPing(xcb_window_t window)
    {
        const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        Connection asker{server.display()};
        xcb_change_window_attributes(asker.get(), asker.root(), XCB_CW_EVENT_MASK, &events);
        asker.send(window, 0, window, "WM_PROTOCOLS", {asker.atom("_NET_WM_PING"), 7, window});
        bool isAnswered = false;
        return surfaces.host.runUntil([&] {
            const Reply<xcb_generic_event_t> event{xcb_poll_for_event(asker.get())};
            const auto* answer = reinterpret_cast<const xcb_client_message_event_t*>(event.get());
            isAnswered |= event && (event->response_type & 0x7f) == XCB_CLIENT_MESSAGE
                && answer->data.data32[1] == 7 && answer->data.data32[2] == window;
            return isAnswered;
        });
    }

    Client application{server};
    xcb_window_t work = XCB_NONE;
    Keyboard keyboard{server.display()};
    SurfaceHost surfaces{server};
    SurfaceRecord record;
    std::unique_ptr<PanelSurface> panel
        = surfaces.surfaces.createPanel({.title = "Sample", .kind = PanelKind::window}, record);
};

// Faults: it comes up behind, or without the keyboard; a key that is still down from the command
// that opened it is used; it can be made larger than its content; the pointer, or a screen reader,
// is sent to where it was before it was moved; the manager takes it for hung; its close button cuts
// the connection, or nobody hears of it.
TEST_P(WindowSurfaces, haveTheFocusAndGoWhereTheUserMovesThem)
{
    constexpr std::uint8_t kReturnKey = 36;
    keyboard.press(kReturnKey);
    panel->makeKeyAndOrderFront();
    ASSERT_TRUE(comes([&] { return record.hasKeyboard; }));
    // The manager gives the focus before it lists the window.
    auto shown = xcb_window_t{XCB_NONE};
    ASSERT_TRUE(comes([&] {
        shown = desktop.clientTitled("Sample").value_or(XCB_NONE);
        return shown != XCB_NONE;
    }));
    EXPECT_TRUE(comes([&] { return desktop.activeWindow() == shown; }));
    keyboard.release(kReturnKey);
    keyboard.type(XKB_KEY_a);
    EXPECT_TRUE(comes([&] { return record.field.text == "a"; })) << record.field.text;
    const auto hints = desktop.connection().numbers(shown, "WM_NORMAL_HINTS");
    ASSERT_GE(hints.size(), 9U);
    EXPECT_EQ((std::vector(hints.begin() + 5, hints.begin() + 9)),
        (std::vector<std::uint32_t>{300, 200, 300, 200}));

    const std::uint32_t elsewhere[] = {300, 250};
    xcb_configure_window(
        desktop.connection().get(), shown, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, elsewhere);
    desktop.connection().sync();
    ASSERT_TRUE(comes([&] { return placeOfContent().x >= 300 && placeOfContent().y >= 250; }));
    const auto place = placeOfContent();
    EXPECT_EQ(panel->frame().size(), (Size{300, 200}));
    pointer.click({place.x + 40, place.y + 30, 0, 0});
    EXPECT_TRUE(comes([&] {
        return !record.pointer.empty() && record.pointer.back().action == PointerAction::released;
    }));
    EXPECT_EQ(record.pointer.back().location, (Point{40, 30}));

    EXPECT_TRUE(comes(desktop.activation(work)));
    EXPECT_TRUE(comes([&] { return !record.hasKeyboard; }));
    panel->makeKeyAndOrderFront();
    EXPECT_TRUE(comes([&] { return record.hasKeyboard; }));

    EXPECT_TRUE(answersPing(shown));
    desktop.close(shown);
    EXPECT_TRUE(comes([&] { return record.closeRequests == 1; }));
    EXPECT_TRUE(desktop.isViewable(shown));
    panel->orderOut();
    EXPECT_FALSE(record.hasKeyboard);
    EXPECT_TRUE(comes([&] { return !desktop.clientTitled("Sample"); }));
}

// Fault: an answer that a flush has read stays unseen until the next event, which may never come.
TEST(WindowPlaces, areSeenThoughAFlushReadTheAnswer)
{
    XServer server;
    SurfaceHost::Surroundings surroundings{server, {}};
    std::string problem;
    const auto connection = xdg::x11::Connection::open(problem);
    ASSERT_TRUE(connection) << problem;
    xdg::x11::WindowPlaceQuery query{*connection, connection->root()};
    std::optional<Rect> place;
    const auto seen = connection->turnEnded.subscribe([&] { place = query.takeAnswer(); });
    const auto before = xcb_total_read(connection->raw());
    query.ask();
    constexpr auto kBothAnswers = 2 * 32; // bytes
    ASSERT_TRUE(eventually([&] {
        xcb_no_operation(connection->raw());
        xcb_flush(connection->raw());
        return xcb_total_read(connection->raw()) >= before + kBothAnswers;
    }));
    EXPECT_TRUE(eventually([&] {
        g_main_context_iteration(nullptr, false);
        return place.has_value();
    }));
}

INSTANTIATE_TEST_SUITE_P(, WindowSurfaces,
    testing::Values(ManagerKind::openbox, ManagerKind::xfwm4, ManagerKind::metacity), managerName);

}
