#include "Quorvel/Views/ThumbnailPopupLayout.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "Quorvel/Core/ThumbnailService.h"
#include "Quorvel/Views/ThumbnailCard.h"

namespace quorvel {

namespace {

struct ThumbnailPopupPlaces {
    static constexpr double spacing = 4; ///< between cards
    static constexpr double screenMargin = 8;
};

constexpr std::array kPictureSizes{
    ThumbnailService::kPopupPictureSize, Size{180, 112.5}, Size{132, 82.5}};

Size cardsSize(std::size_t columns, std::size_t rows, Size card)
{
    auto n = static_cast<double>(columns);
    auto m = static_cast<double>(rows);
    return {n * (card.width + ThumbnailPopupPlaces::spacing) - ThumbnailPopupPlaces::spacing,
        m * (card.height + ThumbnailPopupPlaces::spacing) - ThumbnailPopupPlaces::spacing};
}

/// Until a card with it fits, with its proportions.
Size shrunkTo(Size picture, Size room, std::size_t titleLines)
{
    auto around = ThumbnailCard::sizeFor({}, titleLines);
    double share = std::clamp(std::min((room.width - around.width) / picture.width,
                                  (room.height - around.height) / picture.height),
        0.0, 1.0);
    return {std::max(1.0, std::floor(picture.width * share)),
        std::max(1.0, std::floor(picture.height * share))};
}

}

ThumbnailPopupLayout ThumbnailPopupLayout::of(
    Contents contents, const Rect& chip, const Rect& screen, bool isRightToLeft)
{
    auto [windowCount, titleLines] = contents;
    ThumbnailPopupLayout layout;
    double room = screen.width - 2 * (ThumbnailPopupPlaces::screenMargin + kPadding);
    double height = screen.maxY() - chip.maxY()
        - 2 * (ThumbnailPopupPlaces::screenMargin + kPadding) - kArrowHeight - kMoreHeight;
    // The largest pictures with which all windows stand in one row, else as many rows as fit.
    std::size_t columns = 1;
    for (auto size : kPictureSizes) {
        layout.pictureSize = size;
        auto card = ThumbnailCard::sizeFor(size, titleLines);
        columns = std::max<std::size_t>(1,
            static_cast<std::size_t>((room + ThumbnailPopupPlaces::spacing)
                / (card.width + ThumbnailPopupPlaces::spacing)));
        if (columns >= windowCount)
            break;
    }
    layout.pictureSize = shrunkTo(
        layout.pictureSize, {room, height + (windowCount > columns ? 0 : kMoreHeight)}, titleLines);
    auto card = ThumbnailCard::sizeFor(layout.pictureSize, titleLines);
    auto mostRows = std::max<std::size_t>(1,
        static_cast<std::size_t>(std::max(0.0, height + ThumbnailPopupPlaces::spacing)
            / (card.height + ThumbnailPopupPlaces::spacing)));
    columns = std::clamp<std::size_t>(windowCount, 1, columns);
    auto rows = std::clamp<std::size_t>((windowCount + columns - 1) / columns, 1, mostRows);
    auto shown = std::min(windowCount, columns * rows);
    layout.hiddenCount = windowCount - shown;
    auto inner = cardsSize(columns, rows, card);
    for (std::size_t index = 0; index < shown; ++index) {
        const std::size_t column = index % columns;
        const std::size_t row = index / columns;
        double x = static_cast<double>(column) * (card.width + ThumbnailPopupPlaces::spacing);
        double y = static_cast<double>(row) * (card.height + ThumbnailPopupPlaces::spacing);
        if (isRightToLeft)
            x = inner.width - x - card.width;
        layout.cards.push_back({kPadding + x, kPadding + y, card.width, card.height});
    }
    Size whole{inner.width + 2 * kPadding,
        inner.height + 2 * kPadding + (layout.hiddenCount > 0 ? kMoreHeight : 0) + kArrowHeight};
    double left = std::max(screen.x + ThumbnailPopupPlaces::screenMargin,
        std::min(chip.centre().x - whole.width / 2,
            screen.maxX() - ThumbnailPopupPlaces::screenMargin - whole.width));
    // On the smallest of screens it has to lie over the bar.
    double bottom = std::max(screen.y, std::min(chip.maxY(), screen.maxY() - whole.height));
    layout.frame = Rect{std::round(left), bottom, whole.width, whole.height}.intersected(screen);
    layout.pointAt(chip);
    return layout;
}

void ThumbnailPopupLayout::pointAt(const Rect& chip)
{
    constexpr double least = kRadius + kArrowHalfWidth;
    arrowX = std::clamp(chip.centre().x - frame.x, least, std::max(least, frame.width - least));
}

}
