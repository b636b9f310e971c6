#include "Hosts/Linux/Applications/DesktopEntries.h"

#include <glib.h>
#include <gtest/gtest.h>

#include "Tests/Host/MainLoop.h"
#include "Tests/Host/fixtures/InstalledApplications.h"
#include "Tests/Support/VirtualDispatch.h"

namespace quorvel::xdg::x11 {
namespace {

using namespace std::literals;
using test::InstalledApplications;
using test::VirtualDispatch;

TEST(DesktopEntries, theFirstFolderWinsAndCanHideWhatIsInstalledLater)
{
    InstalledApplications installed;
    VirtualDispatch dispatch;
    installed.write(
        "more/applications/both.desktop", "[Desktop Entry]\nType=Application\nName=Second");
    installed.write(
        "system/applications/both.desktop", "[Desktop Entry]\nType=Application\nName=First");
    installed.write(
        "system/applications/gone.desktop", "[Desktop Entry]\nType=Application\nName=Gone");
    installed.write("user/applications/gone.desktop", "[Desktop Entry]\nHidden=true");
    installed.write("system/applications/kde/deep/tool.desktop",
        "[Desktop Entry]\nType=Application\nName=Tool");
    DesktopEntries entries{dispatch};

    EXPECT_EQ(entries.name("both"), "First");
    EXPECT_EQ(entries.path("both"), installed.path("system/applications/both.desktop"));
    EXPECT_EQ(entries.path("gone"), std::nullopt);
    EXPECT_EQ(entries.name("kde-deep-tool"), "Tool");
    EXPECT_EQ(entries.path("../more/applications/both"), std::nullopt);
}

TEST(DesktopEntries, tellsOfNewApplicationsOnceWhenThingsHaveSettled)
{
    InstalledApplications installed;
    VirtualDispatch dispatch;
    installed.install("old", "");
    DesktopEntries entries{dispatch};
    int changes = 0;
    const auto subscription = entries.changed.subscribe([&] { ++changes; });
    ASSERT_EQ(entries.path("new"), std::nullopt);

    installed.write("user/applications/mimeinfo.cache", "cache");
    installed.install("new", "");
    ASSERT_TRUE(eventually([&] { return dispatch.pendingTimers() > 0; }));
    EXPECT_EQ(entries.path("new"), std::nullopt) << "the old state holds until things have settled";
    dispatch.advance(DesktopEntries::kSettleTime);

    EXPECT_EQ(changes, 1);
    EXPECT_TRUE(entries.path("new"));
}

}
}
