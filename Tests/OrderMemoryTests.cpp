#include <random>

#include "Quorvel/Core/RememberedOrderCoding.h"
#include "Quorvel/Core/WindowAssignment.h"
#include "Tests/Support/BarFixture.h"
#include "Tests/Support/Seed.h"

namespace quorvel::test {

namespace {

using Titles = std::vector<std::string>;

struct OrderMemoryTest : BarFixture {
    std::mt19937 random{seed()};
    ProcessID mail, editor, terminal;

    OrderMemoryTest() { launchAll(); }
    void launchAll()
    {
        mail = desktop.launch({.name = "Mail", .bundleIdentifier = "mail"});
        editor = desktop.launch({.name = "Editor", .bundleIdentifier = "editor"});
        terminal = desktop.launch({.name = "Terminal", .bundleIdentifier = "terminal"});
    }
    WindowID open(ProcessID pid, const std::string& title, SpaceID space = SpaceID{1})
    {
        return desktop.open(pid, {.title = title, .spaces = {space}, .takesFocus = false});
    }
    ProcessID programOf(const std::string& title) const
    {
        return title == "shell"                                       ? terminal
            : title == "inbox" || title == "draft" || title == "sent" ? mail
                                                                      : editor;
    }
    void openSome()
    {
        for (auto* title : {"inbox", "draft", "one", "two", "three", "sent", "shell"})
            open(programOf(title), title);
    }
    void group(bool isOn)
    {
        runtime->userSettings().setGroupWindowsByApp(isOn);
        settle();
    }
    WindowID titled(const std::string& title)
    {
        for (auto& [id, window] : desktop.model().windows) {
            if (window->title == title)
                return id;
        }
        ADD_FAILURE() << title;
        return {};
    }
    /// A group is its key and its windows, the one in front first.
    Titles shown(SpaceID space = SpaceID{1})
    {
        Titles titles;
        for (auto& item : model().displayItems(space, std::nullopt)) {
            auto* group = std::get_if<GroupedChipData>(&item);
            if (!group) {
                titles.push_back(std::get<ChipData>(item).windowTitle);
                continue;
            }
            auto text = group->id + ":";
            for (auto id : group->windowIDs)
                text += " " + desktop.window(id).title;
            titles.push_back(text);
        }
        return titles;
    }
    void moveItem(const std::string& id, const std::string& before, SpaceID space = SpaceID{1})
    {
        model().moveChip(id, before, space);
        settle();
    }
    void move(const std::string& title, const std::string& before, SpaceID space = SpaceID{1})
    {
        moveItem(displayItemID(titled(title)), displayItemID(titled(before)), space);
    }
    enum class Ending { asked, killed };
    void end(Ending ending)
    {
        if (ending == Ending::asked)
            desktop.program().willTerminate.emit();
        runtime.reset();
        desktop.drain();
    }
    /// The windows of the first space that the file has after a log-out.
    std::vector<RememberedWindow> keptAtTheEnd()
    {
        desktop.program().willTerminate.emit();
        const auto orders = decodeOrders(*desktop.files().bytes(FakeFiles::kOrderFile));
        EXPECT_TRUE(orders);
        return orders ? orders->front().spaces.front().windows : std::vector<RememberedWindow>{};
    }
    void moveTo(SpaceID space, const Titles& titles)
    {
        for (auto& title : titles)
            desktop.moveToSpace(titled(title), space);
        settle();
        desktop.wake(); // the system tells nobody that windows have moved
        settle();
    }
    /// As X11 does for each bar: the windows are those they were and have other identifiers.
    void renumber()
    {
        std::vector<FakeWindow> windows;
        for (auto& [id, window] : desktop.model().windows)
            windows.push_back(*window);
        std::ranges::shuffle(windows, random);
        for (auto& window : windows) {
            OpenOptions options = static_cast<const OpenOptions&>(window);
            options.number = window.number.value_or(raw(window.id));
            desktop.close(window.id);
            desktop.open(window.pid, options);
        }
        desktop.drain();
    }
    void startAgain()
    {
        runtime = std::make_unique<Runtime>(desktop.platform());
        QuorvelApp::launch(*runtime);
        settle();
    }
    /// The windows close first, one by one; on return a bar runs, and programs without windows.
    void logOutAndIn()
    {
        while (!desktop.model().windows.empty()) {
            desktop.close(desktop.model().windows.begin()->first);
            desktop.advance(seconds(6));
        }
        end(Ending::asked);
        for (auto pid : {mail, editor, terminal})
            desktop.terminate(pid);
        desktop.windowServer().setWindowSession("the next");
        startAgain();
        launchAll();
    }
};

}

// MARK: Restarts

// Faults: what was never dragged falls back to the order of its numbers; a group forgets its place,
// the order of its windows or the one in front; a change that was not written yet takes the rest
// along; the order of the other grouping is lost.
TEST_F(OrderMemoryTest, everyOrderOutlivesTheProgram)
{
    openSome();
    open(editor, "elsewhere", SpaceID{2});
    open(mail, "far", SpaceID{2});
    start();
    move("shell", "two");
    move("sent", "one");
    ASSERT_THAT(shown(), ElementsAre("inbox", "draft", "sent", "one", "shell", "two", "three"));
    group(true);
    moveItem("group-editor", "group-mail");
    desktop.focus(titled("draft"));
    desktop.activate(mail);
    settle();
    desktop.activate(terminal); // else the front window of the group would be the focused one
    settle();
    const auto groups = shown();
    ASSERT_EQ(groups.size(), 3U);
    group(false);
    const auto singles = shown();

    for (int round = 0; round < 4; ++round) {
        SCOPED_TRACE(round);
        end(round % 2 ? Ending::asked : Ending::killed);
        renumber();
        startAgain();
        ASSERT_EQ(shown(), singles);
        EXPECT_THAT(shown(SpaceID{2}), ElementsAre("elsewhere", "far"));
        group(true);
        ASSERT_EQ(shown(), groups);
        group(false);
    }
    open(mail, "new");
    settle();
    EXPECT_EQ(shown().back(), "new");
}

// Faults: windows that the bar lost for a while, as without a window manager, come back last; so
// do others that were given the number of one that is gone.
TEST_F(OrderMemoryTest, aWindowThatComesBackWithItsNumberComesBackToItsPlace)
{
    openSome();
    start();
    const auto before = shown();
    OpenOptions options = static_cast<const OpenOptions&>(desktop.window(titled("draft")));
    options.number = raw(titled("draft"));
    desktop.close(titled("draft"));
    settle();
    ASSERT_EQ(shown().size(), before.size() - 1);
    desktop.open(mail, options);
    settle();
    EXPECT_EQ(shown(), before);

    desktop.close(titled("draft"));
    desktop.advance(SpacePlaces::kClosedTime + seconds(1));
    desktop.open(mail, options);
    settle();
    EXPECT_EQ(shown().back(), "draft");

    end(Ending::asked);
    const auto number = raw(titled("inbox"));
    desktop.close(titled("inbox"));
    desktop.open(terminal, {.title = "thief", .takesFocus = false, .number = number});
    startAgain();
    EXPECT_EQ(shown().back(), "thief");
}

// MARK: Log-outs

// Faults: the log-out, which closes the windows first, empties the order; numbers of another
// session are believed; windows that come late, or are titled late, are taken for new ones.
TEST_F(OrderMemoryTest, everyOrderOutlivesTheLogOut)
{
    openSome();
    start();
    group(true);
    moveItem("group-editor", "group-mail");
    group(false);
    move("shell", "draft");
    const auto before = shown();
    auto titles = before;
    auto wrong = raw(titled("inbox"));
    logOutAndIn();

    std::ranges::shuffle(titles, random);
    for (auto& title : titles) {
        desktop.advance(seconds(30));
        auto id = desktop.open(programOf(title), {.title = "Loading…", .number = wrong++});
        desktop.advance(seconds(5));
        desktop.retitle(id, title);
    }
    settle();
    ASSERT_EQ(shown(), before);

    // From now on these windows are known by their numbers, whatever their titles.
    for (auto& title : titles)
        desktop.retitle(titled(title), "changed " + title);
    settle();
    const auto changed = shown();
    end(Ending::killed);
    renumber();
    startAgain();
    EXPECT_EQ(shown(), changed);
}

// Faults: a group that comes back window by window stands last until its second one is there; a
// drag meanwhile gives up what is still to come; places are kept for ever.
TEST_F(OrderMemoryTest, placesAreKeptForThoseStillToComeForTenMinutes)
{
    openSome();
    start();
    group(true);
    moveItem(displayItemID(titled("shell")), "group-mail");
    ASSERT_EQ(shown().front(), "shell");
    logOutAndIn();

    open(editor, "two");
    open(mail, "draft");
    settle();
    EXPECT_THAT(shown(), ElementsAre("draft", "two"));
    open(editor, "three");
    settle();
    EXPECT_THAT(shown(), ElementsAre("draft", "group-editor: two three"));
    moveItem("group-editor", displayItemID(titled("draft")));
    EXPECT_THAT(shown(), ElementsAre("group-editor: two three", "draft"));
    open(terminal, "shell");
    settle();
    EXPECT_EQ(shown().front(), "shell");

    desktop.advance(SpacePlaces::kReturnTime);
    open(mail, "inbox");
    open(mail, "sent");
    settle();
    group(false);
    const auto titles = shown();
    ASSERT_EQ(titles.size(), 6U);
    EXPECT_THAT(Titles(titles.end() - 2, titles.end()), ElementsAre("inbox", "sent"));
}

// MARK: Matching

// Faults: a window takes another application's place, or one whose owner is better told by role or
// title; windows change places for nothing.
TEST(AssignPlaces, givesTheBestLikenessAndKeepsEqualOnes)
{
    using W = RememberedWindow;
    const auto window = [](const char* app, const char* role, const char* title) {
        return W{.number = {}, .application = app, .role = role, .title = title};
    };
    const std::vector<W> places{window("a", "main", "x"), window("a", "tool", "y"),
        window("b", "", "x"), window("a", "main", "z")};
    std::vector<const W*> wanted;
    for (auto& place : places)
        wanted.push_back(&place);
    const auto assign
        = [&](const std::vector<PlaceSeeker>& seekers) { return assignPlaces(wanted, seekers); };
    using Found = std::optional<std::size_t>;

    EXPECT_THAT(assign({{window("a", "main", "z"), {}}, {window("a", "", "y"), {}},
                    {window("c", "main", "x"), {}}, {window("a", "main", "other"), {}}}),
        ElementsAre(Found{3}, Found{1}, Found{}, Found{0}));
    EXPECT_THAT(assign({{window("a", "main", "?"), 3}, {window("a", "main", "!"), {}}}),
        ElementsAre(Found{3}, Found{0}));
    EXPECT_THAT(assign({{window("a", "main", "z"), 0}, {window("a", "main", "?"), 3}}),
        ElementsAre(Found{3}, Found{0}));
    EXPECT_THAT(assign({{window("a", "tool", "?"), {}}, {window("a", "tool", "!"), {}}}),
        ElementsAre(Found{1}, Found{0}));
}

// MARK: Spaces and displays

// Faults: the order of a display goes when it does, is given to another space, or comes back under
// the number that the space had.
TEST_F(OrderMemoryTest, aDisplayComesBackWithItsOrder)
{
    FakeDisplay second{.number = DisplayNumber{2},
        .identifier = "second",
        .frame = {1440, 0, 1440, 900},
        .spaces = {{.id = SpaceID{11}, .uuid = "left"}, {.id = SpaceID{12}, .uuid = "right"}},
        .current = SpaceID{11}};
    const auto alone = desktop.model().displays;
    desktop.addDisplay(second);
    openSome();
    for (auto* title : {"r1", "r2", "r3"})
        open(editor, title, SpaceID{12});
    for (auto* title : {"l1", "l2"})
        open(mail, title, SpaceID{11});
    start();
    move("r3", "r1", SpaceID{12});
    const auto here = shown();

    const auto unplug = [&] {
        desktop.setDisplays(alone);
        for (auto* title : {"r1", "r2", "r3", "l1", "l2"})
            desktop.moveToSpace(titled(title), SpaceID{1});
        settle();
    };
    const auto plug = [&](SpaceID left, SpaceID right) {
        second.spaces = {{.id = right, .uuid = "right"}, {.id = left, .uuid = "left"}};
        second.current = left;
        desktop.addDisplay(second);
        for (auto* title : {"r2", "r1", "r3"})
            desktop.moveToSpace(titled(title), right);
        for (auto* title : {"l2", "l1"})
            desktop.moveToSpace(titled(title), left);
        settle();
        // The system tells nobody that windows have moved; a change of the space does.
        desktop.wake();
        settle();
    };
    unplug();
    plug(SpaceID{21}, SpaceID{22});
    EXPECT_THAT(shown(SpaceID{22}), ElementsAre("r3", "r1", "r2"));
    EXPECT_THAT(shown(SpaceID{21}), ElementsAre("l1", "l2"));
    EXPECT_EQ(shown(), here);

    unplug();
    end(Ending::killed);
    renumber();
    startAgain();
    desktop.advance(SpacePlaces::kReturnTime * 2);
    plug(SpaceID{31}, SpaceID{32});
    EXPECT_THAT(shown(SpaceID{32}), ElementsAre("r3", "r1", "r2"));
    EXPECT_THAT(shown(SpaceID{31}), ElementsAre("l1", "l2"));
    EXPECT_EQ(shown(), here);
}

// Fault: each time that a display comes back, the windows that closed on it are waited for anew, so
// that in the end there are more of them than the file may have, and nothing is read from it.
TEST_F(OrderMemoryTest, closedWindowsAreForgottenHoweverOftenTheirDisplayComesBack)
{
    start();
    const auto alone = desktop.model().displays;
    for (int evening = 0; evening < 20; ++evening) {
        desktop.addDisplay({.number = DisplayNumber{2},
            .identifier = "second",
            .frame = {1440, 0, 1440, 900},
            .spaces = {{.id = SpaceID{11}, .uuid = "left"}},
            .current = SpaceID{11}});
        const auto window = open(editor, "closed", SpaceID{11});
        settle();
        ASSERT_EQ(shown(SpaceID{11}), Titles{"closed"});
        desktop.close(window);
        settle();
        desktop.advance(SpacePlaces::kClosedTime);
        desktop.setDisplays(alone);
        settle();
    }
    desktop.program().willTerminate.emit();
    const auto orders = decodeOrders(*desktop.files().bytes(FakeFiles::kOrderFile));
    ASSERT_TRUE(orders && orders->size() == 1);
    for (auto& space : orders->front().spaces)
        EXPECT_LE(space.windows.size(), 1U);
}

// Faults: windows that come and go without end crowd those that are there out of the file.
TEST_F(OrderMemoryTest, closedWindowsLeaveRoomForOthers)
{
    start();
    std::vector<WindowID> jobs;
    for (std::size_t i = 0; i < SpacePlaces::kMostVacant + 50; ++i)
        jobs.push_back(open(terminal, "job"));
    settle();
    for (auto job : jobs) {
        desktop.close(job);
        desktop.advance(seconds(0.05));
    }
    open(editor, "late");
    settle();
    const auto windows = keptAtTheEnd();
    EXPECT_EQ(windows.size(), SpacePlaces::kMostVacant + 1);
    EXPECT_EQ(std::ranges::count(windows, "late", &RememberedWindow::title), 1);
}

// Fault: each window that has closed makes the bar a little larger for minutes.
TEST_F(OrderMemoryTest, noMoreClosedWindowsAreKeptThanThereWereAtOnce)
{
    start();
    open(editor, "stays");
    for (int i = 0; i < 20; ++i) {
        const auto job = open(terminal, "job");
        settle();
        desktop.close(job);
        settle();
    }
    EXPECT_EQ(keptAtTheEnd().size(), 1U + 2U);
}

// Fault: windows that are on another space by now, and close last, take the room of the others.
TEST_F(OrderMemoryTest, closedWindowsOfAnotherSpaceLeaveRoom)
{
    start();
    open(editor, "stays");
    for (auto* title : {"first", "second"}) {
        open(terminal, title);
        settle();
        moveTo(SpaceID{2}, {title});
    }
    for (auto* title : {"stays", "first", "second"}) {
        desktop.close(titled(title));
        settle();
    }
    open(editor, "late");
    settle();
    const auto windows = keptAtTheEnd();
    EXPECT_EQ(std::ranges::count(windows, "stays", &RememberedWindow::title), 1);
}

// Faults: what is known of a space stays behind when it goes, and is believed of another one with
// its number; a display comes back without the windows in front of its groups; displays on which
// there was never a window make the bar forget the others.
TEST_F(OrderMemoryTest, whatIsKnownOfASpaceGoesWithIt)
{
    const auto alone = desktop.model().displays;
    const auto moveAll = [this](SpaceID space) { moveTo(space, {"one", "two", "three"}); };
    const auto connect = [&](SpaceID space, const std::string& uuid) {
        desktop.setDisplays(alone);
        moveAll(SpaceID{2});
        desktop.addDisplay({.number = DisplayNumber{2},
            .identifier = "second",
            .frame = {1440, 0, 1440, 900},
            .spaces = {{.id = space, .uuid = uuid}},
            .current = space});
        settle();
    };
    const auto plug = [&](SpaceID space, const std::string& uuid) {
        connect(space, uuid);
        moveAll(space);
    };
    for (auto* title : {"one", "two", "three"})
        open(editor, title, SpaceID{2});
    desktop.focus(open(terminal, "shell"));
    start();
    plug(SpaceID{11}, "left");
    move("three", "one", SpaceID{11});
    group(true);
    desktop.focus(titled("two"));
    for (auto pid : {editor, terminal}) {
        desktop.activate(pid);
        settle();
    }
    ASSERT_THAT(shown(SpaceID{11}), ElementsAre("group-editor: two one three"));

    plug(SpaceID{21}, "left");
    EXPECT_THAT(shown(SpaceID{21}), ElementsAre("group-editor: two one three"));
    group(false);
    EXPECT_THAT(shown(SpaceID{21}), ElementsAre("three", "one", "two"));
    for (std::size_t i = 0; i < OrderLimits::spaces; ++i)
        connect(SpaceID{1000 + i}, "empty " + std::to_string(i));
    plug(SpaceID{21}, "left");
    EXPECT_THAT(shown(SpaceID{21}), ElementsAre("three", "one", "two"));
    plug(SpaceID{21}, "another");
    EXPECT_THAT(shown(SpaceID{21}), ElementsAre("one", "two", "three"));
}

// Faults: a space without a uuid is known by its number alone; a name that moved is not followed.
TEST_F(OrderMemoryTest, aSpaceIsKnownByItsNameElseByItsPosition)
{
    auto display = desktop.model().displays.front();
    display.spaces = {{SpaceID{1}}, {.id = SpaceID{2}, .name = "work"}, {SpaceID{3}}};
    desktop.setDisplays({display});
    for (auto* title : {"a", "b"})
        open(editor, title, SpaceID{2});
    for (auto* title : {"c", "d"})
        open(editor, title, SpaceID{3});
    start();
    move("b", "a", SpaceID{2});
    move("d", "c", SpaceID{3});
    end(Ending::asked);

    display.spaces = {{.id = SpaceID{1}, .name = "work"}, {SpaceID{2}}, {SpaceID{3}}};
    desktop.setDisplays({display});
    for (auto* title : {"a", "b"})
        desktop.moveToSpace(titled(title), SpaceID{1});
    startAgain();
    EXPECT_THAT(shown(SpaceID{1}), ElementsAre("b", "a"));
    EXPECT_THAT(shown(SpaceID{3}), ElementsAre("d", "c"));
}

// MARK: The file

// Faults: a write for each change, or for a title; a timer that stays; a session that erases that
// of another bar.
TEST_F(OrderMemoryTest, aFewSecondsOfChangesAreOneWrite)
{
    const RememberedOrder other{.session = "other display",
        .spaces = {{.identity = {}, .windows = {{.application = "theirs"}}, .order = {}}}};
    desktop.files().put(FakeFiles::kOrderFile, encodeOrders({other}));
    openSome();
    start();
    const auto orders = decodeOrders(*desktop.files().bytes(FakeFiles::kOrderFile));
    ASSERT_TRUE(orders);
    ASSERT_EQ(orders->size(), 2U);
    EXPECT_EQ(orders->back(), other);
    EXPECT_EQ(orders->front().spaces.front().windows.size(), 7U);

    const auto writes = desktop.files().writes();
    const auto timers = desktop.dispatch().pendingTimers();
    for (auto* title : {"busy", "one", "busy", "one"}) {
        desktop.retitle(titled(title == std::string{"busy"} ? "one" : "busy"), title);
        desktop.advance(seconds(4));
    }
    EXPECT_EQ(desktop.files().writes(), writes);
    for (auto* before : {"inbox", "draft", "one"}) {
        model().moveChip(displayItemID(titled("shell")), displayItemID(titled(before)), SpaceID{1});
        desktop.drain();
    }
    EXPECT_EQ(desktop.files().writes(), writes);
    desktop.advance(OrderFile::kWriteDelay);
    EXPECT_EQ(desktop.files().writes(), writes + 1);
    EXPECT_EQ(desktop.dispatch().pendingTimers(), timers);
}

// Faults: a file that anybody may have written ends the bar or is told without end; a full disk is
// told with each change.
TEST_F(OrderMemoryTest, anUnusableFileIsToldOnceAndReplaced)
{
    const auto warnings = [&] {
        return std::ranges::count_if(desktop.program().warnings(),
            [](auto& text) { return text.find("order.json") != std::string::npos; });
    };
    openSome();
    int expected = 0;
    for (const std::string bytes : {"", "[]", R"({"version":2,"sessions":[]})",
             R"({"version":1,"sessions":[{"spaces":[{"index":-1,"windows":[],"order":[]}]}]})"}) {
        desktop.files().put(FakeFiles::kOrderFile, bytes);
        start();
        EXPECT_EQ(warnings(), ++expected) << bytes;
        EXPECT_EQ(shown().size(), 7U);
        EXPECT_TRUE(decodeOrders(*desktop.files().bytes(FakeFiles::kOrderFile))) << bytes;
        end(Ending::asked);
    }
    desktop.files().setFull(true);
    startAgain();
    for (auto* before : {"inbox", "draft", "one"})
        move("shell", before);
    EXPECT_EQ(warnings(), ++expected);
}

}
