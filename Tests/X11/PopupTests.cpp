#include <chrono>

#include "Tests/X11/Support/DesktopFixture.h"

namespace quorvel::x11tests {

class Popups : public UnderEachManager {
protected:
    void SetUp() override
    {
        for (const auto* title : {"first", "second"})
            windows.push_back(client.open({.title = title, .answersClose = true}));
        ASSERT_TRUE(bar.appears());
        ASSERT_TRUE(eventually(5s, [&] { return desktop.taskbarClients().size() == 2; }));
        activate(windows[1]);
        ASSERT_TRUE(settles(bar));
    }

    void activate(xcb_window_t window)
    {
        desktop.activate(window);
        ASSERT_TRUE(eventually(2s, [&] { return desktop.activeWindow() == window; }));
    }
    std::uint32_t numberOf(xcb_window_t window) const
    {
        const auto state = bar.state();
        const auto* const known = state ? state->windowOf(window) : nullptr;
        return known ? known->id : 0;
    }
    void pointAtChip(xcb_window_t window)
    {
        const auto state = bar.state();
        ASSERT_TRUE(state && state->chipOf(window));
        pointer.moveTo(state->chipOf(window)->frame);
    }
    /// The windows of which the popup shows pictures; empty while none is open.
    std::vector<std::uint32_t> shown() const
    {
        std::vector<std::uint32_t> numbers;
        const auto state = bar.state();
        if (state && state->popup()) {
            for (const auto& card : state->popup()->cards)
                numbers.push_back(card.window);
        }
        return numbers;
    }
    testing::AssertionResult opens(const std::vector<std::uint32_t>& numbers)
    {
        return eventually(2s, [&] { return shown() == numbers; });
    }
    testing::AssertionResult closes() { return opens({}); }
    /// Once it has come to its place on the screen: a popup fades in, and slides from chip to chip.
    State::Card card(std::size_t index)
    {
        State::Card found;
        const auto isInPlace = [&] {
            const auto state = bar.state();
            const auto* const popup = state ? state->popup() : nullptr;
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
        EXPECT_TRUE(eventually(2s, isInPlace));
        return found;
    }

    Client client{server};
    Bar bar{server};
    std::vector<xcb_window_t> windows;
};

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
    EXPECT_TRUE(eventually(2s, [&] { return desktop.activeWindow() == windows[0]; }));
    EXPECT_TRUE(closes());

    pointAtChip(windows[1]);
    ASSERT_TRUE(opens({second}));
    pointer.moveTo(5, 5);
    EXPECT_TRUE(closes());

    pointAtChip(windows[1]);
    ASSERT_TRUE(opens({second}));
    pointer.click(card(0).closeButton);
    EXPECT_TRUE(eventually(2s, [&] {
        client.answerCloseRequests();
        return client.windows() == std::vector{windows[0]};
    }));
    EXPECT_TRUE(closes());
    pointer.moveTo(5, 5);
    EXPECT_TRUE(settles(bar));
}

QUORVEL_UNDER_EACH_MANAGER(Popups);

}
