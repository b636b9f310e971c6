// Where the characters of a line lie, as Pango draws them.
#include <cmath>

#include <gmock/gmock.h>

#include "Hosts/Linux/Drawing/CairoCanvas.h"
#include "Hosts/Linux/Drawing/CanvasTools.h"

namespace quorvel::xdg {

namespace {

const TextStyle kStyle{.size = 13, .color = Color::grey(1), .elide = Elide::none};

struct LineLayoutTest : testing::Test {
    CanvasTools tools;
    double scale = 1;
    PangoText text{tools.shaper, scale};

    LineLayout of(std::string_view utf8) { return text.lineLayout(utf8, kStyle); }
};

}

// Faults: the caret stands inside of a letter or beside it, more so the longer the line is; at
// another scale it is somewhere else.
TEST_F(LineLayoutTest, charactersFollowEachOtherFromEdgeToEdge)
{
    for (double scale_ : {1.0, 1.5, 2.0}) {
        scale = scale_;
        for (std::string_view utf8 : {"Tastatur WAVE 12", "e\u0301x", "\u0928\u093Fx"}) {
            auto line = of(utf8);
            ASSERT_FALSE(line.characters.empty());
            EXPECT_FALSE(line.isRightToLeft);
            EXPECT_NEAR(line.width, text.measure(utf8, kStyle).width, 1);
            double x = 0;
            std::size_t end = 0;
            for (auto& box : line.characters) {
                EXPECT_EQ(box.start, end);
                EXPECT_NEAR(box.left, x, 0.01) << utf8;
                EXPECT_FALSE(box.isRightToLeft);
                x = box.right;
                end = box.end;
            }
            EXPECT_EQ(end, utf8.size());
            EXPECT_NEAR(x, line.width, 0.01);
        }
    }
    scale = 1;
    EXPECT_EQ(of("e\u0301x").characters.size(), 2u);
    EXPECT_EQ(of("\U0001F468\u200D\U0001F469\u200D\U0001F467").characters.size(), 1u);
    EXPECT_THAT(of("").characters, testing::IsEmpty());
    EXPECT_THAT(of("a\nb").characters, testing::IsEmpty()) << "not what is drawn";
    EXPECT_THAT(of("\xff").characters, testing::IsEmpty());
}

TEST_F(LineLayoutTest, linesOfTwoDirectionsLieAsTheyAreRead)
{
    auto hebrew = of("שלום");
    ASSERT_EQ(hebrew.characters.size(), 4u);
    EXPECT_TRUE(hebrew.isRightToLeft);
    EXPECT_NEAR(hebrew.characters[0].right, hebrew.width, 0.01);
    EXPECT_NEAR(hebrew.characters[3].left, 0, 0.01);
    EXPECT_TRUE(hebrew.characters[3].isRightToLeft);

    auto mixed = of("ab שלום!");
    ASSERT_EQ(mixed.characters.size(), 8u);
    EXPECT_FALSE(mixed.isRightToLeft);
    EXPECT_GT(mixed.characters[3].left, mixed.characters[6].left);
    EXPECT_NEAR(mixed.characters[6].left, mixed.characters[2].right, 0.01);
    EXPECT_NEAR(mixed.characters[7].right, mixed.width, 0.01);
    EXPECT_FALSE(mixed.characters[7].isRightToLeft);
}

// Faults: the line is drawn elsewhere than its characters are said to be, in either direction of
// the interface.
TEST_F(LineLayoutTest, aLineIsDrawnWhereItsCharactersAre)
{
    auto line = of("M M");
    for (bool isRightToLeft : {false, true}) {
        CairoSurface surface{cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 100, 20)};
        CairoCanvas canvas{surface.get(), 1, tools, isRightToLeft};
        auto centred = kStyle;
        centred.alignment = TextAlignment::centre;
        canvas.drawText("M M", {8, 0, line.width + 4, 20}, centred);
        cairo_surface_flush(surface.get());
        auto hasInk = [&](double left, double right) {
            auto* pixels = cairo_image_surface_get_data(surface.get());
            int stride = cairo_image_surface_get_stride(surface.get());
            for (int y = 0; y < 20; ++y) {
                for (int x = int(std::ceil(left)); x < int(std::floor(right)); ++x) {
                    if (reinterpret_cast<std::uint32_t*>(pixels + y * stride)[x] >> 24)
                        return true;
                }
            }
            return false;
        };
        auto& boxes = line.characters;
        ASSERT_EQ(boxes.size(), 3u);
        EXPECT_TRUE(hasInk(10 + boxes[0].left, 10 + boxes[0].right));
        EXPECT_FALSE(hasInk(10 + boxes[1].left + 1, 10 + boxes[1].right - 1));
        EXPECT_TRUE(hasInk(10 + boxes[2].left, 10 + boxes[2].right));
        EXPECT_FALSE(hasInk(0, 9));
        EXPECT_FALSE(hasInk(11 + line.width, 99));
    }
}

}
