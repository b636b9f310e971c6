// What a list makes of many rows, of the wheel, the fingers and the keys, and how its rows move.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Quorvel/Views/BarHostingView.h"
#include "Quorvel/Views/Kit/ListView.h"
#include "Quorvel/Views/Kit/OverlayScroller.h"
#include "Quorvel/Views/Kit/Palette.h"
#include "Tests/Support/FakeDesktop.h"

namespace quorvel::test {

using namespace testing;

namespace {

class NamedRow final : public ListRowView {
public:
    std::string name;
    int changes = 0;

    bool takesPointer() const override { return true; }
    bool isAccessible() const override { return true; }
    std::string accessibleID() const override { return name; }
    void rowWillChange() override { ++changes; }

private:
    void paint(Canvas& canvas) const override
    {
        canvas.drawText((isSelected() ? "*" : "") + name, bounds(), {});
    }
};

/// Names of 20 points each; those that begin with # are headings of 30 points, of another kind.
struct Names final : ListRows {
    std::vector<std::string> names;
    int made = 0;
    int filled = 0;

    bool isHeading(std::size_t row) const { return names[row].starts_with('#'); }
    std::size_t rowCount() const override { return names.size(); }
    double rowHeight(std::size_t row) const override { return isHeading(row) ? 30 : 20; }
    bool isSelectable(std::size_t row) const override { return !isHeading(row); }
    int rowKind(std::size_t row) const override { return isHeading(row); }
    std::unique_ptr<ListRowView> makeRowView(int) override
    {
        ++made;
        return std::make_unique<NamedRow>();
    }
    void fillRowView(ListRowView& view, std::size_t row) override
    {
        ++filled;
        static_cast<NamedRow&>(view).name = names[row];
        view.invalidate();
    }
};

struct ListViewTest : Test {
    FakeDesktop desktop;
    Names rows;
    Palette palette = Palette::of({});
    BarHostingView host;
    std::unique_ptr<FakePanel> panel;
    ListView* list = nullptr;

