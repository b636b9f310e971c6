#include <algorithm>
#include <chrono>
#include <cstring>

#include "Tests/X11/Support/DesktopFixture.h"

namespace quorvel::x11tests {

class Popups : public UnderEachManager {
protected:
    void SetUp() override
    {
        for (const auto* title : {"first", "second"})
            windows.push_back(client.open({.title = title, .answersClose = true}));
        ASSERT_TRUE(bar.appears());
        ASSERT_TRUE(eventually([&] { return desktop.taskbarClients().size() == 2; }));
        activate(windows[1]);
        ASSERT_TRUE(settles(bar));
    }

    void activate(xcb_window_t window) { ASSERT_TRUE(eventually(desktop.activation(window))); }
    std::uint32_t numberOf(xcb_window_t window) const
    {
        const auto state = bar.state();
        const auto* const known = state.windowOf(window);
        return known ? known->id : 0;
    }
    void pointAtChip(xcb_window_t window) { pointer.moveTo(bar.state().chipFrame(window)); }
    /// The windows of which the popup shows pictures; empty while none is open.
    std::vector<std::uint32_t> shown() const
    {
        std::vector<std::uint32_t> numbers;
        for (const auto& card : bar.state().cards())
            numbers.push_back(card.window);
        return numbers;
    }
    testing::AssertionResult opens(const std::vector<std::uint32_t>& numbers)
    {
        return eventually([&] { return shown() == numbers; });
    }
    testing::AssertionResult closes() { return opens({}); }
    /// Once it has come to its place on the screen: a popup fades in, and slides from chip to chip.
    State::Card card(std::size_t index)
    {
        State::Card found;
        const auto isInPlace = [&] {
            const auto popup = bar.state().panel().popup;
            if (!popup || popup->cards.size() <= index)
                return false;
            found = popup->cards[index];
            const auto& button = found.closeButton;
            return found.frame.x >= popup->frame.x
                && found.frame.x + found.frame.width <= popup->frame.x + popup->frame.width
                && desktop.title(
                       desktop.windowAt(button.x + button.width / 2, button.y + button.height / 2))
                == "Windows";
        };
        EXPECT_TRUE(eventually(isInPlace));
        return found;
    }

    /// As its background, with which the X server paints again what it uncovers.
    void fill(xcb_window_t window, std::uint32_t colour)
    {
        auto* const x = client.connection().get();
        xcb_change_window_attributes(x, window, XCB_CW_BACK_PIXEL, &colour);
        xcb_clear_area(x, 0, window, 0, 0, 0, 0);
        client.connection().sync();
    }
    /// In the middle of the first card.
    testing::AssertionResult shows(std::uint32_t colour)
    {
        const auto place = card(0).frame;
        return eventually([&] {
            const auto pixel
                = desktop.picture({place.x + place.width / 2, place.y + place.height / 2, 1, 1});
            std::uint32_t shown = 0;
            std::memcpy(&shown, pixel.data(), std::min(pixel.size(), sizeof shown));
            return (shown & 0xFFFFFF) == colour;
        });
    }

    Client client{server};
    Bar bar{server};
    std::vector<xcb_window_t> windows;
};

// Faults: a picture that stands still, above all that of a covered window, which no drawing of its
// reaches the screen from; one that misses what was drawn last.
TEST_P(Popups, showWhatTheirWindowsDrawMeanwhile)
{
    client.place(windows[0], {220, 120, 200, 120});
    client.place(windows[1], {200, 100, 300, 200});
    pointAtChip(windows[0]);
    ASSERT_TRUE(opens({numberOf(windows[0])}));
    for (const auto colour : {0xFF0000U, 0x00FF00U, 0x0000FFU}) {
        fill(windows[0], colour);
        EXPECT_TRUE(shows(colour));
    }
    for (std::uint32_t colour = 1; colour <= 100; ++colour)
        fill(windows[0], colour);
    EXPECT_TRUE(shows(100));
    pointer.moveTo(5, 5);
    EXPECT_TRUE(closes());
    EXPECT_TRUE(settles(bar));
}

// Faults: a popup for a hand that only passes, none for one that rests; one that vanishes on the
// way to it or takes the focus; a card that brings another window, or closes it.
TEST_P(Popups, comeAtRestStayWhileUsedAndLeadToTheirWindows)
{
    const auto first = numberOf(windows[0]);
    const auto second = numberOf(windows[1]);

    const auto start = std::chrono::steady_clock::now();
    pointAtChip(windows[1]);
    ASSERT_TRUE(opens({second}));
    EXPECT_GE(std::chrono::steady_clock::now() - start, 200ms) << "for a hand that only passes";
    pointAtChip(windows[0]);
    ASSERT_TRUE(opens({first}));

    pointer.moveTo(card(0).frame);
    ASSERT_TRUE(staysTrue(400ms, [&] { return shown() == std::vector{first}; }));
    EXPECT_EQ(desktop.activeWindow(), windows[1]);
    pointer.click(card(0).frame);
    EXPECT_TRUE(becomesActive(windows[0]));
    EXPECT_TRUE(closes());

    pointAtChip(windows[1]);
    ASSERT_TRUE(opens({second}));
    pointer.moveTo(5, 5);
    EXPECT_TRUE(closes());

    pointAtChip(windows[1]);
    ASSERT_TRUE(opens({second}));
    pointer.click(card(0).closeButton);
    EXPECT_TRUE(eventually([&] {
        client.answerCloseRequests();
        return client.windows() == std::vector{windows[0]};
    }));
    EXPECT_TRUE(closes());
    pointer.moveTo(5, 5);
    EXPECT_TRUE(settles(bar));
}

QUORVEL_UNDER_EACH_MANAGER(Popups);

/// Who composes windows says so by a selection; here it is one that composes nothing.
class Compositor : public UnderOpenbox {
protected:
    void setRunning(bool isRunning)
    {
        auto& connection = compositor.connection();
        xcb_set_selection_owner(connection.get(), isRunning ? ground : XCB_NONE,
            connection.atom("_NET_WM_CM_S0"), XCB_CURRENT_TIME);
        connection.sync();
    }
    int depthOfBar()
    {
        const auto docks = desktop.docks();
        return docks.empty() ? 0 : desktop.depth(docks[0]);
    }

