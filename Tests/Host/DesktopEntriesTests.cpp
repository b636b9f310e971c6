#include "Hosts/Linux/Applications/DesktopEntries.h"

#include <chrono>
#include <functional>

#include <glib.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "Hosts/Linux/Applications/DesktopEntryFile.h"
#include "Tests/Host/MainLoop.h"
#include "Tests/Host/fixtures/InstalledApplications.h"
#include "Tests/Support/VirtualDispatch.h"

namespace quorvel::xdg::x11 {
namespace {

using namespace std::literals;
using test::InstalledApplications;
using test::VirtualDispatch;

std::optional<DesktopEntryFile> parse(
    std::string_view bytes, std::vector<std::string> languages = {})
{
    return parseDesktopEntry(bytes, languages);
}

TEST(DesktopEntryFile, readsWhatOtherProgramsReadAndNoActionsIntoIt)
{
    const auto entry = parse("\xEF\xBB\xBF# comment\n\n[Desktop Entry]\r\n"
                             "Type = Application\r\nName=Editor\r\nIcon=edit\\sor\r\n"
                             "Exec=edit\\\\ %U\r\nStartupWMClass=Edit\r\nNoDisplay=true\r\n"
                             "[Desktop Action new]\nName=New Window\nExec=other\nHidden=true");

    EXPECT_EQ(entry, (DesktopEntryFile{"Editor", "edit or", "edit\\ %U", "Edit", false, true}));
}

TEST(DesktopEntryFile, takesTheNameOfTheBestLanguageWhereverItStands)
{
    constexpr std::string_view bytes
        = "[Desktop Entry]\nName[fr]=Rouge\nName[de]=Rot\nName=Red\nName[de_AT]=Roth\nNameX=no\n";

    EXPECT_EQ(parse(bytes, {"de_AT", "de"})->name, "Roth");
    EXPECT_EQ(parse(bytes, {"de_CH", "de"})->name, "Rot");
    EXPECT_EQ(parse(bytes, {"ja", "fr"})->name, "Rouge");
    EXPECT_EQ(parse(bytes, {"ja"})->name, "Red");
    EXPECT_EQ(parse("[Desktop Entry]\nName[fr]=Rouge\n", {"ja"})->name, "");
}

TEST(DesktopEntryFile, losesNoMoreThanTheBadLine)
{
    const auto entry = parse("junk\n[Broken\n[Desktop Entry]\nno equals sign\n=no key\n"
                             "Name=First\nName=Second\nComment="
        + std::string(100'000, 'x') + "\nIcon=" + std::string(kLongestEntryValue + 1, 'y')
        + "\nExec=a\0b\nStartupWMClass=Tail\\"s);
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->name, "Second");
    EXPECT_EQ(entry->icon, "");
    EXPECT_EQ(entry->startupWMClass, "Tail\\");

    EXPECT_EQ(parse("[Desktop Entry]\nName=a\xFF\xFE z\n")->name, "a\uFFFD\uFFFD z");
    EXPECT_EQ(parse("[Desktop Entry]\nType=Link\nName=Web\n"), std::nullopt);
    EXPECT_EQ(parse("Name=outside\n"), std::nullopt);
    EXPECT_EQ(parse(""), std::nullopt);
}

TEST(DesktopEntries, theFirstFolderWinsAndCanHideWhatIsInstalledLater)
{
    InstalledApplications installed;
    VirtualDispatch dispatch;
    installed.write("more/applications/both.desktop", "[Desktop Entry]\nName=Second");
    installed.write("system/applications/both.desktop", "[Desktop Entry]\nName=First");
    installed.write("system/applications/gone.desktop", "[Desktop Entry]\nName=Gone");
    installed.write("user/applications/gone.desktop", "[Desktop Entry]\nHidden=true");
    installed.write("system/applications/kde/deep/tool.desktop", "[Desktop Entry]\nName=Tool");
    DesktopEntries entries{dispatch};

    EXPECT_EQ(entries.name("both"), "First");
    EXPECT_EQ(entries.path("both"), installed.path("system/applications/both.desktop"));
    EXPECT_EQ(entries.path("gone"), std::nullopt);
    EXPECT_EQ(entries.name("kde-deep-tool"), "Tool");
    EXPECT_EQ(entries.path("../more/applications/both"), std::nullopt);
}

TEST(DesktopEntries, isNotHeldUpByPipesAndFoldersThatLinkToThemselves)
{
    InstalledApplications installed;
    VirtualDispatch dispatch;
    installed.install("good", "Icon=star\n");
    ASSERT_EQ(::mkfifo(installed.path("user/applications/pipe.desktop").c_str(), 0600), 0);
    std::filesystem::create_directory_symlink(
        installed.path("user/applications"), installed.path("user/applications/loop"));
    std::filesystem::create_symlink("/dev/zero", installed.path("user/applications/zero.desktop"));
    DesktopEntries entries{dispatch};

    EXPECT_EQ(entries.bundleIdentifier({{}, "Unknown", "unknown", {}, 1}), "unknown");
    EXPECT_EQ(entries.icon(entries.path("good").value_or("")), "star");
    EXPECT_EQ(entries.path("pipe"), std::nullopt);
    EXPECT_EQ(entries.path("zero"), std::nullopt);
    EXPECT_EQ(entries.icon(installed.path("user/applications/pipe.desktop")), std::nullopt);
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

TEST(DesktopEntries, findsWhatComesIntoFoldersThatDidNotExist)
{
    InstalledApplications installed;
    VirtualDispatch dispatch;
    std::filesystem::create_directories(installed.path("user"));
    std::filesystem::create_directories(installed.path("system/applications"));
    DesktopEntries entries{dispatch};
    ASSERT_EQ(entries.path("new"), std::nullopt);

    installed.install("new", "");
    ASSERT_TRUE(eventually([&] { return dispatch.pendingTimers() > 0; }));
    dispatch.advance(DesktopEntries::kSettleTime);
    EXPECT_TRUE(entries.path("new"));

    installed.write("system/applications/vendor/tool.desktop", "[Desktop Entry]\nName=Tool");
    ASSERT_TRUE(eventually([&] { return dispatch.pendingTimers() > 0; }));
    dispatch.advance(DesktopEntries::kSettleTime);
    EXPECT_TRUE(entries.path("vendor-tool"));
}

}
}
