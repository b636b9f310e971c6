#include "Tests/X11/Support/DesktopFixture.h"
#include "Tests/X11/Support/ScreenReader.h"

namespace quorvel::x11tests {

/// What is shown is the same under every manager.
class AccessibleBar : public testing::Test, public DesktopFixture {
protected:
    AccessibleBar() : DesktopFixture(ManagerKind::openbox) { }

    static testing::AssertionResult hears(
        ScreenReader& reader, const std::string& event, const std::string& text)
    {
        auto answer = eventually([&] { return reader.hasHeard(event, text); });
        return answer << event << " of " << text;
    }
};

// Faults: ATK in every bar's memory; a name, a focus or an end that nobody is told of; a place that
// is not the chip's; a press or a wish for the keyboard that does nothing; bars that nobody sees; a
// question for what has gone, or the end of whoever asked, that takes the bar along.
TEST_F(AccessibleBar, isReadAndPressedByAScreenReaderThatMayDie)
{
    Client client{server};
    const auto first = client.open({.title = "first"});
    Client other{server};
    const auto second = other.open({.title = "second", .applicationClass = "Other"});
    Bar bar{server};
    ASSERT_TRUE(bar.appears());
    ASSERT_TRUE(eventually(desktop.activation(second)));
    ASSERT_TRUE(settles(bar));
    const auto libraries = "/proc/" + std::to_string(bar.process().pid()) + "/maps";
    EXPECT_EQ(readFile(libraries).find("libatk"), std::string::npos);

    ScreenReader reader{server};
    ScreenReader::Element chip;
    ASSERT_TRUE(eventually([&] { return (chip = reader.find("quorvel", "first")) != nullptr; }));
    const auto otherChip = reader.find("quorvel", "second");
    ASSERT_TRUE(otherChip);
    EXPECT_TRUE(ScreenReader::has(otherChip, ATSPI_STATE_CHECKED));
    EXPECT_EQ(ScreenReader::frame(chip), bar.state().chipFrame(first));
    const ScreenReader::Element program{atspi_accessible_get_application(chip.get(), nullptr)};
    EXPECT_EQ(ScreenReader::name(program), "Quorvel");

    client.setTitle(first, "renamed");
    EXPECT_TRUE(hears(reader, "object:property-change:accessible-name", "renamed"));
    EXPECT_NE(ScreenReader::name(chip).find("renamed"), std::string::npos);

    EXPECT_TRUE(ScreenReader::perform(chip, "Activate"));
    EXPECT_TRUE(becomesActive(first));
    EXPECT_TRUE(hears(reader, "object:state-changed:checked:on", "renamed"));
    EXPECT_TRUE(hears(reader, "object:state-changed:checked:off", "second"));
    EXPECT_TRUE(ScreenReader::has(chip, ATSPI_STATE_CHECKED));

    EXPECT_TRUE(ScreenReader::takeFocus(otherChip));
    EXPECT_TRUE(eventually([&] { return ScreenReader::has(otherChip, ATSPI_STATE_FOCUSED); }));
    EXPECT_EQ(desktop.activeWindow(), first);
    EXPECT_EQ(reader.surfacesOf("quorvel"), 1U) << "the bars of hidden desktops are no surfaces";

    const auto count = reader.elementsOf("quorvel").size();
    client.destroy(first);
    EXPECT_TRUE(hears(reader, "object:children-changed:remove", "Quorvel"));
    EXPECT_FALSE(ScreenReader::perform(chip, "Activate"));
    EXPECT_EQ(reader.elementsOf("quorvel").size(), count - 1);
    EXPECT_TRUE(reader.find("quorvel", "second"));

    reader.killService();
    other.setTitle(second, "still followed");
    EXPECT_TRUE(settles(bar));
}

}
