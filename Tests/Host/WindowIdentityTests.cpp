#include "Hosts/Linux/Applications/WindowIdentity.h"

#include <fstream>
#include <regex>

#include <glib.h>
#include <gtest/gtest.h>

#include "Hosts/Linux/Applications/DesktopEntries.h"
#include "Hosts/Linux/Applications/DesktopEntryFile.h"
#include "Tests/Host/fixtures/InstalledApplications.h"
#include "Tests/Support/VirtualDispatch.h"

namespace quorvel::xdg::x11 {
namespace {

class WindowIdentities : public testing::Test {
protected:
    /// The identifier of a window with this class and instance, and what else is known of it.
    std::string of(const std::string& windowClass, const std::string& instance,
        std::optional<std::string> executable = {}, std::optional<std::string> gtkId = {})
    {
        return DesktopEntries{dispatch}.bundleIdentifier(
            {std::move(gtkId), windowClass, instance, std::move(executable), 7});
    }

    test::InstalledApplications installed;
    test::VirtualDispatch dispatch;
};

TEST_F(WindowIdentities, believesTheApplicationIdMostAndThenTheExactClass)
{
    installed.install("org.example.Editor", "");
    installed.install("Editor", "");
    installed.install("editor", "");

    EXPECT_EQ(of("Editor", "editor", {}, "org.example.Editor"), "org.example.Editor");
    EXPECT_EQ(of("Editor", "editor", {}, "org.example.editor"), "org.example.Editor");
    EXPECT_EQ(of("Editor", "editor", {}, "org.example.Missing"), "Editor");
    EXPECT_EQ(of("editor", "Editor"), "editor");
}

// Faults: a rule that is missing, one that comes too early, one that guesses too much.
TEST_F(WindowIdentities, areThoseOfTheApplicationsThatPeopleHaveInstalled)
{
    const std::regex application{"([^ ]+): (.*)"};
    const std::regex window{"(.*) \\| (.*) \\| (.*) => (.*)"};
    std::ifstream file{QUORVEL_FIXTURES "/windows.txt"};
    int windows = 0;
    for (std::string line; std::getline(file, line);) {
        std::smatch is;
        if (line.starts_with('#'))
            continue;
        if (std::regex_match(line, is, window)) {
            EXPECT_EQ(of(is[1].str(), is[2].str(), is[3].str()), is[4].str()) << line;
            ++windows;
        } else if (std::regex_match(line, is, application)) {
            installed.install(
                is[1].str(), std::regex_replace(is[2].str(), std::regex{" ; "}, "\n") + '\n');
        }
    }
    EXPECT_GT(windows, 30);
    EXPECT_EQ(of("x", "x", {}, "org.example.Viewer"), "viewer");
    EXPECT_FALSE(DesktopEntries{dispatch}.path("gone"));
}

TEST_F(WindowIdentities, preferTheUsersOwnFile)
{
    const std::string lines = "[Desktop Entry]\nType=Application\nName=x\nStartupWMClass=Mail\n";
    installed.write("system/applications/a-mail.desktop", lines);
    installed.install("z-mail", "StartupWMClass=Mail\n");
    EXPECT_EQ(of("Mail", "x"), "z-mail");

    installed.write("more/applications/mail.desktop", lines);
    EXPECT_EQ(of("Mail", "x"), "mail") << "the one of that name";
}

TEST_F(WindowIdentities, doesNotGuessWhereACommandIsAmbiguous)
{
    installed.install("office-writer", "Exec=office --writer\n");
    installed.install("office-calc", "Exec=office --calc\n");
    EXPECT_EQ(of("Soffice", "x", "office"), "soffice");

    installed.install("viewer", "Exec=view-it\n");
    installed.install("viewer-handler", "Exec=view-it --handle %u\nNoDisplay=true\n");
    EXPECT_EQ(of("View-It", "x"), "viewer") << "a handler does not make it ambiguous";
}

TEST_F(WindowIdentities, namesWhatIsNotInstalledAndNeverNothing)
{
    EXPECT_EQ(of("MyTool", "instance", "exe"), "mytool");
    EXPECT_EQ(of("", "Instance", "exe"), "Instance");
    EXPECT_EQ(of("", "", "exe"), "exe");
    EXPECT_EQ(of("", ""), "window.7");
    EXPECT_EQ(of("\n\x1B\t", "\x7F"), "window.7");

    const auto hostile = of(std::string(100'000, 'A') + '\0', "\xFF");
    EXPECT_LE(hostile.size(), 1024u);
    EXPECT_TRUE(g_utf8_validate(of("\xC3(\xFF", "").c_str(), -1, nullptr));
}

TEST(CommandName, survivesAnyCommandLine)
{
    EXPECT_EQ(commandName(""), "");
    EXPECT_EQ(commandName("env A=1 B=2"), "");
    EXPECT_EQ(commandName("\"/unfinished quote"), "") << "nothing starts it";
    EXPECT_EQ(commandName("java -cp"), "");
    EXPECT_EQ(commandName("/usr/bin/"), "");
    EXPECT_EQ(commandName("/path/with=equals/tool.sh --x"), "tool");
}

}
}
