#include "Quorvel/Views/Kit/Palette.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace quorvel {

namespace {

constexpr double kLeastContrast = 4.5;
constexpr double kIncreasedContrast = 7;
/// On a vivid fill people expect white text, even where black would stand out more.
constexpr double kEnoughForWhite = 2.8;
constexpr double kStep = 0.02;

constexpr Color kWhite = Color::grey(1);
constexpr Color kBlack = Color::grey(0);
constexpr Color kAccent{0.16, 0.42, 0.84};
constexpr Color kAccentOnDark{0.30, 0.60, 1.0};
constexpr Color kAttention{1.0, 0.58, 0.08};
constexpr Color kGranted{0.18, 0.66, 0.32};
constexpr Color kBadge{0.88, 0.19, 0.18};

using Grounds = std::vector<Color>;

Color mixed(const Color& color, const Color& other, double share)
{
    return over(other.withAlpha(share), color);
}

bool isReadable(const Color& ink, const Grounds& grounds, double least)
{
    return std::ranges::all_of(
        grounds, [&](auto& ground) { return contrast(ink, ground) >= least; });
}

/// The colour, moved towards the end of the scale as little as it takes to stand out.
Color inkLike(const Color& color, const Color& end, const Grounds& grounds, double least)
{
    for (double share = 0; share < 1; share += kStep) {
        auto ink = mixed(color, end, share);
        if (isReadable(ink, grounds, least))
            return ink;
    }
    return end;
}

/// The colour at this opacity, moved towards the ground's end of the scale until the ink above it
/// is readable: a thinner wash would be seen less.
Color washOf(const Color& color, double opacity, const Color& end, const Color& ink,
    const Grounds& grounds, double least)
{
    for (double share = 0; share < 1; share += kStep) {
        auto wash = mixed(color, end, share).withAlpha(opacity);
        if (std::ranges::all_of(
                grounds, [&](auto& ground) { return contrast(ink, over(wash, ground)) >= least; }))
            return wash;
    }
    return end.withAlpha(opacity);
}

Grounds laidOver(const Grounds& grounds, const std::vector<Color>& fills)
{
    Grounds all;
    for (auto& ground : grounds) {
        for (auto& fill : fills)
            all.push_back(over(fill, ground));
    }
    return all;
}

Palette darkPalette(bool isStrong)
{
    Palette palette;
    palette.ground = Color::grey(37.0 / 255);
    palette.text = Color::grey(isStrong ? 1 : 0.93);
    palette.quietText = Color::grey(isStrong ? 0.92 : 0.72);
    palette.line = Color::grey(1, isStrong ? 0.7 : 0.3);
    palette.edge = Color::grey(1, isStrong ? 0.6 : 0.1);
    palette.fill = Color::grey(1, 0.055);
    palette.hoveredFill = Color::grey(1, 0.115);
    palette.pressedFill = Color::grey(1, 0.075);
    palette.focusedFill = Color::grey(1, 0.14);
    palette.focusedHoveredFill = Color::grey(1, 0.18);
    palette.buttonHoveredFill = Color::grey(1, 0.1);
    palette.buttonPressedFill = Color::grey(1, 0.16);
    palette.countFill = Color::grey(0.31);
    palette.shadow = Color::grey(0, 0.12);
    palette.popupGround = Color::grey(0.16);
    palette.popupEdge = Color::grey(1, isStrong ? 0.6 : 0.16);
    palette.cardFill = Color::grey(1, 0.08);
    palette.menuGround = Color::grey(0.15);
    palette.menuEdge = Color::grey(isStrong ? 0.7 : 0.32);
    palette.menuSeparator = Color::grey(isStrong ? 0.7 : 0.28);
    palette.disabledText = Color::grey(isStrong ? 0.72 : 0.56);
    palette.windowGround = Color::grey(0.14);
    palette.windowCard = Color::grey(0.18);
    palette.windowEdge = Color::grey(1, isStrong ? 0.6 : 0.09);
    palette.controlFill = Color::grey(1, 0.1);
    palette.controlHoveredFill = Color::grey(1, 0.16);
    palette.controlPressedFill = Color::grey(1, 0.07);
    palette.controlEdge = Color::grey(1, isStrong ? 0.7 : 0.1);
    return palette;
}

Palette lightPalette(bool isStrong)
{
    Palette palette;
    palette.ground = Color::grey(0.92);
    palette.text = Color::grey(isStrong ? 0 : 0.1);
    palette.quietText = Color::grey(isStrong ? 0.15 : 0.34);
    palette.line = Color::grey(0, isStrong ? 0.7 : 0.3);
    palette.edge = Color::grey(0, isStrong ? 0.6 : 0.1);
    palette.fill = Color::grey(0, 0.045);
    palette.hoveredFill = Color::grey(0, 0.08);
    palette.pressedFill = Color::grey(0, 0.1);
    palette.focusedFill = Color::grey(1, 0.95);
    palette.focusedHoveredFill = Color::grey(1, 1);
    palette.buttonHoveredFill = Color::grey(0, 0.08);
    palette.buttonPressedFill = Color::grey(0, 0.13);
    palette.countFill = Color::grey(0.8);
    palette.shadow = Color::grey(0, 0.055);
    palette.popupGround = Color::grey(0.975);
    palette.popupEdge = Color::grey(0, isStrong ? 0.6 : 0.18);
    palette.cardFill = Color::grey(0, 0.05);
    palette.menuGround = Color::grey(0.98);
    palette.menuEdge = Color::grey(isStrong ? 0.3 : 0.72);
    palette.menuSeparator = Color::grey(isStrong ? 0.3 : 0.85);
    palette.disabledText = Color::grey(isStrong ? 0.32 : 0.44);
    palette.windowGround = Color::grey(0.965);
    palette.windowCard = Color::grey(1);
    palette.windowEdge = Color::grey(0, isStrong ? 0.6 : 0.1);
    palette.controlFill = Color::grey(0, 0.05);
    palette.controlHoveredFill = Color::grey(0, 0.09);
    palette.controlPressedFill = Color::grey(0, 0.15);
    palette.controlEdge = Color::grey(0, isStrong ? 0.7 : 0.12);
    return palette;
}

/// A fill of this colour with text on it, black or white.
void setHighlight(Palette& palette, const Color& color)
{
    bool isWhite = contrast(kWhite, color) >= kEnoughForWhite;
    palette.highlightedText = isWhite ? kWhite : kBlack;
    palette.highlight = inkLike(
        color, isWhite ? kBlack : kWhite, {palette.highlightedText}, palette.leastContrast);
    auto end = isWhite ? kBlack : kWhite; // away from the text
    palette.highlightHovered = mixed(palette.highlight, end, 0.1);
    palette.highlightPressed = mixed(palette.highlight, end, 0.22);
}

/// Text of this colour on a wash of it, on a card.
void setMark(Color& ink, Color& fill, const Color& color, const Palette& palette, bool isDark)
{
    fill = color.withAlpha(isDark ? 0.18 : 0.14);
    ink = inkLike(color, isDark ? kWhite : kBlack, laidOver({palette.windowCard}, {fill}),
        palette.leastContrast);
}

void setBadge(Palette& palette)
{
    palette.badgeText = kWhite;
    palette.badge = inkLike(kBadge, kBlack, {kWhite}, palette.leastContrast);
    palette.badgePressed = mixed(palette.badge, kBlack, 0.2);
}

}