    /// In a list of 200 points.
    void show(std::vector<std::string> names)
    {
        rows.names = std::move(names);
        panel = std::make_unique<FakePanel>(desktop, desktop.surfaces(),
            PanelOptions{.display = {}, .title = "List", .kind = PanelKind::popup}, host);
        panel->setFrame({0, 0, 100, 200});
        host.attach(*panel);
        auto view = std::make_unique<ListView>(rows, palette, desktop.dispatch());
        list = view.get();
        list->reload();
        host.setContent(std::move(view));
        panel->orderFront();
        desktop.advance(seconds(2));
        panel->forgetPaints();
    }
    void showNumbers(int count)
    {
        std::vector<std::string> names;
        for (int number = 0; number < count; ++number)
            names.push_back(std::to_string(number));
        show(std::move(names));
    }
    std::vector<std::string> seen() { return panel->render().texts(); }
    /// The tops of the rows that are in sight, by name.
    std::map<std::string, double> tops()
    {
        std::map<std::string, double> found;
        for (auto& text : panel->render().drawn<DrawnText>())
            found[text.text] = text.rect.y;
        return found;
    }
    bool isScrollerShown() { return !panel->render().drawn<DrawnFill>().empty(); }
    void scroll(double deltaY, ScrollUnit unit, ScrollPhase phase = {}, bool isMomentum = false)
    {
        panel->scroll({.location = {50, 100},
            .deltaY = deltaY,
            .unit = unit,
            .phase = phase,
            .isMomentum = isMomentum});
    }
    void turn(double notches)
    {
        scroll(notches, ScrollUnit::notches);
        desktop.advance(seconds(0.5));
    }
    ~ListViewTest() override { host.setContent(nullptr); }
};

}

// Faults: a view, a look-up or a stroke of the brush for each of many rows, or for each step of
// scrolling; the wrong row in a view that is used again.
TEST_F(ListViewTest, costsWhatIsInSightHoweverManyRowsThereAre)
{
    showNumbers(5000);
    EXPECT_EQ(rows.made, 10);
    EXPECT_THAT(seen(), AllOf(SizeIs(10), Contains("0"), Contains("9"), Not(Contains("10"))));

    for (double offset : {99990.0, 5.0, 50001.0, 99800.0}) {
        rows.filled = 0;
        list->scrollTo(offset);
        EXPECT_LE(rows.filled, 11);
        auto first = static_cast<int>(list->offset()) / 20;
        EXPECT_THAT(
            seen(), AllOf(Contains(std::to_string(first)), SizeIs(AllOf(Ge(10U), Le(11U)))));
    }
    EXPECT_LE(rows.made, 11);
    EXPECT_EQ(list->offset(), list->mostOffset());
    desktop.drain();
    panel->forgetPaints();

    list->select(4995);
    desktop.drain();
    ASSERT_EQ(panel->paints().size(), 1U);
    EXPECT_EQ(panel->paints().front().damage, (Rect{0, 100, 100, 20}));
    EXPECT_THAT(seen(), Contains("*4995"));

    rows.filled = 0;
    list->reload(0);
    EXPECT_LE(rows.filled, 10);
    EXPECT_THAT(seen(), AllOf(Contains("0"), Each(Not(StartsWith("*")))));
    rows.names.resize(3);
    list->reload();
    EXPECT_THAT(seen(), UnorderedElementsAre("0", "1", "2"));
    EXPECT_FALSE(list->selectedRow());
    rows.names.clear();
    list->reload();
    EXPECT_THAT(seen(), IsEmpty());
}

// Faults: a heading is selected, or out of sight above what it heads; the keys wrap around, lose
// the selection at an end, or skip rows over a page.
TEST_F(ListViewTest, isWalkedRowByRowAndPageByPage)
{
    show({"#A", "1", "2", "#B", "3", "4", "5", "6", "7", "8", "9", "10", "11", "12"});
    EXPECT_EQ(list->selectableBeside({}, 1), 1U);
    EXPECT_EQ(list->selectableBeside(2, 1), 4U);
    EXPECT_EQ(list->selectableBeside(4, -1), 2U);
    EXPECT_FALSE(list->selectableBeside(1, -1));
    EXPECT_FALSE(list->selectableBeside(13, 1));
    EXPECT_EQ(list->selectableAPageFrom(1, 1), 9U);
    EXPECT_EQ(list->selectableAPageFrom(9, 1), 13U);
    EXPECT_EQ(list->selectableAPageFrom(13, -1), 4U);
    EXPECT_FALSE(list->selectableAPageFrom(13, 1));

    list->revealRow(13);
    EXPECT_EQ(list->offset(), list->mostOffset());
    list->revealRow(4);
    EXPECT_EQ(list->offset(), 70); // its heading too
    list->revealRow(1);
    EXPECT_EQ(list->offset(), 0);
    list->revealRow(9);
    EXPECT_EQ(list->offset(), 20);
}

// Faults: a wheel that stops short, runs past an end or turns for ever; turns that are lost while
// one is under way; momentum that scrolls what its fingers never touched.
TEST_F(ListViewTest, followsTheWheelAndTheFingers)
{
    showNumbers(100);
    turn(-1);
    EXPECT_EQ(list->offset(), ListView::kNotch);
    for (int notch = 0; notch < 3; ++notch)
        scroll(-1, ScrollUnit::notches);
    desktop.advance(seconds(0.5));
    EXPECT_EQ(list->offset(), 4 * ListView::kNotch);
    turn(100);
    EXPECT_EQ(list->offset(), 0);
    scroll(-1000, ScrollUnit::notches);
    rows.names.resize(20);
    list->reload();
    desktop.advance(seconds(2));
    EXPECT_EQ(list->offset(), list->mostOffset());
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0U);
    list->scrollTo(0);

    auto fingers = [&](double points, ScrollPhase phase) {
        scroll(-points, ScrollUnit::points, phase);
        return list->offset();
    };
    auto momentum = [&](double points) {
        scroll(-points, ScrollUnit::points, ScrollPhase::none, true);
        return list->offset();
    };
    EXPECT_EQ(momentum(10), 0);
    EXPECT_EQ(fingers(10, ScrollPhase::changed), 0);
    EXPECT_EQ(fingers(0, ScrollPhase::began), 0);
    EXPECT_EQ(fingers(30, ScrollPhase::changed), 30);
    EXPECT_EQ(fingers(0, ScrollPhase::ended), 30);
    EXPECT_EQ(momentum(20), 50);
    list->scrollTo(0); // as a key does
    EXPECT_EQ(momentum(15), 0);
    EXPECT_EQ(fingers(5, ScrollPhase::none), 5); // a device that does not tell of phases

    list->setReducesMotion(true);
    scroll(-1, ScrollUnit::notches);
    EXPECT_EQ(list->offset(), 5 + ListView::kNotch);
}

