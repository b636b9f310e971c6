#include "Hosts/Linux/Applications/AutostartItem.h"

#include <gmock/gmock.h>

#include "Tests/Support/FakeFiles.h"

namespace quorvel::xdg::x11 {

namespace {

using testing::HasSubstr;
using testing::Not;
using Status = LoginItem::Status;

constexpr char kFile[] = "/config/autostart/quorvel.desktop";

struct LoginItemTest : testing::Test {
    test::FakeFiles files;
    AutostartItem item{files, kFile, "/bin/sh"};

    std::string file() { return files.bytes(kFile).value_or("none"); }
    Status statusWith(const std::string& lines)
    {
        files.put(kFile, "[Desktop Entry]\n" + lines);
        return item.status();
    }
};

}

TEST_F(LoginItemTest, aSessionStartsWhatIsThereAndNotHidden)
{
    EXPECT_EQ(item.status(), Status::notRegistered);
    EXPECT_EQ(statusWith("Exec=/bin/sh\n"), Status::enabled);
    EXPECT_EQ(statusWith("Exec=sh -c true\nHidden=false\n"), Status::enabled);
    EXPECT_EQ(statusWith("Exec=/bin/sh\nHidden=true\n"), Status::notRegistered);
    EXPECT_EQ(statusWith("Exec=/bin/sh\nX-GNOME-Autostart-enabled=false\n"), Status::notRegistered);
    EXPECT_EQ(statusWith("Hidden=false\n"), Status::notRegistered);
    EXPECT_EQ(statusWith("Exec=/gone/quorvel\n"), Status::notRegistered);
    files.put(kFile, std::string("\0\xff[", 3));
    EXPECT_EQ(item.status(), Status::notRegistered);
}

// Faults: a command line that a session reads as something else, a user's own entry thrown away.
TEST_F(LoginItemTest, whatTheUserHasWrittenSurvivesSwitchingOffAndOn)
{
    EXPECT_TRUE(item.unregisterItem());
    EXPECT_EQ(file(), "none");
    EXPECT_TRUE(item.registerItem());
    EXPECT_EQ(item.status(), Status::enabled);
    EXPECT_THAT(file(), HasSubstr("\nTryExec=/bin/sh\nExec=\"/bin/sh\"\n"));

    statusWith("# mine\nName=Bar\nName[de]=Leiste\nExec=sh -c true\nX-Delay=3\n");
    EXPECT_TRUE(item.unregisterItem());
    EXPECT_EQ(item.status(), Status::notRegistered);
    EXPECT_TRUE(item.registerItem());
    EXPECT_EQ(item.status(), Status::enabled);
    for (auto* kept : {"# mine", "Name[de]=Leiste", "Exec=sh -c true", "X-Delay=3"})
        EXPECT_THAT(file(), HasSubstr(kept));
    EXPECT_THAT(file(), Not(HasSubstr("Hidden")));

    statusWith("Exec=/gone/quorvel\nX-GNOME-Autostart-enabled=false\n");
    EXPECT_TRUE(item.registerItem());
    EXPECT_EQ(item.status(), Status::enabled) << "the program has moved";

    AutostartItem odd{files, kFile, "/opt/100% \"$x\\/bar"};
    files.put(kFile, "");
    EXPECT_TRUE(odd.registerItem());
    EXPECT_THAT(file(), HasSubstr(R"(Exec="/opt/100%% \\"\\$x\\\\/bar")"));
}

TEST_F(LoginItemTest, aDiskThatRefusesIsReported)
{
    files.setReadOnly(true);
    EXPECT_FALSE(item.registerItem());
    EXPECT_EQ(item.status(), Status::notRegistered);
}

}
