#include "Quorvel/Views/BarBackground.h"

#include <utility>

#include "Quorvel/Views/VisualEffectBlur.h"

namespace quorvel {

namespace {

struct BarBackgroundStyle {
    static constexpr double edgeOpacity = 0.12;
};

constexpr Color white(double opacity)
{
    return Color::grey(1, opacity);
}
constexpr Color black(double opacity)
{
    return Color::grey(0, opacity);
}

Rect topLine(const Rect& bar)
{
    return {bar.x, bar.y, bar.width, 1};
}
Rect bottomLine(const Rect& bar)
{
    return {bar.x, bar.maxY() - 1, bar.width, 1};
}

}

/// With the shine where letters are, which is in the middle half.
Palette::Ground LonghornThemeBackground::ground(bool isDark)
{
    return {isDark ? Color{0.13, 0.18, 0.26} : Color{0.76, 0.82, 0.91}, {white(0.09), black(0.03)}};
}

void LonghornThemeBackground::paint(Canvas& canvas, const Rect& bar)
{
    canvas.fillGradient(bar, GradientDirection::topToBottom,
        {{0, white(0.12)}, {0.5, white(0.05)}, {1, black(0.08)}});
    canvas.fill(topLine(bar), white(0.18));
    canvas.fill(bottomLine(bar), black(0.12));
}

Palette::Ground AeroThemeBackground::ground(bool isDark)
{
    return {isDark ? Color{0.03, 0.05, 0.07} : Color{0.68, 0.78, 0.80}, {white(0.08)}};
}

void AeroThemeBackground::paint(Canvas& canvas, const Rect& bar)
{
    canvas.fillGradient({bar.x, bar.y, bar.width, bar.height / 2}, GradientDirection::topToBottom,
        {{0, white(0.28)}, {0.5, white(0.08)}, {1, white(0)}});
    canvas.fillGradient(
        topLine(bar), GradientDirection::leadingToTrailing, {{0, white(0.45)}, {1, white(0.2)}});
    canvas.fill(bottomLine(bar), black(0.25));
}

void BarBackground::setTheme(BarTheme theme)
{
    if (std::exchange(m_theme, theme) != theme)
        invalidate();
}

void BarBackground::setAppearance(const Appearance& appearance)
{
    if (std::exchange(m_appearance, appearance) != appearance)
        invalidate();
}

void BarBackground::setOpaque(bool isOpaque)
{
    if (std::exchange(m_isOpaque, isOpaque) != isOpaque)
        invalidate();
}

std::optional<Palette::Ground> BarBackground::ground(BarTheme theme, const Appearance& appearance)
{
    if (appearance.reduceTransparency || appearance.increaseContrast)
        return {};
    switch (theme) {
    case BarTheme::longhorn:
        return LonghornThemeBackground::ground(appearance.isDark);
    case BarTheme::aero:
        return AeroThemeBackground::ground(appearance.isDark);
    case BarTheme::frosted:
        break;
    }
    return {};
}

std::optional<VisualEffect> BarBackground::blur(BarTheme theme, const Appearance& appearance)
{
    if (appearance.reduceTransparency || appearance.increaseContrast)
        return {};
    switch (theme) {
    case BarTheme::longhorn:
        return VisualEffectBlur{}.effect(LonghornThemeBackground::blurOpacity);
    case BarTheme::aero:
        return VisualEffectBlur{}.effect(AeroThemeBackground::blurOpacity);
    case BarTheme::frosted:
        break;
    }
    return VisualEffectBlur{}.effect();
}

void BarBackground::setDividers(std::vector<Rect> dividers)
{
    if (m_dividers == dividers)
        return;
    m_dividers = std::move(dividers);
    invalidate();
}

void BarBackground::paint(Canvas& canvas) const
{
    if (m_cornerRadius > 0) {
        canvas.save();
        canvas.clipRounded(bounds(), m_cornerRadius);
    }
    paintGround(canvas);
    for (auto& divider : m_dividers)
        canvas.fill(divider, m_palette.line);
    if (m_cornerRadius > 0) {
        canvas.restore();
        canvas.strokeRounded(bounds(), m_cornerRadius, 1, m_palette.popupEdge);
    }
}

void BarBackground::paintGround(Canvas& canvas) const
{
    if (m_appearance.reduceTransparency) {
        canvas.fill(bounds(), m_appearance.isDark ? m_palette.ground : white(0.92));
        return;
    }
    if (m_isOpaque || m_appearance.increaseContrast)
        canvas.fill(bounds(), m_palette.ground);
    if (m_appearance.increaseContrast)
        return canvas.fill(topLine(bounds()), m_palette.edge);
    if (m_theme == BarTheme::longhorn)
        LonghornThemeBackground::paint(canvas, bounds());
    else if (m_theme == BarTheme::aero)
        AeroThemeBackground::paint(canvas, bounds());
    else if (m_isOpaque)
        canvas.fill(topLine(bounds()),
            Color::grey(m_appearance.isDark ? 1 : 0, BarBackgroundStyle::edgeOpacity));
}

}
