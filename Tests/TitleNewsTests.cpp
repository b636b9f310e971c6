// The quiet mark: which changes of a title are news, and when it comes and goes.
#include "Quorvel/Core/TitleNews.h"
#include "Quorvel/Core/UserSettings.h"
#include "Tests/Support/BarFixture.h"
#include "Tests/Support/FakeText.h"

namespace quorvel::test {

// Faults: clocks, counters, progress and spinners count as news; a first unread message does not.
TEST(TitleSubstanceTest, whatOnlyTicksIsNoNews)
{
    FakeText text{"en"};
    auto isNews = [&](const std::string& before, const std::string& now) {
        return titleSubstance(before, text) != titleSubstance(now, text);
    };
    for (auto [before, now] : {std::pair{"12 % of disk.iso", "13 % of disk.iso"},
             {"Timer 59:59", "Timer 1:00:00"}, {"900 kB/s - Fetch", "1.2 MB/s - Fetch"},
             {"3 min left", "50 s left"}, {"(2) Chat", "(3) Chat"}, {"| make", "/ make"},
             {"\u280B make", "\u2819 make"}, {"notes.txt", "*notes.txt"}, {"Notes", "NOTES"}})
        EXPECT_FALSE(isNews(before, now)) << before;
    for (auto [before, now] : {std::pair{"Chat", "(1) Chat"}, {"make", "bash"},
             {"Inbox", "Inbox - Ann"}, {"Step 1", "Done"}, {"\u5317\u4EAC", "\u4E0A\u6D77"}})
        EXPECT_TRUE(isNews(before, now)) << before;
}

struct TitleNewsTest : ThreeWindows {
    bool isMarked(WindowID window)
    {
        settle();
        return chip(window)->hasNews;
    }
    void go(ProcessID application, WindowID window)
    {
        desktop.focus(window);
        desktop.activate(application);
        settle();
    }
};

// Faults: on by default; the window in front is marked, or one that was never there; the mark goes
// when the old title returns, or stays after the window was in front; a group hides its window's;
// it is not drawn, or said to nobody; it is still there after the setting is off.
TEST_F(TitleNewsTest, aChipIsMarkedFromNewsToTheNextVisit)
{
    go(editor, notes);
    desktop.retitle(inbox, "Off by default");
    EXPECT_FALSE(isMarked(inbox));
    EXPECT_EQ(desktop.control().send({"--set", "markTitleNews=true"})->exitStatus, 0);

    go(mail, inbox);
    desktop.retitle(inbox, "In front");
    EXPECT_FALSE(isMarked(inbox));
    go(editor, notes);
    desktop.retitle(draft, "Never visited");
    EXPECT_FALSE(isMarked(draft));
    auto marks = [this] { return panel().render().drawn<DrawnFill>().size(); };
    auto before = marks();
    desktop.retitle(inbox, "In front of 1 train");
    EXPECT_TRUE(isMarked(inbox));
    EXPECT_EQ(marks(), before + 2);
    desktop.retitle(inbox, "In front");
    EXPECT_TRUE(isMarked(inbox));
    auto elements = panel().elements();
    EXPECT_TRUE(std::ranges::any_of(elements, [](auto* element) {
        return element->accessibleState().name == "Mail, In front, new title";
    }));

    runtime->userSettings().setGroupWindowsByApp(true);
    settle();
    auto items = model().displayItems(SpaceID{1}, std::nullopt);
    EXPECT_EQ(std::ranges::count_if(items, [](auto& item) { return hasNews(item); }), 1);
    runtime->userSettings().setGroupWindowsByApp(false);

    go(mail, inbox);
    EXPECT_FALSE(isMarked(inbox));
    go(editor, notes);
    desktop.retitle(inbox, "Again");
    EXPECT_TRUE(isMarked(inbox));
    runtime->userSettings().setMarksTitleNews(false);
    EXPECT_FALSE(isMarked(inbox));
}

}
