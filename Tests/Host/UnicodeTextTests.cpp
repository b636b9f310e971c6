#include "Hosts/Linux/Unicode/UnicodeText.h"

#include <algorithm>

#include <gmock/gmock.h>

namespace quorvel::xdg {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct Letters final : UnicodeText {
    using UnicodeText::UnicodeText;
    Size measure(std::string_view, const TextStyle&) const override { return {}; }
    LineLayout lineLayout(std::string_view, const TextStyle&) const override { return {}; }
};

}

// Faults: a library call that ends at a NUL or fails on bytes that are no text; a mark that has
// lost its letter; letters that only some steps change.
TEST(UnicodeText, foldsWhatASearchDisregards)
{
    const std::pair<std::string, std::string> cases[]{{"", ""}, {"Plain 7", "plain 7"},
        {"ÄÖÜẞß", "aoussss"}, {"e\u0301\u0323x", "ex"}, {"Ệ", "e"}, {"ŁØĐ", "łøđ"}, {"ﬁ", "fi"},
        {"Σίσυφος", "σισυφοσ"}, {"Ёлкой", "елкои"}, {"İI", "ii"}, {"ＡｂＣ１", "abc1"},
        {"ｶﾞﾊﾟ", "ガパ"}, {"か\u3099", "が"}, {"ガ", "ガ"}, {"אָ", "אָ"}, {"لَ", "لَ"},
        {"한글", "한글"}, {"\u1112\u1161\u11AB", "한"}, {"\u0301a", "\u0301a"},
        {std::string{"a\0b", 3}, "a\uFFFDb"}, {"\xFF\xC3", "\uFFFD\uFFFD"}, {"Ꭰꭰ", "ꭰꭰ"}};
    for (auto& [text, folded] : cases) {
        EXPECT_EQ(Letters{"de_DE.UTF-8"}.fold(text), folded) << text;
        EXPECT_EQ(Letters{"de"}.fold(folded), folded) << "once is enough: " << text;
    }
    EXPECT_EQ(Letters{"tr_TR.UTF-8"}.fold("İIiı I\u0307"), "iıiı i");
    EXPECT_EQ(Letters{"az"}.fold("I"), "ı");
}

// The tests run in the locale C, which has no order of its own.
TEST(UnicodeText, ordersNamesWithoutALocaleAsInAList)
{
    const Letters letters{"en"};
    std::vector<std::string> names{"zoo", "Éa", "b", "eb", "B\xFF", "Äb", "ea", "Ab", "", "10"};
    std::ranges::stable_sort(names, [&](auto& a, auto& b) { return letters.compare(a, b) < 0; });
    EXPECT_THAT(names, ElementsAre("", "10", "Ab", "Äb", "b", "B\xFF", "ea", "Éa", "eb", "zoo"));
    EXPECT_EQ(letters.compare("ÄB", "äb"), std::weak_ordering::equivalent);
}

TEST(UnicodeText, cutsTextIntoCharactersAsReadersSeeThem)
{
    const Letters letters{"en"};
    EXPECT_THAT(letters.characterEnds("a\r\nb"), ElementsAre(1, 3, 4));
    EXPECT_THAT(letters.characterEnds("e\u0301x"), ElementsAre(3, 4));
    EXPECT_THAT(letters.characterEnds("👩‍🔧🇩🇪🇫🇷"), ElementsAre(11, 19, 27));
    EXPECT_THAT(letters.characterEnds("\u1112\u1161\u11AB글"), ElementsAre(9, 12));
    EXPECT_THAT(letters.characterEnds("é\xFF\xE2\x82"), ElementsAre(2, 3, 4, 5));
    EXPECT_THAT(letters.characterEnds(std::string_view{"a\0b", 3}), ElementsAre(1, 2, 3));
    EXPECT_THAT(letters.characterEnds(""), IsEmpty());
}

}
