#include "Hosts/Linux/Applications/WindowIdentity.h"

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

/// Applications as they are found installed, all side by side.
struct Installed {
    const char* id;
    const char* lines;
};
constexpr Installed kInstalled[]{
    // Classes in other letters, with blanks, in one word or several, and with a version.
    {"vendor-terminal", "StartupWMClass=XTerm\n"},
    {"sublime-text", "Exec=/opt/sublime/start\n"},
    {"photoshed", "Exec=/opt/photoshed/run %U\n"},
    {"Note_Taker", "Exec=/opt/note/start-notes\n"},
    {"vendor-cad", "StartupWMClass=Draft\nExec=cad-start\n"},
    {"etch-2.10", "Exec=etch-2.10 %U\n"},
    {"half-life", "Exec=hl\n"},
    // Reverse domain names.
    {"org.example.Files", "Exec=files --new-window\n"},
    {"org.example.desktop", "Exec=telephone\n"},
    {"viewer", "Exec=view\n"},
    // Web applications of a browser.
    {"browser", "StartupWMClass=Browser\nExec=/opt/browser/browser %U\n"},
    {"browser-mail", "StartupWMClass=crx_mail\nExec=/opt/browser/browser --app=mail\n"},
    // Java.
    {"ide-4711", "StartupWMClass=jetbrains-idea\nExec=\"/opt/ide/bin/idea.sh\" %f\n"},
    {"vendor-refs", "Exec=java -cp /opt/refs.jar org.refs.Main %U\n"},
    {"ledger", "Exec=/opt/ledger/ledger.sh\n"},
    {"com.example.chess.Main", "Exec=/opt/chess/start\n"},
    {"bad-java", "StartupWMClass=sun-awt-X11-XFramePeer\nExec=bad-java\n"},
    // Behind scripts, interpreters and package managers.
    {"vendor-paint", "Exec=env LANG=C \"/opt/My Paint/paint\" %F\n"},
    {"vendor-notes", "Exec=python3 -O /usr/share/notes/notes.py\n"},
    {"vendor-sketch", "Exec=sh -c \"cd /opt/sketch && exec ./sketch %F\"\n"},
    {"vendor-maps", "Exec=bash -lc '/opt/maps/maps --gpu'\n"},
    {"chat_chat", "Exec=env HINT=/x/chat_chat.desktop /snap/bin/chat %U\n"},
    {"radio-store", "Exec=/usr/bin/flatpak run --branch=stable org.example.Radio\n"},
    {"AppImageKit-5", "Exec=/opt/apps/Modeller-3.1.4-x86_64.AppImage %U\n"},
    {"vendor-slow", "Exec=nice -n 10 slowly\n"},
    // Several for one class.
    {"a-mail-handler", "StartupWMClass=Mail\nNoDisplay=true\n"},
    {"b-mail-compose", "StartupWMClass=Mail\n"},
    {"clock", "NoDisplay=true\n"},
    {"vendor-clock", "StartupWMClass=clock\n"},
    {"daemon", "NoDisplay=true\n"},
    {"daemon-handler", "StartupWMClass=daemon\nNoDisplay=true\n"},
    {"gone", "Hidden=true\n"},
};

struct Window {
    const char* wmClass;
    const char* instance;
    const char* executable;
    const char* expected;
};
constexpr Window kWindows[]{
    {"XTerm", "xterm", "xterm", "vendor-terminal"},
    {"xterm", "x", "xterm", "vendor-terminal"},
    {"Other", "xterm", "xterm", "vendor-terminal"},
    {"Sublime Text", "main", "electron", "sublime-text"},
    {"Photo Shed", "photo shed", "electron", "photoshed"},
    {"note-taker", "note-taker", "electron", "Note_Taker"},
    {"Draft-0.21.2", "draft", "cad-bin", "vendor-cad"},
    {"Draft-0.21.2", "x", "cad-bin", "vendor-cad"},
    {"Etch", "etch", "etch-bin", "etch-2.10"},
    {"Half-Life-2", "hl2", "hl2", "half-life-2"},
    {"Files", "files", "files", "org.example.Files"},
    {"files", "files", "files", "org.example.Files"},
    {"Desktop", "desktop", "x", "desktop"},
    {"org.example.Viewer", "x", "x", "viewer"},
    {"Browser", "crx_mail", "browser", "browser-mail"},
    {"Browser", "browser", "browser", "browser"},
    {"Browser", "crx_other", "browser", "browser"},
    {"jetbrains-idea", "sun-awt-X11-XFramePeer", "java", "ide-4711"},
    {"org-refs-Main", "sun-awt-X11-XFramePeer", "java", "vendor-refs"},
    {"com-example-ledger-Main", "sun-awt-X11-XFramePeer", "java", "ledger"},
    {"com-example-chess-Main", "sun-awt-X11-XFramePeer", "java", "com.example.chess.Main"},
    {"com-example-unknown-Main", "sun-awt-X11-XFramePeer", "java", "com-example-unknown-main"},
    {"Paint", "x", "x", "vendor-paint"},
    {"Unknown", "unknown", "paint", "vendor-paint"},
    {"Unknown", "unknown", "paint-bin", "vendor-paint"},
    {"Notes", "notes.py", "python3.11", "vendor-notes"},
    {"Sketch", "x", "x", "vendor-sketch"},
    {"Maps", "x", "x", "vendor-maps"},
    {"chat", "chat", "electron", "chat_chat"},
    {"Org.example.Radio", "x", "x", "radio-store"},
    {"Modeller", "modeller", "AppRun", "AppImageKit-5"},
    {"Slowly", "x", "x", "vendor-slow"},
    {"Sh", "x", "sh", "sh"},
    {"Mail", "x", "x", "b-mail-compose"},
    {"clock", "clock", "clock", "vendor-clock"},
    {"daemon", "daemon", "daemon", "daemon"},
};

// Faults: a rule that is missing, one that comes too early, one that guesses too much.
TEST_F(WindowIdentities, areThoseOfTheApplicationsThatPeopleHaveInstalled)
{
    for (const auto& application : kInstalled)
        installed.install(application.id, application.lines);
    for (const auto& window : kWindows)
        EXPECT_EQ(of(window.wmClass, window.instance, window.executable), window.expected)
            << window.wmClass << ' ' << window.instance << ' ' << window.executable;
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
    EXPECT_EQ(commandName("\"/unfinished quote"), "") << "nothing starts it";
    EXPECT_EQ(commandName("java -cp"), "");
    EXPECT_EQ(commandName("/usr/bin/"), "");
    EXPECT_EQ(commandName("/path/with=equals/tool.sh --x"), "tool");
}

}
}
