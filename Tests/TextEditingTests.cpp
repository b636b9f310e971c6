// What typing, selecting, composing and undoing make of a line of text.
#include <random>

#include <gtest/gtest.h>

#include "Quorvel/Views/Kit/TextEditing.h"
#include "Tests/Support/FakeProgram.h"
#include "Tests/Support/Seed.h"

namespace quorvel::test {

namespace {

constexpr auto kBackward = TextDirection::backward;
constexpr auto kForward = TextDirection::forward;
constexpr auto kCharacter = TextUnit::character;
constexpr auto kWord = TextUnit::word;
constexpr auto kAlone = CaretMove::alone;
constexpr auto kSelecting = CaretMove::selecting;

/// What a reader takes for one character each: a family, a flag, a thumb with a colour, an accent
/// on its letter, Hangul in parts, a Devanagari syllable with its vowel.
const std::vector<std::string> kClusters{"\U0001F468\u200D\U0001F469\u200D\U0001F467",
    "\U0001F1EB\U0001F1F7", "\U0001F44D\U0001F3FD", "e\u0301\u0323", "\u1112\u1161\u11AB",
    "\u0928\u093F"};

struct TextEditingTest : testing::Test {
    FakeText unicode;
    TextEditing editing{unicode};

    /// With the caret as '|' and the selection in brackets, the caret outside on its side.
    std::string seen() const
    {
        auto shown = editing.shown();
        auto text = shown.text;
        auto& range = shown.selection;
        if (range.isEmpty())
            return text.insert(shown.caret, "|");
        bool isAtEnd = shown.caret == range.end;
        text.insert(range.end, isAtEnd ? "]|" : "]");
        return text.insert(range.start, isAtEnd ? "[" : "|[");
    }
    void set(std::string_view text, std::size_t caret)
    {
        editing.setText(text);
        editing.moveTo(caret, kAlone);
    }
};

}

// Faults: a key takes half of an emoji or the accent alone; the caret ends up inside of one.
TEST_F(TextEditingTest, neverSplitsWhatAReaderTakesForOneCharacter)
{
    for (auto& cluster : kClusters) {
        editing.setText("a" + cluster + "b");
        editing.move(kBackward, kCharacter, kAlone);
        editing.move(kBackward, kCharacter, kAlone);
        EXPECT_EQ(editing.caret(), 1u) << cluster;
        editing.move(kForward, kCharacter, kSelecting);
        EXPECT_EQ(editing.selectedText(), cluster);
        editing.moveTo(2, kAlone);
        EXPECT_EQ(editing.caret(), 1 + cluster.size()) << "inside of it: behind it";
        editing.erase(kBackward, kCharacter);
        EXPECT_EQ(seen(), "a|b");
        editing.type(cluster);
        editing.moveTo(1, kAlone);
        editing.erase(kForward, kCharacter);
        EXPECT_EQ(seen(), "a|b");

        TextEditing small{unicode, cluster.size() + 1};
        small.paste("a" + cluster + "b");
        EXPECT_EQ(small.text(), "a" + cluster);
        small.setText("ab");
        small.paste(cluster);
        EXPECT_EQ(small.text(), "ab") << "cut whole or not at all";
    }
    // What is typed may join what is there.
    set("\u0301x", 0);
    editing.type("e");
    EXPECT_EQ(seen(), "e\u0301|x");
}

// Faults: words are found by spaces only, so that a path or a name in brackets is one word; Control
// and an arrow stop before the space on one side and behind it on the other.
TEST_F(TextEditingTest, movesSelectsAndErasesByWords)
{
    set("open (foo-bar) 2nd", 0);
    std::vector<std::size_t> stops;
    for (auto last = editing.text().size(); editing.caret() < last;) {
        editing.move(kForward, kWord, kAlone);
        stops.push_back(editing.caret());
    }
    EXPECT_EQ(stops, (std::vector<std::size_t>{4, 9, 13, 18}));
    stops.clear();
    while (editing.caret() > 0) {
        editing.move(kBackward, kWord, kAlone);
        stops.push_back(editing.caret());
    }
    EXPECT_EQ(stops, (std::vector<std::size_t>{15, 10, 6, 0}));

    editing.move(kForward, kWord, kSelecting);
    EXPECT_EQ(seen(), "[open]| (foo-bar) 2nd");
    editing.move(kBackward, kCharacter, kAlone);
    EXPECT_EQ(seen(), "|open (foo-bar) 2nd") << "an arrow leaves a selection at its end";
    editing.erase(kForward, kWord);
    EXPECT_EQ(seen(), "| (foo-bar) 2nd");
    editing.move(kForward, TextUnit::all, kAlone);
    editing.erase(kBackward, kWord);
    EXPECT_EQ(seen(), " (foo-bar) |");
    editing.moveTo(2, kSelecting);
    editing.type("b");
    EXPECT_EQ(seen(), " (b|");

    set("фото альбом", 0);
    editing.move(kForward, kWord, kSelecting);
    EXPECT_EQ(editing.selectedText(), "фото");
}

// Faults: a press behind the last letter of a word selects the space; dragging back over the start
// loses the word that was pressed.
TEST_F(TextEditingTest, twoPressesSelectAWordAndADragAddsWholeOnes)
{
    editing.setText("one  two.three");
    std::vector<std::pair<std::size_t, std::string>> expected{{0, "one"}, {2, "one"}, {3, "one"},
        {4, "  "}, {5, "two"}, {8, "two"}, {9, "three"}, {14, "three"}};
    for (auto& [offset, word] : expected) {
        editing.selectAt(offset, kWord);
        EXPECT_EQ(editing.selectedText(), word) << offset;
    }
    editing.selectAt(5, kWord);
    editing.extendTo(12);
    EXPECT_EQ(seen(), "one  [two.three]|");
    editing.extendTo(1);
    EXPECT_EQ(seen(), "|[one  two].three");
    editing.extendTo(6);
    EXPECT_EQ(seen(), "one  [two]|.three");
    editing.selectAt(5, TextUnit::all);
    editing.extendTo(0);
    EXPECT_EQ(seen(), "[one  two.three]|");

    editing.moveTo(3, kAlone);
    editing.extendTo(6);
    EXPECT_EQ(seen(), "one[  t]|wo.three");
    editing.extendTo(1);
    EXPECT_EQ(seen(), "o|[ne]  two.three");
    editing.setText("");
    editing.selectAt(0, kWord);
    EXPECT_EQ(seen(), "|");
}

// Faults: each letter is a step; a step joins what was typed in two places; a new text is undone
// into the one before the program set it.
TEST_F(TextEditingTest, undoesWhatWasTypedByTheWord)
{
    for (auto* letter : {"t", "w", "o", " ", "w", "o", "r", "d", "s"})
        editing.type(letter);
    editing.erase(kBackward, kCharacter);
    editing.erase(kBackward, kCharacter);
    editing.moveTo(0, kAlone);
    editing.type("x");
    editing.selectAll();
    editing.paste("new");

    std::vector<std::string> steps;
    while (editing.undo())
        steps.push_back(seen());
    EXPECT_EQ(
        steps, (std::vector<std::string>{"[xtwo wor]|", "|two wor", "two words|", "two |", "|"}));
    while (editing.redo())
        ;
    EXPECT_EQ(seen(), "new|");
    editing.undo();
    editing.type("!");
    EXPECT_FALSE(editing.redo()) << "there is another future now";

    editing.setText("set");
    EXPECT_FALSE(editing.undo());
    for (int i = 0; i < 300; ++i)
        editing.paste("p");
    int count = 0;
    while (editing.undo())
        ++count;
    EXPECT_EQ(count, 100) << "old steps are forgotten";
}

// Faults: the composition stays in the text after it was cancelled, or is undone letter by letter;
// moving the caret leaves it behind as if nobody had typed it.
TEST_F(TextEditingTest, showsWhatIsBeingComposedInPlaceOfTheSelection)
{
    editing.setText("a bc d");
    editing.select({2, 4});
    editing.compose("かん", 3);
    EXPECT_EQ(seen(), "a か|ん d");
    EXPECT_EQ(editing.shown().composition, (TextRange{2, 8}));
    EXPECT_EQ(editing.text(), "a bc d");
    editing.compose("", 0);
    EXPECT_EQ(seen(), "a [bc]| d");
    EXPECT_FALSE(editing.undo());

    editing.compose("かん", 4);
    EXPECT_EQ(seen(), "a かん| d") << "an offset inside of a letter";
    editing.type("漢");
    EXPECT_EQ(seen(), "a 漢| d");
    editing.undo();
    EXPECT_EQ(seen(), "a [bc]| d");

    editing.compose("x\ny", 99);
    editing.move(kBackward, TextUnit::all, kAlone);
    EXPECT_EQ(seen(), "|a x y d");
    EXPECT_FALSE(editing.isComposing());
}

// Faults: a paste of several lines breaks the field; controls, invalid bytes or too long a text get
// in, and a drawing library refuses them.
TEST_F(TextEditingTest, takesAnythingFromOutsideAsOnePlainLine)
{
    editing.paste("a\r\nb\nc\rd\te\u2028f\vg");
    EXPECT_EQ(editing.text(), "a b c d e f g");
    editing.setText(std::string_view{"a\0b\x1b[0m\x7f\u009f", 11});
    EXPECT_EQ(editing.text(), "ab[0m");
    editing.setText("\xff"
                    "a\xc3"
                    "b\xed\xa0\x80\xc0\xaf\xf4\x90\x80\x80\xe2\x82");
    EXPECT_EQ(editing.text().find_first_not_of("\xEF\xBF\xBD"
                                               "ab"),
        std::string::npos);
    EXPECT_EQ(editing.text().find("a"), 3u);

    editing.setText("");
    editing.paste(std::string(100'000, 'x'));
    EXPECT_EQ(editing.text().size(), TextEditing::kMostBytes);
    editing.type("y");
    EXPECT_EQ(editing.text().back(), 'x');
    editing.selectAll();
    editing.type("y");
    EXPECT_EQ(editing.text(), "y");
}

// Faults that nobody thought of: any row of edits keeps every offset between two characters, and
// all of it can be undone and done again.
TEST_F(TextEditingTest, keepsItsPromisesUnderAnyEdits)
{
    std::mt19937 random{seed()};
    auto pick = [&](std::size_t count) { return std::size_t{random() % count}; };
    std::vector<std::string> texts{"a", "bc ", " ", "\u0301", "\u200D", "שלום", "\n"};
    texts.insert(texts.end(), kClusters.begin(), kClusters.end());
    for (int round = 0; round < 60; ++round) {
        TextEditing small{unicode, 60};
        for (int step = 0; step < 60; ++step) {
            auto& text = texts[pick(texts.size())];
            auto direction = pick(2) ? kForward : kBackward;
            auto unit = pick(2) ? kCharacter : kWord;
            auto move = pick(2) ? kAlone : kSelecting;
            switch (pick(8)) {
            case 0:
            case 1:
                small.type(text);
                break;
            case 2:
                small.paste(text);
                break;
            case 3:
                small.erase(direction, unit);
                break;
            case 4:
                small.move(direction, unit, move);
                break;
            case 5:
                small.moveTo(pick(70), move);
                break;
            case 6:
                small.compose(text, pick(5));
                break;
            default:
                small.selectAt(pick(70), unit);
                small.extendTo(pick(70));
            }
            auto shown = small.shown();
            auto ends = unicode.characterEnds(small.text());
            ends.push_back(0);
            for (auto offset : {small.selection().start, small.selection().end})
                ASSERT_TRUE(std::ranges::count(ends, offset)) << small.text() << ' ' << offset;
            ASSERT_LE(small.text().size(), 60u);
            ASSERT_LE(shown.caret, shown.text.size());
            ASSERT_LE(shown.composition.end, shown.text.size());
        }
        small.settle();
        auto last = small.text();
        while (small.undo())
            ;
        EXPECT_EQ(small.text(), "");
        while (small.redo())
            ;
        EXPECT_EQ(small.text(), last);
    }
}

}
