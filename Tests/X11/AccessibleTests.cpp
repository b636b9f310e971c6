#include "Tests/X11/Support/DesktopFixture.h"
#include "Tests/X11/Support/ScreenReader.h"

namespace quorvel::x11tests {

/// What is shown is the same under every manager.
class AccessibleBar : public testing::Test, public DesktopFixture {
protected:
    AccessibleBar() : DesktopFixture(ManagerKind::openbox) { }

    /// The reader comes to know it by what it is told.
    template <typename Condition> testing::AssertionResult hears(Condition condition)
    {
        return eventually(5s, [&] {
            ScreenReader::listen();
            return condition();
        });
    }
    testing::AssertionResult becomesActive(xcb_window_t window)
    {
        return eventually(3s, [&] { return desktop.activeWindow() == window; });
    }
    static bool hasChip(const Bar& bar, xcb_window_t window)
    {
        const auto state = bar.state();
        return state && state->chipOf(window);
    }
};

// Faults: ATK in every bar's memory; a name, a focus or an end that nobody is told of; a place that
// is not the chip's; a press that does nothing; a question for what has gone, or the end of whoever
// asked, that takes the bar along.
TEST_F(AccessibleBar, isReadAndPressedByAScreenReaderThatMayDie)
{
    Client client{server};
    const auto first = client.open({.title = "first"});
    Client other{server};
    const auto second = other.open({.title = "second", .applicationClass = "Other"});
    Bar bar{server};
    ASSERT_TRUE(bar.appears());
    desktop.activate(second);
    ASSERT_TRUE(becomesActive(second));
    ASSERT_TRUE(settles(bar));
    const auto libraries = "/proc/" + std::to_string(bar.process().pid()) + "/maps";
    EXPECT_EQ(readFile(libraries).find("libatk"), std::string::npos);

    ScreenReader reader{server};
    ScreenReader::Element chip;
    ASSERT_TRUE(hears([&] { return (chip = reader.find("Quorvel", "first")) != nullptr; }));
    const auto otherChip = reader.find("Quorvel", "second");
    ASSERT_TRUE(otherChip);
    EXPECT_TRUE(ScreenReader::has(otherChip, ATSPI_STATE_CHECKED));
    EXPECT_EQ(ScreenReader::frame(chip), bar.state()->chipOf(first)->frame);

    client.setTitle(first, "renamed");
    EXPECT_TRUE(
        hears([&] { return ScreenReader::name(chip).find("renamed") != std::string::npos; }));

    EXPECT_TRUE(ScreenReader::perform(chip, "Activate"));
    EXPECT_TRUE(becomesActive(first));
    EXPECT_TRUE(hears([&] {
        return ScreenReader::has(chip, ATSPI_STATE_CHECKED)
            && !ScreenReader::has(otherChip, ATSPI_STATE_CHECKED);
    }));

    client.destroy(first);
    ASSERT_TRUE(eventually(3s, [&] { return !hasChip(bar, first); }));
    EXPECT_FALSE(ScreenReader::perform(chip, "Activate")); // it has not heard of the end yet
    EXPECT_TRUE(hears([&] { return !reader.find("Quorvel", "renamed"); }));
    EXPECT_TRUE(reader.find("Quorvel", "second"));

    reader.killService();
    other.setTitle(second, "still followed");
    EXPECT_TRUE(settles(bar));
}

}
