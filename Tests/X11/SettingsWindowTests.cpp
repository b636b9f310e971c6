#include <csignal>
#include <fstream>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "Hosts/Posix/ControlAddress.h"
#include "Hosts/Posix/LocalSocket.h"
#include "Tests/X11/Support/DesktopFixture.h"
#include "Tests/X11/Support/MonitorLayout.h"
#include "Tests/X11/Support/SettingsProgram.h"

namespace quorvel::x11tests {

namespace {

// Keys by their place.
constexpr std::uint8_t kEscape = 9;
constexpr std::uint8_t kReturn = 36;
constexpr std::uint8_t kLetterY = 29;
constexpr std::uint8_t kCapsLock = 66;
constexpr std::uint8_t kAlt = 64;
constexpr std::uint8_t kSpaceBar = 65;
constexpr std::uint8_t kDown = 116;

constexpr auto kSwitch = ATSPI_ROLE_CHECK_BOX;
constexpr auto kButton = ATSPI_ROLE_PUSH_BUTTON;
constexpr auto kChoice = ATSPI_ROLE_COMBO_BOX;

/// Plays the bar, badly.
class OtherBar {
public:
    explicit OtherBar(const XServer& server)
    {
        std::string problem;
        const auto& folder = server.environment().at("XDG_RUNTIME_DIR");
        const auto address
            = posix::ControlAddress::forDisplay(server.display(), folder.c_str(), folder, problem);
        const auto name = posix::socketName(address ? address->socketPath : "");
        EXPECT_EQ(bind(m_listener.get(), reinterpret_cast<const sockaddr*>(&name), sizeof name), 0);
        EXPECT_EQ(listen(m_listener.get(), 1), 0);
    }

    /// Waits for the program, and forgets the connection that there was.
    testing::AssertionResult accept()
    {
        if (!isReadable(m_listener.get()))
            return testing::AssertionFailure() << "nobody connects";
        m_client = posix::UniqueFd{::accept(m_listener.get(), nullptr, nullptr)};
        return receives("--settings-session");
    }
    void hangUp() { m_client = {}; }
    /// False once the program has hung up.
    bool send(std::string_view bytes)
    {
        while (!bytes.empty()) {
            const auto count = ::send(m_client.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (count <= 0)
                return false;
            bytes.remove_prefix(static_cast<std::size_t>(count));
        }
        return true;
    }
    testing::AssertionResult receives(const std::string& text)
    {
        std::string all;
        char bytes[4096];
        while (all.find(text) == std::string::npos) {
            const auto count = isReadable(m_client.get()) ? read(m_client.get(), bytes, 4096) : 0;
            if (count <= 0)
                return testing::AssertionFailure() << "only " << all;
            all.append(bytes, static_cast<std::size_t>(count));
        }
        return testing::AssertionSuccess();
    }

private:
    static bool isReadable(int fd)
    {
        pollfd descriptor{fd, POLLIN, 0};
        return poll(&descriptor, 1, static_cast<int>(kWatchdog.count())) == 1;
    }

    posix::UniqueFd m_listener = posix::makeLocalSocket();
    posix::UniqueFd m_client;
};

}

/// A desktop whose user changes settings.
class SettingsDesktop : public DesktopFixture {
protected:
    using DesktopFixture::DesktopFixture;

    /// As the bar tells it.
    std::string get(const std::string& field) const { return run({"--get", field}).output; }
    testing::AssertionResult becomes(const std::string& field, const std::string& value) const
    {
        return eventually([&] { return get(field) == value + "\n"; })
            << field << " stays " << get(field);
    }

