// What CoreFoundation's own rules decide: true of the simulated one, and of the real one on a Mac.

#include <cmath>

#include "Hosts/MacOS/System/CFText.h"
#include "Hosts/MacOS/System/CFValues.h"
#include "Hosts/MacOS/System/WindowDecoding.h"
#include "Tests/MacSystem/Support/LeakCheck.h"
#include "Tests/MacSystem/Support/Values.h"
#include "Tests/Support/Matchers.h"

namespace quorvel::test {

namespace {

struct MacText final : CFText {
    Size measure(std::string_view, const TextStyle&) const override { return {}; }
    LineLayout lineLayout(std::string_view, const TextStyle&) const override { return {}; }
};

struct CoreFoundationTest : testing::Test {
    LeakCheck leaks;
    MacText letters;
};

}

// Faults: offsets counted in UTF-16; a text that is no UTF-8 is no string there, and null.
TEST_F(CoreFoundationTest, textIsCutIntoCharactersByBytes)
{
    EXPECT_THAT(letters.characterEnds("aé€"), ElementsAre(1, 3, 6));
    EXPECT_THAT(letters.characterEnds("e\u0301👍🏽!"), ElementsAre(3, 11, 12));
    EXPECT_THAT(letters.characterEnds("a\xFF\xC3"), ElementsAre(1, 2, 3));
    EXPECT_THAT(letters.characterEnds(""), IsEmpty());
}

TEST_F(CoreFoundationTest, textIsFoldedComparedAndClassified)
{
    EXPECT_EQ(letters.fold("ÀＢＣ"), "abc");
    EXPECT_EQ(letters.fold("か\u3099"), "が") << "as a file name on an old disk";
    EXPECT_EQ(letters.fold("\xFF"), "\xFF");
    EXPECT_EQ(letters.compare("alpha", "ALPHA"), std::weak_ordering::equivalent);
    EXPECT_EQ(letters.compare("alpha", "Beta"), std::weak_ordering::less);
    EXPECT_EQ(letters.compare("gamma", "Beta"), std::weak_ordering::greater);
    EXPECT_EQ(letters.compare("\xFF", "a"), std::weak_ordering::greater);
    using enum CharacterClass;
    const std::pair<char32_t, CharacterClass> expected[]{{U'a', lowerCaseLetter},
        {U'Ж', upperCaseLetter}, {U'ǅ', otherLetter}, {U'か', otherLetter}, {U'٣', decimalDigit},
        {U'Ⅳ', otherNumber}, {U'½', otherNumber}, {U'\u0301', other}, {U'-', other}};
    for (auto [point, kind] : expected)
        EXPECT_EQ(letters.classOf(point), kind) << static_cast<std::uint32_t>(point);
}

// Faults: the real types of truth values and numbers are each other's; a number is cut to fit.
TEST_F(CoreFoundationTest, aValueIsReadByItsTypeAndAbsentAsAnother)
{
    EXPECT_EQ(textFrom(text("Écran 😀").get()), "Écran 😀");
    EXPECT_EQ(textFrom(utf16({0xD83D, u'b'}).get()), "?b");
    EXPECT_EQ(textFrom(number(1).get()), std::nullopt);
    EXPECT_EQ(truthFrom(truth(true).get()), true);
    EXPECT_EQ(truthFrom(number(1).get()), std::nullopt);
    EXPECT_EQ(doubleFrom(real(0.5).get()), 0.5);
    EXPECT_EQ(doubleFrom(truth(true).get()), std::nullopt);
    EXPECT_EQ(doubleFrom(real(NAN).get()), std::nullopt);
    EXPECT_EQ(int32From(real(3).get()), 3);
    EXPECT_EQ(int32From(real(0.5).get()), std::nullopt);
    EXPECT_EQ(int32From(number(std::int64_t{1} << 32 | 501).get()), std::nullopt);
    EXPECT_EQ(int64From(number(-1).get()), -1);
    EXPECT_EQ(rectFrom(rectangle(-1440, 25.5, 800, 600).get()), (Rect{-1440, 25.5, 800, 600}));
    EXPECT_EQ(rectFrom(rectangle(0, NAN, 800, 600).get()), std::nullopt);
    EXPECT_EQ(dictionaryFrom(array({}).get()), nullptr);
    EXPECT_THAT(numbersFrom(arrayFrom(array({number(7), null(), text("8"), number(9)}).get())),
        ElementsAre(7U, 9U));
}

TEST_F(CoreFoundationTest, anEntryIsReadWhateverKindOfNumbersItHas)
{
    const auto entry = dictionary({{"kCGWindowNumber", number(-1)},
        {"kCGWindowOwnerPID", number(501)}, {"kCGWindowLayer", real(3)},
        {"kCGWindowAlpha", number(1)}, {"kCGWindowBounds", rectangle(-1440, 25.5, 800, 600)},
        {"kCGWindowOwnerName", text("Écran 😀")}, {"kCGWindowName", text("")}});

    const CGWindowInfo expected{.windowNumber = WindowID{0xFFFFFFFF},
        .ownerPID = ProcessID{501},
        .layer = 3,
        .bounds = Rect{-1440, 25.5, 800, 600},
        .alpha = 1,
        .ownerName = "Écran 😀",
        .windowName = ""};
    EXPECT_EQ(WindowDecoder{}.decode(dictionaryFrom(entry.get())), expected);
}

}