Palette Palette::of(const Appearance& appearance, const std::optional<Ground>& ground)
{
    bool isDark = appearance.isDark;
    auto palette = isDark ? darkPalette(appearance.increaseContrast)
                          : lightPalette(appearance.increaseContrast);
    palette.hasEdges = appearance.increaseContrast;
    palette.leastContrast = appearance.increaseContrast ? kIncreasedContrast : kLeastContrast;
    if (ground)
        palette.ground = ground->color;
    auto end = isDark ? kWhite : kBlack;
    auto groundEnd = isDark ? kBlack : kWhite;
    auto least = palette.leastContrast;
    auto accent = appearance.accent.value_or(isDark ? kAccentOnDark : kAccent);

    Grounds chipFills{palette.fill, palette.hoveredFill, palette.pressedFill, palette.focusedFill,
        palette.focusedHoveredFill};
    auto chips = laidOver({palette.ground}, chipFills);
    auto buttons = laidOver(
        {palette.ground}, {Color{}.withAlpha(0), palette.buttonHoveredFill, palette.focusedFill});
    auto shine = ground ? ground->shine : Grounds{};
    shine.push_back(Color{}.withAlpha(0));
    auto bare = laidOver({palette.ground}, shine);
    auto titled = laidOver(bare, chipFills);
    palette.text = inkLike(palette.text, end, titled, least);
    palette.progress = washOf(accent, isDark ? 0.32 : 0.22, groundEnd, palette.text, titled, least);
    auto quiet = titled;
    quiet.insert(quiet.end(), bare.begin(), bare.end());
    palette.quietText = inkLike(palette.quietText, end, quiet, least);
    palette.accentFill = accent.withAlpha(isDark ? 0.16 : 0.1);
    auto windows = laidOver(
        {palette.windowGround, palette.windowCard}, {Color{}.withAlpha(0), palette.accentFill});
    auto marked = chips;
    marked.insert(marked.end(), buttons.begin(), buttons.end());
    marked.insert(marked.end(), windows.begin(), windows.end());
    palette.accent = inkLike(accent, end, marked, least);
    palette.attentionMark = inkLike(kAttention, end, marked, least);

    // What asks for attention has no focus, but perhaps a progress.
    auto asking = laidOver(bare, {palette.fill, palette.hoveredFill});
    for (auto& color : laidOver(asking, {palette.progress}))
        asking.push_back(color);
    auto cards
        = laidOver({palette.popupGround}, {palette.buttonHoveredFill, palette.buttonPressedFill});
    asking.insert(asking.end(), cards.begin(), cards.end());
    palette.attention
        = washOf(kAttention, isDark ? 0.55 : 0.6, groundEnd, palette.text, asking, least);

    setHighlight(palette, appearance.accent.value_or(kAccent));
    setBadge(palette);
    setMark(palette.granted, palette.grantedFill, kGranted, palette, isDark);
    setMark(palette.wanting, palette.wantingFill, kAttention, palette, isDark);
    return palette;
}

Color over(const Color& color, const Color& ground)
{
    auto mix
        = [&](double top, double below) { return top * color.alpha + below * (1 - color.alpha); };
    return {
        mix(color.red, ground.red), mix(color.green, ground.green), mix(color.blue, ground.blue)};
}

/// By the formulas of WCAG 2.1, "relative luminance" and "contrast ratio".
double contrast(const Color& first, const Color& second)
{
    auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    auto luminance = [&](const Color& color) {
        return 0.2126 * linear(color.red) + 0.7152 * linear(color.green)
            + 0.0722 * linear(color.blue);
    };
    auto [low, high] = std::minmax({luminance(first), luminance(second)});
    return (high + 0.05) / (low + 0.05);
}

}