    SettingsProgram settings{server, desktop};
};

class SettingsWindowProgram : public testing::Test, public SettingsDesktop {
protected:
    SettingsWindowProgram() : SettingsDesktop(ManagerKind::openbox) { }
};

// Faults: a second window; one that stays behind the others when it is asked for again, that shows
// old values as if they could be changed, or that does not find the next bar.
TEST_F(SettingsWindowProgram, isOneWindowThatComesToTheFrontAndOutlivesTheBar)
{
    auto environment = server.environment();
    environment["XDG_DATA_DIRS"] = server.folder() / "system";
    auto bar = std::make_unique<Process>(std::vector<std::string>{QUORVEL_PROGRAM}, environment);
    ASSERT_TRUE(eventually([&] { return run({"--settings"}).status == 0; }));
    ASSERT_TRUE(settings.isActive());
    Client client{server};
    const auto other = client.open({.title = "other"});
    ASSERT_TRUE(eventually([&] { return desktop.clientTitled("other").has_value(); }));
    // The program may ask once more to come to the front after it has.
    const auto leave = [&] {
        return eventually([&] {
            desktop.activate(other);
            return desktop.finishRequests() && desktop.activeWindow() == other;
        });
    };
    ASSERT_TRUE(leave());

    EXPECT_EQ(run({"--settings"}).status, 0);
    EXPECT_TRUE(settings.isActive());
    ASSERT_TRUE(leave());
    const Process second{{QUORVEL_SETTINGS_PROGRAM}, environment};
    EXPECT_TRUE(settings.isActive());
    EXPECT_EQ(settings.windowCount(), 1U);

    bar.reset(); // by a signal that it cannot answer
    EXPECT_TRUE(settings.shows(ATSPI_ROLE_LABEL, "Quorvel is not running."));
    EXPECT_TRUE(settings.hasState(kSwitch, "Start at login", ATSPI_STATE_SENSITIVE, false));
    Bar next{server};
    ASSERT_TRUE(next.appears());
    settings.click(settings.find(kSwitch, "Start at login"));
    EXPECT_TRUE(becomes("runAtLogin", "true"));
    EXPECT_EQ(run({"--set", "runAtLogin=false"}).status, 0);
    EXPECT_TRUE(settings.hasState(kSwitch, "Start at login", ATSPI_STATE_CHECKED, false));
}

// Faults: keys that the window manager waits for, or the window itself, cannot be recorded; a key
// that is recorded without a modifier; no word of a shortcut that another program has.
TEST_F(SettingsWindowProgram, recordsWhatTheWindowManagerWaitsFor)
{
    Bar bar{server};
    ASSERT_TRUE(bar.appears());
    ASSERT_EQ(run({"--settings"}).status, 0);
    ASSERT_TRUE(settings.isActive());
    auto& keyboard = settings.keyboard();
    settings.turnTo(2);
    const auto button = settings.find(kButton, "Record");
    ASSERT_TRUE(button);
    const auto says = [&](const std::string& text) {
        return SettingsProgram::becomes(button, [&](auto& element) {
            return (ScreenReader::name(element) + ScreenReader::description(element)).find(text)
                != std::string::npos;
        }) << text;
    };

    settings.click(button);
    ASSERT_TRUE(says("Press keys"));
    keyboard.tap(kEscape);
    ASSERT_TRUE(says("Record"));
    keyboard.tap(kReturn);
    ASSERT_TRUE(says("Press keys"));
    keyboard.tap(kDown);
    keyboard.chord(kAlt, kSpaceBar); // openbox shows a window's menu
    EXPECT_TRUE(says("Alt+Space"));
    EXPECT_TRUE(becomes("hotkeyKeyCode", "49"));
    EXPECT_TRUE(becomes("hotkeyModifiers", "2048"));
    EXPECT_TRUE(says("another program"));

    // The next key is another one in each layout; the one in use counts.
    settings.click(button);
    ASSERT_TRUE(says("Press keys"));
    const auto setLayouts = [&](const std::string& layouts) {
        const std::vector<std::string> command{"setxkbmap", layouts, "-option", "grp:caps_toggle"};
        EXPECT_EQ((Process{command, server.environment()}.waitForEnd()), 0);
    };
    setLayouts("de,us");
    keyboard.chord(kAlt, kLetterY);
    EXPECT_TRUE(says("Alt+Z"));
    keyboard.tap(kCapsLock);
    EXPECT_TRUE(says("Alt+Y"));
    setLayouts("de");
    EXPECT_TRUE(says("Alt+Z"));

    settings.click(button);
    ASSERT_TRUE(says("Press keys"));
    Client client{server};
    const auto other = client.open({.title = "other"});
    ASSERT_TRUE(eventually([&] { return desktop.clientTitled("other").has_value(); }));
    desktop.activate(other);
    EXPECT_TRUE(says("Alt+Z"));
    EXPECT_TRUE(settings.perform(kButton, "Clear the shortcut"));
    EXPECT_TRUE(becomes("hotkeyKeyCode", "null"));
}

// Faults: nonsense, a flood or an end in the midst that takes the program along, or that it does
// not recover from.
TEST_F(SettingsWindowProgram, survivesABarThatTalksNonsense)
{
    OtherBar bar{server};
    Process program{{QUORVEL_SETTINGS_PROGRAM}, server.environment()};
    ASSERT_TRUE(bar.accept());
    for (const auto* line : {"\n", "\xff\xfe", "[[[[", "null\n", "{\"pages\":7}\n",
             "{\"version\":\"\",\"pages\":[{\"id\":1}]}\n", "{\"refused\":{}}\n",
             "{\"present\":1}\n"})
        EXPECT_TRUE(bar.send(line));
    while (bar.send(std::string(1 << 16, '['))) { }
    ASSERT_TRUE(bar.accept()) << "not tried again";
    EXPECT_TRUE(bar.send(std::string(1 << 14, '[')));
    EXPECT_TRUE(bar.send("\n{\"version\":\"1\",\"pages\":["));
    bar.hangUp();
    ASSERT_TRUE(bar.accept());

    const auto row = [](const std::string& kind, const std::string& rest) {
        return R"({"id":"r)" + kind + R"(","title":"<b>&)" + kind + R"(","isEnabled":true,"kind":")"
            + kind + R"(",)" + rest + "}";
    };
    const auto page = [](const std::string& rows) {
        return R"({"version":"1","pages":[{"id":"p","title":"P","groups":[{"id":"g","rows":[)"
            + rows + "]}]}]}\n";
    };
    const auto first = row("toggle", R"("value":false)");
    const auto more = first + ',' + row("choice", R"("value":"?","choices":[])") + ','
        + row("list",
            R"("movable":true,"removable":true,"items":[{"id":"a","title":"A","icon":"/"},{"id":"a","title":"B"}])")
        + ',' + first;
    EXPECT_TRUE(bar.send(page(more) + page(first) + page("") + page(first)));
    EXPECT_TRUE(settings.perform(kSwitch, "<b>&toggle", "toggle"));
    EXPECT_TRUE(bar.receives(R"({"set":{"row":"rtoggle","value":true}})"));
    EXPECT_TRUE(settings.showsForAMoment(ATSPI_ROLE_LABEL, "<i>never&", [&] {
        return bar.send("{\"refused\":{\"row\":\"rtoggle\",\"reason\":\"<i>never&\"}}\n");
    }));
    EXPECT_TRUE(settings.hasState(kSwitch, "<b>&toggle", ATSPI_STATE_CHECKED, false));
    EXPECT_TRUE(program.isRunning());
}

