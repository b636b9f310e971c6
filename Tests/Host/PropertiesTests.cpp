#include "Hosts/X11/Desktop/Properties.h"

#include <cstring>

#include <gmock/gmock.h>

#include "Hosts/X11/Desktop/CompoundText.h"

namespace quorvel::xdg::x11 {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr TextTypes kTypes{.utf8String = 300, .compoundText = 301};

RawProperty text(std::string_view bytes, xcb_atom_t type = kTypes.utf8String)
{
    return {type, 8, std::as_bytes(std::span{bytes.data(), bytes.size()})};
}

/// Keeps the words that its property points to.
struct Words {
    std::vector<std::uint32_t> values;

    RawProperty as(xcb_atom_t type, std::uint8_t format = 32) const
    {
        return {type, format, std::as_bytes(std::span{values})};
    }
};

}

TEST(Properties, textsAreValidUtf8WhateverWasWritten)
{
    EXPECT_EQ(decodeText(text("Café"), kTypes), "Café");
    EXPECT_EQ(decodeText(text("Caf\xe9", XCB_ATOM_STRING), kTypes), "Café");
    EXPECT_EQ(decodeText(text("a\xff\xc3"
                              "b"),
                  kTypes),
        "a\xef\xbf\xbd\xef\xbf\xbd"
        "b");
    EXPECT_EQ(decodeText(text("\xed\xa0\x80"), kTypes)->find('\xed'), std::string::npos)
        << "surrogates are no characters";
    EXPECT_EQ(decodeText(text({"a\0b", 3}), kTypes), "a");
    EXPECT_EQ(decodeText(text("\xc3\xa9\xc3\xa9"), kTypes, 3), "é") << "cut between characters";
    EXPECT_EQ(decodeText(text(""), kTypes), "");
    EXPECT_FALSE(decodeText(text("x", XCB_ATOM_ATOM), kTypes));
    EXPECT_FALSE(decodeText({kTypes.utf8String, 16, {}}, kTypes));
    EXPECT_FALSE(decodeText({}, kTypes));
}

TEST(Properties, compoundTextIsReadInItsSets)
{
    EXPECT_EQ(decodeCompoundText("plain \xe9"), "plain é");
    EXPECT_EQ(decodeCompoundText("\x1b-H\xf9\xec\xe5\xed"), "שלום");
    EXPECT_EQ(decodeCompoundText("\x1b%G日本\x1b%@ \xfc"), "日本 ü");
    EXPECT_EQ(decodeCompoundText("\x1b%G\xff\x1b%@x"), "\uFFFDx");
    EXPECT_EQ(decodeCompoundText("\x1b$(B\x46\x7c\x4b\x5c\x1b(B ok"), "日本 ok");
    EXPECT_EQ(decodeCompoundText("\x1b%/1\x80\x8ckoi8-r\x02\xf0\xd2\xc9\xd7!"), "Прив!");
    EXPECT_EQ(decodeText(text("\x1b-H\xf9", kTypes.compoundText), kTypes), "ש");
}

TEST(Properties, wordsOfAnotherTypeOrFormatAreAbsent)
{
    Words one{{7}};
    EXPECT_EQ(decodeCardinal(one.as(XCB_ATOM_CARDINAL)), 7U);
    EXPECT_FALSE(decodeCardinal(one.as(XCB_ATOM_WINDOW)));
    EXPECT_FALSE(decodeCardinal(one.as(XCB_ATOM_CARDINAL, 16)));
    EXPECT_FALSE(decodeCardinal(Words{}.as(XCB_ATOM_CARDINAL)));
    EXPECT_FALSE(decodeExtents(Words{{1, 2, 3}}.as(XCB_ATOM_CARDINAL)));
    EXPECT_EQ(
        decodeExtents(Words{{1, 2, 3, 0xffffffff}}.as(XCB_ATOM_CARDINAL)), (Extents{1, 2, 3, 0}))
        << "a negative border is none";
    EXPECT_THAT(decodeWindows(Words{{5, 0, 6, 5}}.as(XCB_ATOM_WINDOW)), ElementsAre(5U, 6U));
    EXPECT_FALSE(decodeHints(Words{{}}.as(XCB_ATOM_WM_HINTS)).isUrgent);
    EXPECT_EQ(decodeHints(Words{{4, 1, 1, 77, 0, 0, 0, 88}}.as(XCB_ATOM_WM_HINTS)).iconPixmap, 77U);
    EXPECT_EQ(decodeHints(Words{{4, 1, 1, 77, 0, 0, 0, 88}}.as(XCB_ATOM_WM_HINTS)).iconMask, 0U);
    EXPECT_EQ(decodeHints(Words{{36, 1, 1, 77}}.as(XCB_ATOM_WM_HINTS)).iconMask, 0U) << "cut short";
    EXPECT_EQ(decodeOpacity({}), 1);
    EXPECT_EQ(decodeOpacity(Words{{0}}.as(XCB_ATOM_CARDINAL)), 0);
}

TEST(Properties, onlyWholePicturesOfSaneSizesAreTaken)
{
    auto icons = [](std::vector<std::uint32_t> words) {
        return decodeIcons(Words{std::move(words)}.as(XCB_ATOM_CARDINAL));
    };
    EXPECT_THAT(icons({0, 0}), IsEmpty());
    EXPECT_THAT(icons({20000, 20000, 1, 2, 3}), IsEmpty());
    EXPECT_THAT(icons({0xffffffff, 0xffffffff}), IsEmpty());
    EXPECT_THAT(icons({2, 2, 1, 2, 3}), IsEmpty()) << "a pixel is missing";
    auto both = icons({1, 1, 0xff112233, 2, 1, 1, 2});
    ASSERT_EQ(both.size(), 2U);
    EXPECT_EQ(both[0].argb, std::vector<std::uint32_t>{0xff112233});
    EXPECT_EQ(both[1].width, 2);
}

// Faults: no icon for a program that gives only the large one that it was published with; a picture
// of any size taken from whoever sends one.
TEST(Properties, aLargePictureIsTakenIfThereIsNoneOfAUsefulSize)
{
    auto sides = [](std::initializer_list<std::uint32_t> widths) {
        std::vector<std::uint32_t> words;
        for (auto width : widths) {
            words.insert(words.end(), {width, 1});
            words.resize(words.size() + width);
        }
        std::vector<int> taken;
        for (auto& icon : decodeIcons(Words{std::move(words)}.as(XCB_ATOM_CARDINAL)))
            taken.push_back(icon.width);
        return taken;
    };
    EXPECT_THAT(sides({512, 1024}), ElementsAre(512));
    EXPECT_THAT(sides({1025, 1024}), ElementsAre(1024));
    EXPECT_THAT(sides({1025}), IsEmpty());
    EXPECT_THAT(sides({257, 64, 1024, 48}), ElementsAre(64, 48));
    EXPECT_THAT(sides({512, 63}), ElementsAre(63, 512)) << "too small for a fine screen";
}

TEST(Properties, aClassWithoutItsSecondHalfStillHasAnInstance)
{
    EXPECT_EQ(decodeClass(text({"xterm\0XTerm\0", 12}, XCB_ATOM_STRING), kTypes),
        (WindowClass{"xterm", "XTerm"}));
    EXPECT_EQ(decodeClass(text("xterm", XCB_ATOM_STRING), kTypes), (WindowClass{"xterm", ""}));
    EXPECT_FALSE(decodeClass(text("", XCB_ATOM_STRING), kTypes));
}

}
