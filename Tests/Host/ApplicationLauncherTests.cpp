#include "Hosts/Linux/Applications/ApplicationLauncher.h"

#include <algorithm>
#include <csignal>
#include <map>
#include <memory>
#include <optional>
#include <set>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Hosts/Linux/Applications/LaunchRequest.h"
#include "Tests/Host/MainLoop.h"
#include "Tests/Host/fixtures/InstalledApplications.h"
#include "Tests/Host/fixtures/PrivateBus.h"

namespace quorvel::xdg::x11 {
namespace {

using namespace std::literals;

/// A program that writes down how it was started, and waits to be ended.
constexpr const char* kProbe = R"sh(#!/bin/sh
open=no
for number in 3 4 5 6 7 8 9; do [ -e /proc/$$/fd/2$number ] && open=yes; done
streams="$(/bin/readlink /proc/$$/fd/0 /proc/$$/fd/1 /proc/$$/fd/2 | /usr/bin/tr '\n' ' ')"
for word; do words="$words<$word>"; done
folder="$PWD"
read -r status < /proc/$$/stat
set -- $status
printf 'words=%s\nfolder=%s\nstartup=%s\ntoken=%s\nleader=%s\nopen=%s\nstreams=%s\nterminal=%s\n' \
    "$words" "$folder" "${DESKTOP_STARTUP_ID-none}" "${XDG_ACTIVATION_TOKEN-none}" \
    "$1 $5 $6" "$open" "$streams" "$TERMINAL_OF_TEST" > "$HOME/started/.$$"
/bin/mv "$HOME/started/.$$" "$HOME/started/$$"
exec /bin/sleep 600
)sh";

class ApplicationLauncherTest : public testing::Test {
protected:
    using Report = std::map<std::string, std::string>;

    ApplicationLauncherTest()
    {
        ::setenv("PATH", installed.path("bin").c_str(), 1);
        ::setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent", 1);
        std::filesystem::create_directories(installed.path("started"));
        install("probe", kProbe);
        launcher.emplace([this](const std::string& file) { failed.push_back(file); });
    }

public:
    ~ApplicationLauncherTest() override
    {
        for (auto& report : std::filesystem::directory_iterator{installed.path("started")})
            ::kill(std::stoi(report.path().filename()), SIGKILL);
        ::setenv("PATH", searchPath.c_str(), 1);
        ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
    }

protected:
    std::string install(const std::string& program, std::string_view script)
    {
        auto file = installed.write("bin/" + program, script);
        ::chmod(file.c_str(), 0700);
        return file;
    }
    std::string entry(const std::string& lines, const std::string& id = "probe")
    {
        return installed.install(id, lines);
    }
    /// Of the programs that were started, in any order, once there are so many.
    std::vector<Report> reports(std::size_t count = 1)
    {
        std::vector<Report> all;
        eventually([&] { return (all = read()).size() >= count || !failed.empty(); });
        EXPECT_EQ(all.size(), count);
        all.resize(count);
        return all;
    }
    std::vector<Report> read() const
    {
        std::vector<Report> all;
        for (auto& file : std::filesystem::directory_iterator{installed.path("started")}) {
            if (file.path().filename().string().starts_with('.'))
                continue;
            auto& report = all.emplace_back();
            std::ifstream lines{file.path()};
            for (std::string line; std::getline(lines, line);)
                report[line.substr(0, line.find('='))] = line.substr(line.find('=') + 1);
        }
        return all;
    }
    /// What is said on standard error until the launch has failed.
    std::string failure(const LaunchRequest& request)
    {
        failed.clear();
        testing::internal::CaptureStderr();
        launcher->start(request);
        EXPECT_TRUE(eventually([&] { return !failed.empty(); }));
        EXPECT_EQ(failed, std::vector{request.desktopFile});
        return testing::internal::GetCapturedStderr();
    }

