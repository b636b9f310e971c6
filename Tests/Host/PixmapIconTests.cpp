#include "Hosts/X11/Desktop/PixmapIcon.h"

#include <cstdint>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quorvel::xdg::x11 {
namespace {

using testing::ElementsAre;

constexpr PixelLayout k16{16, 32, 0xF800, 0x07E0, 0x001F};
constexpr PixelLayout k24{32, 32, 0xFF0000, 0xFF00, 0xFF};
constexpr PixelLayout k30{32, 32, 0x3FF00000, 0xFFC00, 0x3FF};

template <typename Word> RawPixmap pixmap(int width, int depth, const std::vector<Word>& words)
{
    const auto bytes = std::as_bytes(std::span{words});
    const auto rowBytes = (static_cast<std::size_t>(width) * sizeof(Word) + 3) / 4 * 4;
    return {width, static_cast<int>(bytes.size() / rowBytes), depth, bytes};
}

RawPixmap bitmap(int width, const std::vector<std::uint32_t>& rows)
{
    return {width, static_cast<int>(rows.size()), 1, std::as_bytes(std::span{rows})};
}

// Faults: the colours of the other depths mixed up, or their rows read as if they had no padding.
TEST(PixmapIcon, isReadInTheLayoutOfTheScreen)
{
    const std::vector<std::uint16_t> narrow{0xF800, 0x07E0, 0x001F, 0, 0xFFFF, 0x8410, 0, 0};
    EXPECT_THAT(iconFromPixmaps(pixmap(3, 16, narrow), {}, k16, {})->argb,
        ElementsAre(0xFFFF0000, 0xFF00FF00, 0xFF0000FF, 0xFFFFFFFF, 0xFF848284, 0xFF000000));
    const std::vector<std::uint32_t> usual{0x12FF0000, 0x00112233};
    EXPECT_THAT(iconFromPixmaps(pixmap(2, 24, usual), {}, k24, {})->argb,
        ElementsAre(0xFFFF0000, 0xFF112233));
    const std::vector<std::uint32_t> deep{0x3FF00000, 0xFFC00, 0xC00003FF, 0x20080200};
    EXPECT_THAT(iconFromPixmaps(pixmap(4, 30, deep), {}, k30, {})->argb,
        ElementsAre(0xFFFF0000, 0xFF00FF00, 0xFF0000FF, 0xFF808080));
}

TEST(PixmapIcon, ofOneBitIsBlackOnWhiteAndTheMaskSaysWhatIsThere)
{
    const std::vector<std::uint32_t> rows{0b001, 0b110};
    const std::vector<std::uint32_t> shape{0b011, 0b010};
    const auto picture = bitmap(3, rows);
    EXPECT_THAT(iconFromPixmaps(picture, {}, k24, {})->argb,
        ElementsAre(0xFF000000, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFF000000, 0xFF000000));
    EXPECT_THAT(iconFromPixmaps(picture, bitmap(3, shape), k24, {})->argb,
        ElementsAre(0xFF000000, 0xFFFFFFFF, 0U, 0U, 0xFF000000, 0U));
    const std::vector<std::uint32_t> swapped{0x80, 0x60};
    EXPECT_EQ(iconFromPixmaps(bitmap(3, swapped), {}, k24, {false, 32})->argb,
        iconFromPixmaps(picture, {}, k24, {})->argb);

    const std::vector<std::uint32_t> colours{1, 2, 3, 4};
    EXPECT_THAT(iconFromPixmaps(pixmap(2, 24, colours), bitmap(1, {shape[0]}), k24, {})->argb,
        ElementsAre(0xFF000001, 0U, 0U, 0U))
        << "what lies outside the mask is not there";
}

// Faults: memory read beyond what the server sent, or taken for a size that no icon has.
TEST(PixmapIcon, hostileSizesAndMissingDataGiveNone)
{
    const std::vector<std::uint32_t> words(16, 0xFFFFFFFF);
    const auto data = std::as_bytes(std::span{words});
    for (const auto& bad : {RawPixmap{0, 0, 24, data}, RawPixmap{4, 5, 24, data},
             RawPixmap{100'000, 1, 24, data}, RawPixmap{-4, 4, 24, data}, RawPixmap{4, 17, 1, data},
             RawPixmap{33, 9, 1, data}, RawPixmap{4, 4, 24, {}}})
        EXPECT_FALSE(iconFromPixmaps(bad, {}, k24, {})) << bad.width << 'x' << bad.height;
    EXPECT_FALSE(iconFromPixmaps({4, 4, 8, data}, {}, {8, 32, 0, 0, 0}, {}));
    const auto whole = iconFromPixmaps({4, 4, 24, data}, RawPixmap{4, 400, 1, data}, k24, {});
    ASSERT_TRUE(whole);
    EXPECT_EQ(whole->argb[15], 0xFFFFFFFF) << "a mask without data is none";
}

}
}
