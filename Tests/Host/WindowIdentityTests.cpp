#include "Hosts/X11/Applications/WindowIdentity.h"

#include <glib.h>
#include <gtest/gtest.h>

#include "Hosts/X11/Applications/DesktopEntries.h"
#include "Hosts/X11/Applications/DesktopEntryFile.h"
#include "Tests/Host/fixtures/InstalledApplications.h"
#include "Tests/Support/VirtualDispatch.h"

namespace quorvel::x11 {
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

TEST_F(WindowIdentities, findsDeclaredClassesInAnyLetterCase)
{
    installed.install("vendor-terminal", "StartupWMClass=XTerm\n");
    installed.install("ide-4711", "StartupWMClass=jetbrains-idea\n");
    installed.install("sublime-text", "");

    EXPECT_EQ(of("XTerm", "xterm"), "vendor-terminal");
    EXPECT_EQ(of("xterm", "x"), "vendor-terminal");
    EXPECT_EQ(of("jetbrains-idea", "sun-awt-X11-XFramePeer", "java"), "ide-4711");
    EXPECT_EQ(of("Sublime Text", "main"), "sublime-text");
    EXPECT_EQ(of("Other", "xterm"), "vendor-terminal");
}

TEST_F(WindowIdentities, tellsWebApplicationsFromTheirBrowser)
{
    installed.install("browser", "StartupWMClass=Browser\nExec=/opt/browser/browser %U\n");
    installed.install(
        "browser-mail", "StartupWMClass=crx_mail\nExec=/opt/browser/browser --app=mail\n");

    EXPECT_EQ(of("Browser", "crx_mail"), "browser-mail");
    EXPECT_EQ(of("Browser", "browser"), "browser");
    EXPECT_EQ(of("Browser", "crx_other"), "browser");
}

TEST_F(WindowIdentities, ofSeveralThatDeclareAClassPrefersTheOneOfThatNameThenAVisibleOne)
{
    installed.install("a-handler", "StartupWMClass=Mail\nNoDisplay=true\n");
    installed.install("b-compose", "StartupWMClass=Mail\n");
    EXPECT_EQ(of("Mail", "x"), "b-compose");

    installed.install("mail", "StartupWMClass=Mail\n");
    EXPECT_EQ(of("Mail", "x"), "mail");
}

TEST_F(WindowIdentities, findsApplicationsBehindScriptsInterpretersAndJavaByTheirCommand)
{
    installed.install("vendor-paint", "Exec=env LANG=C \"/opt/My Paint/paint\" %F\n");
    installed.install("vendor-notes", "Exec=python3 -O /usr/share/notes/notes.py\n");
    installed.install("vendor-refs", "Exec=java -cp /opt/refs.jar org.refs.Main %U\n");
    installed.install("org.example.Chat", "Exec=flatpak run --branch=stable org.example.Chat\n");
    installed.install("shell", "Exec=sh -c \"exec paint\"\n");

    EXPECT_EQ(of("Paint", "x"), "vendor-paint");
    EXPECT_EQ(of("Unknown", "unknown", "paint"), "vendor-paint");
    EXPECT_EQ(of("Notes", "notes.py", "python3.11"), "vendor-notes");
    EXPECT_EQ(of("org-refs-Main", "sun-awt-X11-XFramePeer", "java"), "vendor-refs");
    EXPECT_EQ(of("Chat", "chat"), "org.example.Chat");
    EXPECT_EQ(of("Sh", "x", "sh"), "sh") << "an interpreter is no application";
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
    EXPECT_EQ(of("", ""), "x11.7");
    EXPECT_EQ(of("\n\x1B\t", "\x7F"), "x11.7");

    const auto hostile = of(std::string(100'000, 'A') + '\0', "\xFF");
    EXPECT_LE(hostile.size(), 1024u);
    EXPECT_TRUE(g_utf8_validate(of("\xC3(\xFF", "").c_str(), -1, nullptr));
}

TEST(CommandName, survivesAnyCommandLine)
{
    EXPECT_EQ(commandName(""), "");
    EXPECT_EQ(commandName("env A=1 B=2"), "");
    EXPECT_EQ(commandName("\"/unfinished quote"), "unfinished quote");
    EXPECT_EQ(commandName("\"a\\"), "a\\");
    EXPECT_EQ(commandName("java -cp"), "");
    EXPECT_EQ(commandName("/usr/bin/"), "");
    EXPECT_EQ(commandName("/path/with=equals/tool.sh --x"), "tool");
}

}
}