// Faults: a scroller that stays, wakes the machine at rest, takes clicks meant for a row while it
// is hidden, or goes away under the hand that drags it.
TEST_F(ListViewTest, itsScrollerComesWhenNeededAndGoes)
{
    showNumbers(100);
    Point edge{96, 100};
    EXPECT_FALSE(isScrollerShown());
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0U);
    EXPECT_TRUE(dynamic_cast<NamedRow*>(list->hitTest(edge)));

    turn(-1);
    EXPECT_TRUE(isScrollerShown());
    EXPECT_TRUE(dynamic_cast<OverlayScroller*>(list->hitTest(edge)));
    desktop.advance(OverlayScroller::kStays + OverlayScroller::kFades + seconds(0.1));
    EXPECT_FALSE(isScrollerShown());
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0U);

    list->scrollTo(0);
    panel->press({96, 10});
    desktop.advance(seconds(5));
    EXPECT_TRUE(isScrollerShown());
    panel->movePointer({300, 500});
    EXPECT_EQ(list->offset(), list->mostOffset());
    panel->release({300, 500});
    panel->leave();
    desktop.advance(seconds(2));
    EXPECT_FALSE(isScrollerShown());

    panel->click({96, 5}); // a row
    list->flashScroller();
    panel->click({96, 5}); // the track, a page above
    EXPECT_EQ(list->offset(), list->mostOffset() - 200);

    list->setRightToLeft(true);
    list->flashScroller();
    EXPECT_TRUE(dynamic_cast<OverlayScroller*>(list->hitTest({4, 100})));

    rows.names.resize(5);
    list->reload();
    list->flashScroller();
    EXPECT_FALSE(isScrollerShown());
}

// Faults: rows that jump, that forget which of them is selected or held, or whose views change
// hands; a lifted row below the others; a row that never arrives.
TEST_F(ListViewTest, rowsGlideToTheirNewPlacesWithTheirViews)
{
    showNumbers(8);
    list->select(1);
    auto* held = list->rowView(1);
    list->lift(1, 33);
    EXPECT_EQ(tops()["*1"], 33);
    EXPECT_EQ(seen().back(), "*1");

    std::rotate(rows.names.begin() + 1, rows.names.begin() + 2, rows.names.begin() + 4);
    list->moveRow(1, 3, seconds(0.1));
    EXPECT_EQ(list->rowView(3), held);
    EXPECT_EQ(list->selectedRow(), 3U);
    EXPECT_EQ(tops()["2"], 40);
    desktop.advance(seconds(0.05));
    EXPECT_THAT(tops()["2"], AllOf(Lt(40), Gt(20)));
    EXPECT_EQ(tops()["*1"], 33);

    // Another step while the first is under way.
    auto on = tops()["3"];
    std::rotate(rows.names.begin() + 2, rows.names.begin() + 3, rows.names.begin() + 4);
    list->moveRow(3, 2, seconds(0.1));
    EXPECT_EQ(tops()["3"], on);
    list->dropLifted(seconds(0.1));
    EXPECT_EQ(tops()["*1"], 33);
    desktop.advance(seconds(0.2));
    EXPECT_EQ(tops()["2"], 20);
    EXPECT_EQ(tops()["*1"], 40);
    EXPECT_EQ(tops()["3"], 60);
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0U);

    list->setReducesMotion(true);
    std::swap(rows.names[0], rows.names[1]);
    list->moveRow(0, 1, seconds(0.1));
    EXPECT_EQ(tops()["0"], 20);

    std::vector<std::string> read;
    for (auto* row : list->accessibleChildren())
        read.push_back(row->accessibleID());
    EXPECT_THAT(read, ElementsAreArray(rows.names));
}

// Faults: a lifted row that is left behind by scrolling, or loses its view out of its place's
// sight; a press that means another row after the one below the pointer has gone.
TEST_F(ListViewTest, aRowInTheHandKeepsItsViewWhileOthersComeAndGo)
{
    showNumbers(100);
    auto* held = list->rowView(2);
    list->lift(2, 150);
    list->scrollTo(1000);
    EXPECT_EQ(list->rowView(2), held);
    EXPECT_EQ(tops()["2"], 150);
    list->dropLifted(seconds(0.1));
    desktop.advance(seconds(0.2));
    EXPECT_FALSE(list->rowView(2));
    EXPECT_EQ(static_cast<NamedRow*>(held)->changes, 1);
    EXPECT_THAT(seen(), Not(Contains("2")));
}

}
