// What the user reads is in his language: the program runs with every text of ours in brackets.
#include <algorithm>
#include <cctype>

#include "Quorvel/Platform/Translation.h"
#include "Tests/Support/LauncherFixture.h"

namespace quorvel::test {

namespace {

struct Brackets {
    Brackets()
    {
        Translator::current()
            = {[](const char* english) { return "[" + std::string{english} + "]"; },
                [](const char* one, const char* many, std::size_t count) {
                    return "[" + std::string{count == 1 ? one : many} + "]";
                }};
    }
    ~Brackets() { Translator::current() = {}; }
};

struct LanguageTest : private Brackets, LauncherFixture {
    ProcessID mail = desktop.launch({.name = "Mail", .bundleIdentifier = "Mail"});
    WindowID inbox = desktop.open(mail, {.title = "Inbox"});
    WindowID draft = desktop.open(mail, {.title = "Draft"});

    /// What remains of a text without what is in brackets, the names of programs and windows, and
    /// keys.
    static std::string untranslated(std::string text, const std::vector<std::string>& names)
    {
        for (auto end = text.find(']'); end != std::string::npos; end = text.find(']')) {
            const auto start = text.rfind('[', end);
            text.erase(start, end - start + 1);
        }
        for (auto& name : names) {
            for (auto at = text.find(name); at != std::string::npos; at = text.find(name))
                text.erase(at, name.size());
        }
        std::erase_if(text, [](char c) { return !std::isalpha(static_cast<unsigned char>(c)); });
        return text;
    }
    void expectTranslated(const std::string& text, const std::string& where) const
    {
        static const std::vector<std::string> ours{
            "/support/Quorvel/settings.json", "Quorvel", "Inbox", "Draft"};
        auto known = names;
        known.insert(known.end(), ours.begin(), ours.end());
        EXPECT_EQ(untranslated(text, known), "") << where << ": " << text;
    }
    /// Everything that is drawn or read out in it; how many texts that were.
    std::size_t expectTranslated(FakePanel* panel, const std::string& where)
    {
        EXPECT_TRUE(panel) << where;
        if (!panel)
            return 0;
        auto texts = panel->render().texts();
        for (auto* element : panel->elements()) {
            auto state = element->accessibleState();
            texts.push_back(state.name);
            texts.insert(texts.end(), state.actions.begin(), state.actions.end());
        }
        for (auto& text : texts)
            expectTranslated(text, where);
        return texts.size();
    }
    void expectMenu(const std::string& where)
    {
        desktop.drain();
        EXPECT_GT(expectTranslated(desktop.surfaces().menu(), where), 0u);
        desktop.surfaces().closeMenu();
        desktop.drain();
    }
};

}

// Fault: a text that never passes through the translation calls, above all one that only screen
// readers say.
TEST_F(LanguageTest, nothingOnTheBarIsLeftOut)
{
    desktop.launchServices().setAvailable(true);
    desktop.launchServices().statuses = {{"Mail", "3", 0.25}};
    desktop.minimise(draft);
    startWithApplications();
    pins().setPin("Maps", PinDestination::bar, true);
    desktop.advance(seconds(3));
    EXPECT_GT(expectTranslated(&panel(), "bar"), 5u);
    runtime->userSettings().setGroupWindowsByApp(true);
    desktop.drain();
    expectTranslated(&panel(), "groups");

    panel().click(content().chipFrames().front().second.centre(), PointerButton::secondary);
    expectMenu("menu of a group");
    runtime->userSettings().setGroupWindowsByApp(false);
    desktop.drain();
    clickChip(inbox, PointerButton::secondary);
    expectMenu("menu of a window");
    panel().click(content().pinFrames().front().second.centre(), PointerButton::secondary);
    expectMenu("menu of a pin");
    panel().click(button(), PointerButton::secondary);
    expectMenu("menu of the bar");
    panel().click(content().spaceListButtonFrame().centre());
    expectMenu("list of spaces");

    panel().movePointer(chipFrame(inbox)->centre());
    desktop.advance(seconds(1));
    EXPECT_GT(expectTranslated(desktop.surfaces().popup(), "popup"), 0u);
    desktop.workspace().launchDidFail.emit({.bundleIdentifier = "Maps", .name = "Maps"});
    desktop.drain();
    expectTranslated(&panel(), "note");
}

TEST_F(LanguageTest, nothingInTheLauncherIsLeftOut)
{
    startWithApplications();
    pin({"Maps"});
    clickButton();
    desktop.advance(seconds(1));
    EXPECT_GT(expectTranslated(&launcher(), "launcher"), 6u);
    openMenuOf("Music");
    expectMenu("menu of a row");
    type("zzz");
    for (auto& text : launcher().render().texts()) {
        if (text != "zzz")
            expectTranslated(text, "nothing found");
    }
}

// What comes and goes with the pointer, and what the list of windows says.
TEST_F(LanguageTest, nothingThatTheBarTellsIsLeftOut)
{
    startWithApplications();
    pins().setPin("Maps", PinDestination::bar, true);
    desktop.advance(seconds(3));
    const auto expectTold = [this](const char* where) {
        auto* told = desktop.surfaces().popup(); // which says nothing to screen readers
        ASSERT_TRUE(told) << where;
        EXPECT_THAT(told->render().texts(), Not(IsEmpty()));
        for (auto& text : told->render().texts())
            expectTranslated(text, where);
    };
    const auto cell = content().spaceCellFrames()[1].second.centre();
    for (auto place : {button(), cell, content().spaceListButtonFrame().centre(),
             content().showDesktopButtonFrame().centre()}) {
        panel().movePointer(place);
        desktop.advance(seconds(1));
        expectTold("tooltip");
    }
    leave();
    panel().press(chipFrame(inbox)->centre());
    panel().movePointer({cell.x / 2, cell.y});
    panel().movePointer(cell);
    expectTold("chip over a cell");
    panel().pressKey(KeyCode::escape);
    panel().release(cell);
    leave();

    panel().setModifiers(KeyModifier::option);
    clickChip(inbox, PointerButton::secondary);
    panel().setModifiers(0);
    EXPECT_TRUE(desktop.surfaces().chooseMenuItem("[About This Window]"));
    EXPECT_GT(expectTranslated(desktop.surfaces().menus().back(), "about a window"), 3u);
    expectMenu("menu with Alt");

    desktop.control().send({"--find"});
    desktop.advance(seconds(1));
    EXPECT_GT(expectTranslated(desktop.surfaces().launcher(), "list of windows"), 3u);
}

// The window itself is made of the system's controls.
TEST_F(LanguageTest, nothingInTheSettingsIsLeftOut)
{
    start();
    desktop.control().send({"--settings"});
    auto* source = desktop.settingsWindow().source();
    ASSERT_TRUE(source);
    std::size_t count = 0;
    const auto expect = [&](const std::string& text, const std::string& where) {
        expectTranslated(text, where);
        count += text.empty() ? 0 : 1;
    };
    for (auto& page : source->description().value().pages) {
        expect(page.title, page.id);
        for (auto& group : page.groups) {
            expect(group.title + group.help, group.id);
            for (auto& row : group.rows) {
                expect(row.title + row.help, row.id);
                if (auto* choice = std::get_if<SettingsChoice>(&row.control)) {
                    for (auto& option : choice->options)
                        expect(option.title, row.id);
                } else if (auto* action = std::get_if<SettingsButton>(&row.control)) {
                    expect(action->label, row.id);
                } else if (auto* link = std::get_if<SettingsLink>(&row.control)) {
                    expect(link->label, row.id);
                } else if (auto* shortcut = std::get_if<SettingsShortcut>(&row.control)) {
                    expect(shortcut->status + shortcut->recordHelp, row.id);
                }
            }
        }
    }
    EXPECT_GT(count, 40u);
}

TEST_F(LanguageTest, nothingInTheWindowForThePermissionsIsLeftOut)
{
    for (bool isTrusted : {false, true}) {
        runtime.reset();
        desktop.accessibility().setTrusted(isTrusted);
        desktop.screenCapture().setAllowed(false);
        runtime = std::make_unique<Runtime>(desktop.platform());
        QuorvelApp::launch(*runtime);
        desktop.drain();
        auto* window = desktop.surfaces().window();
        ASSERT_TRUE(window);
        for (auto& text : window->render().texts()) {
            if (text.find("com.quorvel") == std::string::npos)
                expectTranslated(text, "permissions");
        }
        expectTranslated(window, "permissions");
    }
}

}
