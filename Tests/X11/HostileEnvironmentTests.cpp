#include <algorithm>
#include <array>
#include <atomic>
#include <fstream>
#include <memory>
#include <new>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "Hosts/Posix/ControlClient.h"
#include "Tests/Support/Sanitized.h"
#include "Tests/X11/Support/DesktopFixture.h"

namespace quorvel::x11tests {

using namespace std::literals;

/// Between processes; 0 at first.
class SharedCount {
public:
    SharedCount() = default;
    SharedCount(const SharedCount&) = delete;
    SharedCount& operator=(const SharedCount&) = delete;
    ~SharedCount() { ::munmap(m_count, sizeof *m_count); }

    void add() { ++*m_count; }
    int get() const { return *m_count; }

private:
    std::atomic<int>* const m_count = new (::mmap(nullptr, sizeof(std::atomic<int>),
        PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)) std::atomic<int>{0};
};

/// Of 32 bits each, as the server has them.
bool containsPixel(const std::string& picture, std::uint32_t color)
{
    for (std::size_t at = 0; at + 4 <= picture.size(); at += 4) {
        std::uint32_t pixel = 0;
        picture.copy(reinterpret_cast<char*>(&pixel), 4, at);
        if ((pixel & 0xFFFFFF) == color)
            return true;
    }
    return false;
}

bool isPlain(const std::string& picture)
{
    return picture.size() < 8 || picture.substr(4) == picture.substr(0, picture.size() - 4);
}

/// Where the bar can be talked to.
std::filesystem::path socketOf(const XServer& server)
{
    return server.folder() / "runtime/quorvel" / ("X" + server.display().substr(1) + ".socket");
}

int connectionThatSays(const std::string& path, std::string_view words)
{
    sockaddr_un address{AF_UNIX, {}};
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    const int connection = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (::connect(connection, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0)
        ::send(connection, words.data(), words.size(), MSG_NOSIGNAL);
    return connection;
}

/// Titles, and an icon now and then, as fast as they can be sent.
void changeUntil(const SharedCount& isOver, Client& noisy)
{
    const auto window = noisy.open({.title = "noisy", .applicationClass = "Noisy"});
    std::vector<std::uint32_t> icon(2 + 200 * 200, 0xFF00FF00);
    icon[0] = icon[1] = 200;
    for (int i = 0; !isOver.get(); ++i) {
        noisy.setTitle(window, "noisy " + std::to_string(i));
        if (i % 100 == 0)
            noisy.connection().setNumbers(window, "_NET_WM_ICON", "CARDINAL", icon);
    }
    noisy.setTitle(window, "calm");
}

/// What surrounds the bar is not the manager's: one is enough.
class HostileEnvironment : public UnderOpenbox {
protected:
    /// A bar that starts under these circumstances shows the window with its title.
    testing::AssertionResult shows(const Bar& bar, xcb_window_t window, const std::string& title)
    {
        return eventually([&]() -> testing::AssertionResult {
            const auto state = bar.state();
            const auto* const item = state.itemOf(window);
            if (!item || !state.chipOf(window))
                return testing::AssertionFailure() << "no chip: " << bar.log();
            return item->title == title
                ? testing::AssertionSuccess()
                : testing::AssertionFailure() << "its title is " << item->title;
        });
    }

    Client client{server};
    Environment deceived; ///< about the time of day
};

/// What is amiss around a bar, and how far it gets then.
struct Circumstance {
    Environment changes;
    bool keepsSettings = true;
    bool drawsAlike = true;
};

// Faults: a bar that cannot do without a home, a bus, fonts or a language, or says titles wrongly
// then or draws them otherwise; one that waits for the bus, or claims to have kept a setting.
TEST_F(HostileEnvironment, leavesABarThatShowsTheWindows)
{
    const auto title = std::string{"Grüße \u65E5\u672C \xF0\x9F\x98\x80"};
    const auto window = client.open({.title = title});
    std::ofstream(server.folder() / "no-fonts.conf")
        << "<?xml version='1.0'?><fontconfig></fontconfig>";
    const std::vector<Circumstance> circumstances{
        {{}},
        {{{"HOME", "/dev/null/home"}, {"XDG_CONFIG_HOME", ""}, {"XDG_DATA_HOME", ""},
             {"XDG_CACHE_HOME", ""}, {"XDG_STATE_HOME", ""}},
            false, false},
        {{{"HOME", "/proc"}, {"XDG_CONFIG_HOME", "/proc"}, {"XDG_CACHE_HOME", "/proc"},
             {"XDG_STATE_HOME", "/proc"}, {"XDG_DATA_HOME", "/proc"}},
            false, false},
        {{{"HOME", ""}}}, // the folders stay, or the bar would write into those of whoever tests
        {{{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/dev/null/bus"}}},
        {{{"DBUS_SESSION_BUS_ADDRESS", ""}}},
        {{{"FONTCONFIG_FILE", server.folder() / "no-fonts.conf"}}, true, false},
        {{{"LC_ALL", "C"}, {"LANG", ""}}},
        {{{"LC_ALL", "xx_YY.NO-SUCH-CHARSET"}, {"LANGUAGE", "xx"}}},
        {{{"CHARSET", "ISO-8859-1"}, {"LC_ALL", "C"}}}, // the former is GLib's own word for it
        {{{"PATH", "/dev/null"}}},
    };
    const auto chipOf
        = [&](const Bar& bar) { return desktop.picture(bar.state().chipFrame(window)); };
    std::string usual;
    for (const auto& [changes, keepsSettings, drawsAlike] : circumstances) {
        SCOPED_TRACE(changes.empty() ? "" : changes.begin()->first + '=' + changes.begin()->second);
        Bar bar(server, {}, changes);
        ASSERT_TRUE(bar.appears());
        EXPECT_TRUE(shows(bar, window, title));
        if (changes.empty()) {
            ASSERT_TRUE(eventually([&] {
                usual = chipOf(bar);
                return staysTrue(300ms, [&] { return chipOf(bar) == usual; });
            }));
        }
        EXPECT_TRUE(!drawsAlike || eventually([&] { return chipOf(bar) == usual; }));
        EXPECT_TRUE(eventually([&] { return !isPlain(chipOf(bar)); }));
        const std::string value
            = run({"--get", "showOnAllDisplays"}).output == "true\n" ? "false" : "true";
        const auto set = run({"--set", "showOnAllDisplays=" + value});
        EXPECT_EQ(set.status, keepsSettings ? 0 : 1) << set.error;
        const auto kept = readFile(server.settingsFile());
        EXPECT_TRUE(
            !keepsSettings || kept.find("\"showOnAllDisplays\": " + value) != std::string::npos)
            << kept;
    }
}

// Faults: anything that waits for a time of day, or takes one for another of the past.
TEST_F(HostileEnvironment, withAClockThatJumpsLeavesTheBarAtWork)
{
    if (kIsSanitized)
        GTEST_SKIP() << "what deceives about the time cannot be loaded before a sanitizer";
    const auto now = server.folder() / "now";
    const auto setClock = [&](const std::string& offset) {
        std::ofstream(now) << offset << '\n';
        const Outputs year{server.folder() / "year", {}};
        Process{{"date", "+%Y"}, deceived, year}.waitForEnd();
        return std::stoi(readFile(year.output));
    };
    for (const auto& folder : std::filesystem::directory_iterator{"/usr/lib"}) {
        const auto library = folder.path() / "faketime/libfaketimeMT.so.1";
        std::error_code error;
        if (std::filesystem::exists(library, error))
            deceived = {{"LD_PRELOAD", library}, {"FAKETIME_TIMESTAMP_FILE", now},
                {"FAKETIME_NO_CACHE", "1"}, {"DONT_FAKE_MONOTONIC", "1"}};
    }
    ASSERT_FALSE(deceived.empty()) << "libfaketime is not installed";
    const auto today = setClock("+0");
    Bar bar(server, {}, deceived);
    ASSERT_TRUE(bar.appears());
    EXPECT_NE(readFile("/proc/" + std::to_string(bar.process().pid()) + "/maps").find("faketime"),
        std::string::npos);
    for (const auto* offset : {"+20y", "-20y", "+0"}) {
        SCOPED_TRACE(offset);
        EXPECT_EQ(setClock(offset) != today, std::string_view{offset} != "+0");
        const auto window = client.open({.title = "before"});
        EXPECT_TRUE(shows(bar, window, "before"));
        client.setTitle(window, "after");
        EXPECT_TRUE(shows(bar, window, "after"));
        client.destroy(window);
        EXPECT_TRUE(eventually([&] { return !bar.state().chipOf(window); }));
    }
}

// Faults: a settings file cut short by a disk that is full; a bar that ends over it, or says
// nothing; an icon that is not shown because it cannot be kept.
TEST_F(HostileEnvironment, ofAFullDiskLosesNoSettings)
{
    const auto folder = server.settingsFile().parent_path();
    const std::vector<std::string> inNamespace{"unshare", "--user", "--map-root-user", "--mount"};
    auto attempt = inNamespace;
    attempt.insert(attempt.end(), {"mount", "-t", "tmpfs", "none", folder.string()});
    if (Process{attempt, server.environment(), {}}.waitForEnd() != 0)
        GTEST_SKIP() << "nobody may mount a disk here";
    const auto before = readFile(server.settingsFile());
    const auto drawing = server.folder() / "red.svg";
    std::ofstream(drawing) << "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'>"
                              "<rect width='9' height='9' fill='#f00'/></svg>";
    server.addApplication("red", "Red", "Exec=red\nIcon=" + drawing.string());
    const auto window = client.open({.title = "any", .applicationClass = "red"});
    // Disks of its own, which nobody else sees: one with the settings and no byte more.
    std::ofstream(server.folder() / "start") << R"(
fill() { mount -t tmpfs -o size=8k none "$1" && cp -r "$2/." "$1/" && ! cat /dev/zero 2>/dev/null > "$1/rest"; }
cp -r "$XDG_CONFIG_HOME" "$HOME/kept" && mkdir "$HOME/nothing" && fill "$XDG_CONFIG_HOME" "$HOME/kept" &&
fill "$XDG_STATE_HOME" "$HOME/nothing" && fill "$XDG_CACHE_HOME" "$HOME/nothing" && exec "$1"
)";
    const Outputs outputs{{}, server.folder() / "full.log"};
    auto start = inNamespace;
    start.insert(start.end(), {"sh", (server.folder() / "start").string(), QUORVEL_PROGRAM});
    Process bar(start, server.environment(), outputs);
    const auto answers = [&] { return run({"--state"}).status == 0; };
    const auto log = [&] { return readFile(outputs.error); };
    ASSERT_TRUE(eventually(answers)) << log();
    EXPECT_TRUE(eventually([&] {
        const auto state = State::parse(run({"--state"}).output);
        return state.chipOf(window)
            && containsPixel(desktop.picture(state.chipFrame(window)), 0xFF0000);
    })) << log();
    const auto set = run({"--set", "showChipTitles=false"});
    EXPECT_EQ(set.status, 1);
    EXPECT_NE(set.error.find("cannot be written"), std::string::npos) << set.error;
    EXPECT_NE(log().find("No space left on device"), std::string::npos) << log();
    EXPECT_EQ(run({"--get", "showChipTitles"}).output, "false\n");
    EXPECT_EQ(
        readFile("/proc/" + std::to_string(bar.pid()) + "/root" + server.settingsFile().string()),
        before);
    EXPECT_EQ(run({"--quit"}).status, 0);
    EXPECT_EQ(bar.waitForEnd(), 0) << log();
    EXPECT_NE(log().find("order.json cannot be written"), std::string::npos) << log();
}

// Faults: a bar that outlives its display, ends with a crash, or leaves its address behind.
TEST(DyingXServer, takesTheBarAlongWithAWord)
{
    auto server = std::make_unique<XServer>();
    const Outputs outputs{{}, server->folder() / "dying.log"};
    Process bar({QUORVEL_PROGRAM}, server->environment(), outputs);
    ASSERT_TRUE(eventually([&] {
        return runProgram(server->environment(), server->folder(), {"--state"}).status == 0;
    })) << readFile(outputs.error);
    server->kill();
    EXPECT_EQ(bar.waitForEnd(), 1);
    EXPECT_NE(readFile(outputs.error).find("the X server has gone"), std::string::npos)
        << readFile(outputs.error);
    EXPECT_EQ(readFile(outputs.error).find("Sanitizer"), std::string::npos)
        << readFile(outputs.error);
    EXPECT_FALSE(std::filesystem::exists(socketOf(*server)));
}

// Fault: sizes of a screen that nobody thought of end the bar.
TEST(OddScreens, haveABarThatAnswers)
{
    for (const char* size : {"1x1x24", "16384x2000x24"}) {
        SCOPED_TRACE(size);
        DesktopFixture fixture(ManagerKind::openbox, {"-screen", "0", size});
        Client client(fixture.server);
        Bar bar(fixture.server);
        ASSERT_TRUE(bar.appears());
        const auto window = client.open({.title = "any"});
        // One pixel has no room for a window, nor for a window manager.
        EXPECT_TRUE(std::string_view{size} == "1x1x24" || DesktopFixture::getsChip(bar, window));
        EXPECT_FALSE(bar.state().spaces.empty());
    }
}

// Faults: a window or a desktop too many is left out, or stays when it is gone; panels of hidden
// desktops that have windows of their own.
TEST_F(HostileEnvironment, ofAThousandWindowsAtOnceAndAHundredDesktops)
{
    // Window managers need long for a thousand.
    const std::size_t kWindowsAtOnce = std::getenv("QUORVEL_TEST_FULL") ? 1000 : 200;
    Bar bar(server);
    ASSERT_TRUE(bar.appears());
    desktop.setDesktopCount(100);
    ClientProcess crowd(server, "crowd", static_cast<int>(kWindowsAtOnce));
    ASSERT_TRUE(crowd.finish());
    ASSERT_TRUE(eventually([&] { return bar.state().windows.size() == kWindowsAtOnce; }));
    EXPECT_EQ(bar.state().spaces.size(), 100U);
    EXPECT_EQ(desktop.docks().size(), 1U);
    crowd.kill();
    EXPECT_TRUE(eventually([&] { return bar.state().windows.empty(); }));
    desktop.setDesktopCount(4);
    EXPECT_TRUE(settles(bar));
}

// Faults: one client that never stops keeps all others from being seen, and the user from the bar.
TEST_F(HostileEnvironment, ofAFloodOfTitlesAndRequestsLeavesTheBarFree)
{
    const auto quiet = client.open({.title = "quiet"});
    Bar bar(server);
    ASSERT_TRUE(bar.appears());
    SharedCount isOver;
    ClientProcess flood(server, [&](Client& noisy, char) { changeUntil(isOver, noisy); });
    flood.order('f');
    ASSERT_TRUE(eventually([&] { return bar.state().windows.size() == 2; }));

    // Connections that say nothing, half a request, and nonsense.
    const auto path = socketOf(server).string();
    std::vector<int> connections;
    for (int i = 0; i < 60; ++i) {
        const std::array words{""sv, "[\"--s"sv, "}\n{\0\n"sv};
        connections.push_back(connectionThatSays(path, words.at(i % words.size())));
    }
    client.setTitle(quiet, "still seen");
    EXPECT_TRUE(shows(bar, quiet, "still seen"));
    const auto chip = bar.state().chipFrame(quiet);
    const auto atRest = desktop.picture(chip);
    // Others come and go without a pause: some with nonsense, some with good questions.
    ClientProcess nonsense(server, [&](Client&, char) {
        while (!isOver.get()) {
            const int connection = connectionThatSays(path, "}\n");
            ::fcntl(connection, F_SETFL, 0);
            char answer = 0;
            while (::read(connection, &answer, 1) > 0) { }
            ::close(connection);
        }
    });
    nonsense.order('n');
    SharedCount answers;
    ClientProcess questions(server, [&](Client&, char) {
        const posix::ControlAddress bars{{}, path};
        while (!isOver.get()) {
            const auto reply = posix::requestOfBar(bars, {"--state"}, std::chrono::seconds{1});
            if (reply && reply->exitStatus == 0)
                answers.add();
        }
    });
    questions.order('q');
    // A click would wait for the window manager, which falls behind.
    pointer.moveTo(chip.x + chip.width / 2, chip.y + chip.height / 2);
    EXPECT_TRUE(eventually([&] { return desktop.picture(chip) != atRest; }));
    EXPECT_TRUE(eventually([&] { return answers.get() > 20; }));
    isOver.add();
    ASSERT_TRUE(flood.finish());
    ASSERT_TRUE(questions.finish());
    ASSERT_TRUE(nonsense.finish());
    for (const int connection : connections)
        ::close(connection);
    EXPECT_TRUE(eventually([&] {
        const auto state = bar.state();
        return std::ranges::any_of(
            state.windows, [](auto& window) { return window.title == "calm"; });
    }));
}

}
