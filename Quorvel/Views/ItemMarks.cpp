#include "Quorvel/Views/ItemMarks.h"

#include <algorithm>
#include <charconv>
#include <system_error>

#include "Quorvel/Platform/Text.h"
#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel::itemMarks {

namespace {

struct ItemMarksStyle {
    static constexpr double badgeHeight = 0.62; ///< share of the icon's size
    static constexpr double badgeOverhang = 0.3; ///< share of the badge's height
    static constexpr double badgeMaximumWidth = 2.4; ///< of the badge's height
    static constexpr double pillTextSize = 0.76; ///< share of the pill's height
    static constexpr double pillPadding = 0.3; ///< share of the pill's height
    static constexpr double attentionRest = 0.25; ///< strength at the weakest of a pulse
    static constexpr std::size_t countOfMany = 100; ///< where a badge has no number
};

}

double pillWidth(const Text& measure, std::string_view text, double height)
{
    TextStyle style{
        .size = height * ItemMarksStyle::pillTextSize, .weight = FontWeight::semibold, .color = {}};
    return std::max(
        height, measure.measure(text, style).width + 2 * ItemMarksStyle::pillPadding * height);
}

void paintPill(
    Canvas& canvas, const Rect& rect, std::string_view text, const Color& fill, const Color& ink)
{
    canvas.fillRounded(rect, rect.height / 2, fill);
    canvas.drawText(text, rect,
        {.size = rect.height * ItemMarksStyle::pillTextSize,
            .weight = FontWeight::semibold,
            .color = ink,
            .alignment = TextAlignment::centre});
}

Rect badgeRect(const Text& measure, std::string_view badge, const Rect& icon, double width,
    const BarMetrics& metrics)
{
    double height = metrics.iconSize * ItemMarksStyle::badgeHeight;
    double overhang = height * ItemMarksStyle::badgeOverhang;
    double wanted
        = std::min(pillWidth(measure, badge, height), height * ItemMarksStyle::badgeMaximumWidth);
    double x = std::min(icon.maxX() + overhang - wanted, width - wanted);
    return {std::max(0.0, x), icon.y - overhang, wanted, height};
}

std::string badgeText(const std::string& badge)
{
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    if (std::ranges::none_of(badge, isDigit))
        return tr("unread");
    std::size_t count = 0;
    auto* end = badge.data() + badge.size();
    auto [rest, error] = std::from_chars(badge.data(), end, count);
    if (error != std::errc{} || rest != end)
        count = ItemMarksStyle::countOfMany; // as in "99+"
    return trCount("{} unread", "{} unread", count, badge);
}

void paintProgress(Canvas& canvas, const Rect& face, double radius, std::optional<double> progress,
    bool isRightToLeft, const Palette& palette)
{
    if (!progress)
        return;
    auto done = face;
    done.width *= std::clamp(*progress, 0.0, 1.0);
    if (isRightToLeft)
        done.x = face.maxX() - done.width;
    canvas.save();
    canvas.clip(done);
    canvas.fillRounded(face, radius, palette.progress);
    canvas.restore();
}

void paintAttention(
    Canvas& canvas, const Rect& face, double radius, double pulse, const Palette& palette)
{
    double strength = ItemMarksStyle::attentionRest + (1 - ItemMarksStyle::attentionRest) * pulse;
    auto& color = palette.attention;
    canvas.fillRounded(face, radius, color.withAlpha(color.alpha * strength));
}

}
