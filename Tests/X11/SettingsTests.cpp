#include <filesystem>
#include <fstream>

#include "Tests/X11/Support/DesktopFixture.h"

namespace quorvel::x11tests {

class Settings : public testing::Test, protected DesktopFixture {
protected:
    Settings() : DesktopFixture(ManagerKind::openbox) { }

    CommandResult run(const std::vector<std::string>& arguments) const
    {
        return runProgram(server.environment(), server.folder(), arguments);
    }
    /// Whether the work area ends at the top of a bar of this height.
    testing::AssertionResult barTakes(int height)
    {
        return eventually(2s, [&] { return desktop.workArea().bottom() == 800 - height; });
    }
};

// Faults: a size that is only drawn, a strip of the old height, a change that is not kept.
TEST_F(Settings, anotherSizeIsTakenAtOnceAndKept)
{
    {
        Bar bar(server);
        ASSERT_TRUE(bar.appears());
        EXPECT_TRUE(barTakes(36));
        for (const auto& [size, height] : {std::pair{"xxl", 66}, {"small", 30}, {"large", 44}}) {
            EXPECT_EQ(run({"--set", std::string("barSize=") + size}).status, 0);
            EXPECT_TRUE(barTakes(height)) << desktop.workArea().bottom();
            const auto state = bar.state();
            ASSERT_TRUE(state && state->visiblePanel());
            EXPECT_EQ(state->visiblePanel()->frame.y, 800 - height);
        }
        EXPECT_EQ(run({"--set", "barSize=huge"}).status, 1);
    }
    Bar next(server);
    ASSERT_TRUE(next.appears());
    EXPECT_TRUE(barTakes(44));
    EXPECT_EQ(run({"--get", "barSize"}).output, "\"large\"\n");
    EXPECT_EQ(run({"--get", "groupWindowsByApp"}).output, "false\n") << "as the file had it";
}

// Fault: a bar that does not come up, or ends, because it cannot keep its settings.
TEST_F(Settings, aFileInPlaceOfTheFolderStopsNothing)
{
    const auto folder = server.settingsFile().parent_path();
    std::filesystem::remove_all(folder);
    std::ofstream(folder) << "in the way";
    Bar bar(server);
    ASSERT_TRUE(bar.appears());
    EXPECT_EQ(run({"--set", "barSize=xl"}).status, 1) << "it is not saved";
    EXPECT_TRUE(barTakes(54));
    EXPECT_EQ(run({"--quit"}).status, 0);
    EXPECT_EQ(bar.process().waitForEnd(5s), 0);
    EXPECT_TRUE(std::filesystem::is_regular_file(folder));
}

}