    const std::string searchPath = std::getenv("PATH");
    test::InstalledApplications installed;
    std::vector<std::string> failed;
    std::optional<ApplicationLauncher> launcher;
};

// Faults: a program that dies with the bar's terminal or its output's reader, or keeps the bar's
// files open; one that finds itself in the folder of whoever started the bar; a window that comes
// without the focus.
TEST_F(ApplicationLauncherTest, sharesNothingWithAProgramButTheEnvironment)
{
    const int kept = ::fcntl(STDERR_FILENO, F_DUPFD, 23); // not closed by starting a program
    launcher->start({.desktopFile = entry("Exec=probe\n"), .token = "token_TIME7"});

    auto report = reports().front();
    ::close(kept);
    EXPECT_EQ(report["folder"], installed.path("").substr(0, installed.path("").size() - 1));
    EXPECT_EQ(report["startup"], "token_TIME7");
    EXPECT_EQ(report["token"], "token_TIME7");
    EXPECT_EQ(report["open"], "no");
    EXPECT_EQ(report["streams"], "/dev/null /dev/null /dev/null ");
    const auto process = report["leader"].substr(0, report["leader"].find(' '));
    EXPECT_EQ(report["leader"], process + ' ' + process + ' ' + process)
        << "process, group, session";

    launcher.reset();
    EXPECT_EQ(::kill(std::stoi(process), 0), 0);
}

// Faults: a token that a shell in the new terminal passes on for hours; the bar's own.
TEST_F(ApplicationLauncherTest, givesTheTokenOnlyToWhoeverUsesItUp)
{
    ::setenv("DESKTOP_STARTUP_ID", "of the bar", 1);
    launcher->start({.desktopFile = entry("Exec=probe 1\nStartupNotify=false\n"), .token = "t"});
    launcher->start({.desktopFile = entry("Exec=probe 2\nCategories=System;TerminalEmulator;\n"),
        .token = "t"});
    launcher->start({.desktopFile = entry("Exec=probe 3\nCategories=TerminalEmulator;\n"
                                          "StartupNotify=true\n"),
        .token = "t"});
    std::map<std::string, std::string> startup;
    for (auto& report : reports(3))
        startup[report["words"]] = report["startup"];
    ::unsetenv("DESKTOP_STARTUP_ID");

    EXPECT_EQ(startup, (decltype(startup){{"<1>", "none"}, {"<2>", "none"}, {"<3>", "t"}}));
}

// Faults: files that only the first of several programs gets; an address that is taken for a path;
// a text that is none and is said to be opened.
TEST_F(ApplicationLauncherTest, startsAProgramForEachFileOrAddressWhereItTakesOne)
{
    for (const auto* nothing : {"no address", "nobodys-scheme:page", ""})
        EXPECT_FALSE(ApplicationLauncher::handlerOf(nothing)) << nothing;
    launcher->start({.desktopFile = entry("Exec=probe %f --name=%c\nName=A \"b\"\nPath=/usr\n"),
        .files = {"/a b", "/c'd", "sample:page?x=1"}});

    std::set<std::string> words;
    for (auto& report : reports(3)) {
        words.insert(report["words"]);
        EXPECT_EQ(report["folder"], "/usr");
    }
    EXPECT_EQ(words,
        (std::set{"</a b><--name=A \"b\">"s, "</c'd><--name=A \"b\">"s,
            "<sample:page?x=1><--name=A \"b\">"s}));
}

// Faults: a program without a window, since nobody opened a terminal for it; a terminal that gets
// the whole command as one word.
TEST_F(ApplicationLauncherTest, runsATerminalProgramInTheTerminalThatThereIs)
{
    const auto monitor = entry("Exec=probe 'two words' %f\nTerminal=true\n");
    EXPECT_NE(failure({.desktopFile = monitor}).find("terminal"), std::string::npos);

    failed.clear();
    install("xfce4-terminal",
        "#!/bin/sh\nTERMINAL_OF_TEST=\"xfce $1\"; export TERMINAL_OF_TEST\n"
        "shift; exec \"$@\"\n");
    launcher->start({.desktopFile = monitor, .files = {"/a b"}});
    auto report = reports().front();
    EXPECT_EQ(report["terminal"], "xfce -x");
    EXPECT_EQ(report["words"], "<two words></a b>");

    install("xdg-terminal-exec",
        "#!/bin/sh\nTERMINAL_OF_TEST=chosen; export TERMINAL_OF_TEST\n"
        "exec \"$@\"\n");
    launcher->start({.desktopFile = entry("Exec=probe\nTerminal=true\nActions=top;\n"
                                          "[Desktop Action top]\nName=Top\nExec=probe top\n"),
        .action = "top"});
    auto all = reports(2);
    auto top = std::ranges::find_if(all, [](auto& one) { return one["words"] == "<top>"; });
    ASSERT_NE(top, all.end());
    EXPECT_EQ((*top)["terminal"], "chosen");
}

TEST_F(ApplicationLauncherTest, offersActionsThatCanBeStarted)
{
    const auto file = entry("Exec=probe\nActions=new;gone;nameless;idle;\n"
                            "[Desktop Action new]\nName=New\nExec=probe new\n"
                            "[Desktop Action nameless]\nExec=probe\n"
                            "[Desktop Action idle]\nName=Idle\n"
                            "[Desktop Action unlisted]\nName=Unlisted\nExec=probe\n");

    EXPECT_EQ(ApplicationLauncher::actions(file), (std::vector<ApplicationAction>{{"new", "New"}}));
    failure({.desktopFile = file, .action = "unlisted"});
    failed.clear();
    launcher->start({.desktopFile = file, .action = "new"});
    EXPECT_EQ(reports().front()["words"], "<new>");
}

// Fault: nothing happens on a click, and nobody says why.
TEST_F(ApplicationLauncherTest, tellsWhatCannotBeStarted)
{
    install("no-interpreter", "#!/nonexistent/interpreter\n");
    install("no-library", "#!/bin/sh\nexit 127\n");
    install("unhappy", "#!/bin/sh\nexit 1\n");
    const std::pair<std::string, std::string> cases[]{
        {"Exec=missing-program\n", "missing-program is not installed"},
        {"Exec=probe\nTryExec=/missing/part\n", "/missing/part is not installed"},
        {"Exec=no-interpreter\n", "no-interpreter"},
        {"Exec=no-library\n", "missing"},
        {"Exec=probe \"open\n", "command line"},
        {"Comment=nothing\n", "names no program"},
        {"Exec=probe\nPath=/missing/folder\n", "/missing/folder"},
    };
    for (auto& [lines, reason] : cases) {
        const auto said = failure({.desktopFile = entry(lines + "Name[C]=The Probe\n")});
        EXPECT_NE(said.find("cannot start The Probe: "), std::string::npos) << said;
        EXPECT_NE(said.find(reason), std::string::npos) << said;
    }
    ASSERT_EQ(::mkfifo(installed.path("user/applications/pipe.desktop").c_str(), 0600), 0);
    failure({.desktopFile = installed.path("user/applications/pipe.desktop")});
    failure({.desktopFile = installed.path("absent.desktop")});

    failed.clear();
    launcher->start({.desktopFile = entry("Exec=unhappy\n")});
    launcher->start({.desktopFile = entry("Exec=probe\n")});
    reports();
    EXPECT_TRUE(failed.empty()) << "a program that ran may end as it likes";
}

/// An application on the session bus that writes down what it is told.
class BusApplication {
public:
    explicit BusApplication(const test::PrivateBus& bus) : m_connection(bus.connect())
    {
        const std::unique_ptr<GDBusNodeInfo, FreeWith<g_dbus_node_info_unref>> node{
            g_dbus_node_info_new_for_xml(
                "<node><interface name='org.freedesktop.Application'>"
                "<method name='Activate'><arg type='a{sv}' direction='in'/></method>"
                "<method name='Open'><arg type='as' direction='in'/>"
                "<arg type='a{sv}' direction='in'/></method>"
                "<method name='ActivateAction'><arg type='s' direction='in'/>"
                "<arg type='av' direction='in'/><arg type='a{sv}' direction='in'/></method>"
                "</interface></node>",
                nullptr)};
        static const GDBusInterfaceVTable table{&BusApplication::onCall, nullptr, nullptr, {}};
        g_dbus_connection_register_object(m_connection.get(), "/org/example/My_App",
            node->interfaces[0], &table, this, nullptr, nullptr);
    }
    void takeName()
    {
        const GVariantHandle answer{g_dbus_connection_call_sync(m_connection.get(),
            "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
            g_variant_new("(su)", "org.example.My-App", 4u), nullptr, G_DBUS_CALL_FLAGS_NONE, -1,
            nullptr, nullptr)};
    }
    std::vector<std::string> calls;

private:
    static void onCall(GDBusConnection*, const char*, const char*, const char*, const char* method,
        GVariant* parameters, GDBusMethodInvocation* invocation, gpointer self)
    {
        const GText text{g_variant_print(parameters, false)};
        static_cast<BusApplication*>(self)->calls.push_back(method + " "s + text.get());
        g_dbus_method_invocation_return_value(invocation, nullptr);
    }