// Faults: a window that hangs keeps the user from the settings, or comes back beside the new one; a
// bar that hangs is not told, or not forgiven.
TEST_F(SettingsWindowProgram, isReplacedWhenItHangsAndTellsThatTheBarDoes)
{
    Bar bar{server};
    ASSERT_TRUE(bar.appears());
    Process hung{{QUORVEL_SETTINGS_PROGRAM}, server.environment()};
    ASSERT_TRUE(settings.isActive());
    ASSERT_TRUE(settings.shows(kSwitch, "Start at login"));
    const auto first = settings.window();
    kill(hung.pid(), SIGSTOP);
    ASSERT_EQ(run({"--settings"}).status, 0);
    ASSERT_TRUE(eventually([&] { return settings.windowCount() == 2; }));
    EXPECT_NE(bar.log().find("quorvel-settings does not answer"), std::string::npos);
    kill(hung.pid(), SIGCONT);
    EXPECT_TRUE(eventually([&] { return !hung.isRunning(); }));
    EXPECT_EQ(settings.windowCount(), 1U);
    EXPECT_NE(settings.window(), first);
    ASSERT_TRUE(settings.hasState(kSwitch, "Start at login", ATSPI_STATE_SENSITIVE));

    kill(bar.process().pid(), SIGSTOP);
    EXPECT_TRUE(settings.perform(kSwitch, "Start at login", "toggle"));
    EXPECT_TRUE(settings.shows(ATSPI_ROLE_LABEL, "Quorvel does not answer."));
    EXPECT_TRUE(settings.hasState(kSwitch, "Start at login", ATSPI_STATE_SENSITIVE, false));
    kill(bar.process().pid(), SIGCONT);
    EXPECT_TRUE(settings.hasState(kSwitch, "Start at login", ATSPI_STATE_SENSITIVE));
    EXPECT_TRUE(becomes("runAtLogin", "true"));
}

/// What is done on a page of the window, and what follows.
struct PageOfSettings {
    struct Step {
        AtspiRole role;
        std::string title;
        std::string field;
        std::string value;
        std::function<bool(const State&)> isOnTheBar;
        std::string option; ///< that is chosen
        int place = 0; ///< its own, in the list
        bool isSeen = false; ///< the bar looks otherwise, which its state does not tell
    };

    std::string name;
    int number;
    std::vector<Step> steps;
};