    Client compositor{server};
    xcb_window_t ground = compositor.open({.title = "ground", .frame = {0, 0, 1280, 700}});
};

// Faults: round corners that look jagged; a rim of the colour that lay there before.
TEST_F(Compositor, isNotNeededForSmoothCorners)
{
    const auto fill = [&](std::uint32_t colour) {
        auto* const x = compositor.connection().get();
        xcb_change_window_attributes(x, ground, XCB_CW_BACK_PIXEL, &colour);
        xcb_clear_area(x, 0, ground, 0, 0, 0, 0);
        compositor.connection().sync();
    };
    Bar bar{server};
    ASSERT_TRUE(bar.appears());
    ASSERT_TRUE(settles(bar));
    fill(0xFF0000);
    pointer.moveTo(bar.state().chipFrame(ground));
    ASSERT_TRUE(eventually([&] { return bar.state().panel().popup.has_value(); }));
    const auto popup = bar.state().panel().popup->frame;
    // Between the colour of the popup, which is grey, and that of what is pure in one channel.
    const auto mixedWith = [&](std::size_t channel) {
        const auto pixels = desktop.picture({popup.x, popup.y, 12, 12});
        int mixed = 0;
        for (std::size_t i = 0; i + 3 < pixels.size(); i += 4) {
            const auto value = [&](std::size_t c) { return int{std::uint8_t(pixels[i + c])}; };
            const auto other = value((channel + 1) % 3);
            mixed += value(channel) > other + 10 && value(channel) < 0xF0 ? 1 : 0;
        }
        return mixed;
    };
    EXPECT_TRUE(eventually([&] { return mixedWith(2) > 8; })) << "with red";
    fill(0x0000FF);
    EXPECT_TRUE(eventually([&] { return mixedWith(0) > 8 && mixedWith(2) == 0; })) << "with blue";
}

// Faults: black corners around an open popup whose compositor has gone; a bar that blurs, or does
// not, for ever after its first look; a shadow that darkens what lies beside either.
TEST_F(Compositor, mayComeAndGoAtAnyTime)
{
    Bar bar{server};
    ASSERT_TRUE(bar.appears());
    ASSERT_TRUE(settles(bar));
    auto supported = desktop.connection().numbers(desktop.connection().root(), "_NET_SUPPORTED");
    supported.push_back(desktop.connection().atom("_KDE_NET_WM_BLUR_BEHIND_REGION"));
    desktop.connection().setNumbers(
        desktop.connection().root(), "_NET_SUPPORTED", "ATOM", supported);
    setRunning(true);
    EXPECT_TRUE(eventually([&] { return depthOfBar() == 32; }));

    pointer.moveTo(bar.state().chipFrame(ground));
    Frame popup;
    ASSERT_TRUE(eventually([&] {
        popup = bar.state().panel().popup.value_or(State::Popup{}).frame;
        const auto window = desktop.windowAt(popup.x + popup.width / 2, popup.y + 4);
        return popup.width > 0 && desktop.title(window) == "Windows" && desktop.depth(window) == 32;
    }));
    const Frame corner{popup.x, popup.y, 1, 1};
    const auto behind = desktop.picture({1200, popup.y, 1, 1});
    ASSERT_TRUE(eventually([&] { return desktop.picture(corner) != behind; })) << "no popup";
    for (const auto y : {popup.y + 4, bar.state().panel().frame.y + 4}) {
        const auto window = desktop.windowAt(popup.x + popup.width / 2, y);
        EXPECT_EQ(desktop.connection().numbers(window, "_COMPTON_SHADOW"), std::vector{0U});
    }
    setRunning(false);
    EXPECT_TRUE(eventually([&] { return desktop.picture(corner) == behind; }));
    EXPECT_TRUE(eventually([&] { return depthOfBar() == 24; }));
    EXPECT_TRUE(settles(bar));
}

}