    GObjectHandle<GDBusConnection> m_connection;
};

// Faults: an application that starts by message is run a second time as a program; one whose
// service is not there, or whose bus hangs, is not started at all.
TEST_F(ApplicationLauncherTest, sendsAMessageToWhomTheBusStarts)
{
    ::setenv("PATH", searchPath.c_str(), 1); // where the bus is
    test::PrivateBus bus;
    ::setenv("PATH", installed.path("bin").c_str(), 1);
    BusApplication application{bus};
    const auto file = entry("Exec=probe %f\nDBusActivatable=true\nActions=new;\n"
                            "[Desktop Action new]\nName=New\n",
        "org.example.My-App");
    launcher.emplace([this](const std::string& failing) { failed.push_back(failing); });
    ASSERT_TRUE(eventually([&] { return launcher->isOnTheBus(); }));

    launcher->start({.desktopFile = file}); // no such name on the bus yet
    reports(1);
    application.takeName();
    launcher->start({.desktopFile = file, .token = "t"});
    launcher->start({.desktopFile = file, .files = {"/a b"}});
    launcher->start({.desktopFile = file, .action = "new"});
    ASSERT_TRUE(eventually([&] { return application.calls.size() == 3; }));
    EXPECT_EQ(application.calls,
        (std::vector{"Activate ({'desktop-startup-id': <'t'>, 'activation-token': <'t'>},)"s,
            "Open (['file:///a%20b'], {})"s, "ActivateAction ('new', [], {})"s}));
    EXPECT_EQ(read().size(), 1u);

    const auto only = entry("DBusActivatable=true\n", "org.example.Absent");
    EXPECT_NE(failure({.desktopFile = only}).find("org.example.Absent"), std::string::npos);

    bus.stop();
    failed.clear();
    launcher.emplace([this](const std::string& failing) { failed.push_back(failing); });
    launcher->start({.desktopFile = file});
    reports(2);
}

}
}