/// Two monitors, two windows of one application, and pins.
class SettingsWindowPages : public testing::TestWithParam<PageOfSettings>, public SettingsDesktop {
protected:
    SettingsWindowPages() : SettingsDesktop(ManagerKind::openbox)
    {
        for (const std::string name : {"Ash", "Birch", "Cedar"})
            server.addApplication(name, name, "Exec=true");
        std::ofstream(server.settingsFile()) << R"({"barSize": "large", "pinnedApps":
            [{"id": "Ash", "d": 3}, {"id": "Birch", "d": 1}, {"id": "Cedar", "d": 1}]})";
        MonitorLayout{server}.set({{0, 0, 960, 800}, {960, 0, 320, 800}});
    }

    void take(const PageOfSettings::Step& step)
    {
        const auto control = settings.find(step.role, step.title);
        ASSERT_TRUE(control);
        EXPECT_NE(get(step.field), step.value + '\n');
        const auto frame = bar->state().panel().frame;
        const auto before = desktop.picture(frame);
        if (step.role == kChoice)
            EXPECT_TRUE(settings.choose(control, step.place, step.option));
        else
            EXPECT_TRUE(ScreenReader::perform(control, step.role == kSwitch ? "toggle" : "click"));
        EXPECT_TRUE(becomes(step.field, step.value));
        EXPECT_TRUE(SettingsProgram::becomes(control, [&](auto& element) {
            if (step.role == kChoice)
                return ScreenReader::description(element).starts_with(step.option);
            return step.role == kButton
                || ScreenReader::has(element, ATSPI_STATE_CHECKED) == (step.value == "true");
        }));
        EXPECT_TRUE(!step.isOnTheBar || eventually([&] { return step.isOnTheBar(bar->state()); }));
        EXPECT_TRUE(!step.isSeen || eventually([&] { return desktop.picture(frame) != before; }));
    }

    Client client{server};
    std::unique_ptr<Bar> bar;
};

// Faults: a row that changes nothing, or another setting; one that springs back, or shows what is
// not; a bar that follows at its next start.
TEST_P(SettingsWindowPages, changeTheBarRowByRow)
{
    bar = std::make_unique<Bar>(server);
    ASSERT_TRUE(bar->appears());
    client.open({.title = "first"});
    client.open({.title = "second"});
    ASSERT_EQ(run({"--settings"}).status, 0);
    ASSERT_TRUE(settings.isActive());
    settings.turnTo(GetParam().number);
    for (const auto& step : GetParam().steps) {
        SCOPED_TRACE(step.title);
        take(step);
    }
}

namespace {

std::function<bool(const State&)> hasChips(std::size_t count, int widest = 1280)
{
    return [=](const State& state) {
        const auto& chips = state.panel().chips;
        return chips.size() == count && chips.front().frame.width <= widest;
    };
}

std::function<bool(const State&)> hasPins(const std::vector<std::string>& ids)
{
    return [ids](const State& state) {
        return std::ranges::equal(state.panel().pins, ids, {}, &State::Chip::id);
    };
}

const PageOfSettings kPages[] = {
    {"General", 0,
        {{kSwitch, "Start at login", "runAtLogin", "true", {}, {}},
            {kSwitch, "Show on all displays", "showOnAllDisplays", "true",
                [](auto& state) { return state.visiblePanels().size() == 2; }, {}},
            {kChoice, "Scrolling up", "scrollUpSpaceSwitch", "\"right\"", {},
                "The desktop on the right", 1}}},
    {"Appearance", 1,
        {{kChoice, "Theme", "theme", "\"aero\"", {}, "Aero", 2, true},
            {kSwitch, "Group windows", "groupWindowsByApp", "false", hasChips(3), {}},
            {kSwitch, "Show window names", "showWindowNamesInChips", "false", {}, {}, 0, true},
            {kSwitch, "Show titles", "showChipTitles", "false", hasChips(3, 80), {}},
            {kSwitch, "Mark new titles", "markTitleNews", "true", {}, {}},
            {kChoice, "Size", "barSize", "\"xxl\"",
                [](auto& state) { return state.panel().frame.height > 50; }, "Largest", 4}}},
    {"Keyboard", 2,
        {{kSwitch, "Use what is on the bar", "numberKeys", "true",
             [](auto& state) { return state.numberKeys == "registered"; }, {}},
            {kChoice, "Keys", "numberKeyModifiers", "6144", {}, "Ctrl+Alt+1 to 9", 2}}},
    {"Pins", 3,
        {{kButton, "Move Birch up", "pinnedApps",
             R"([{"d":1,"id":"Birch"},{"d":3,"id":"Ash"},{"d":1,"id":"Cedar"}])",
             hasPins({"Birch", "Ash", "Cedar"}), {}},
            {kButton, "Remove Cedar", "pinnedApps", R"([{"d":1,"id":"Birch"},{"d":3,"id":"Ash"}])",
                hasPins({"Birch", "Ash"}), {}}}},
    {"About", 4,
        {{kButton, "Reset", "barSize", "\"medium\"",
            [](auto& state) { return state.panel().frame.height < 40; }, {}}}},
};

}

INSTANTIATE_TEST_SUITE_P(, SettingsWindowPages, testing::ValuesIn(kPages),
    [](const auto& page) { return page.param.name; });

}
