#pragma once

#include <optional>
#include <vector>

#include "Quorvel/Core/BarTheme.h"
#include "Quorvel/Platform/Application.h"
#include "Quorvel/Platform/Surfaces.h"
#include "Quorvel/Views/Kit/Palette.h"
#include "Quorvel/Views/Kit/View.h"

namespace quorvel {

/// The blur and what the theme lays over it; plain colour where the user wants no
/// transparency, or more contrast than it leaves.
class BarBackground final : public View {
public:
    /// The palette outlives it; whoever changes it has all of it painted anew.
    explicit BarBackground(const Palette& palette) : m_palette(palette) { }

    BarTheme theme() const { return m_theme; }
    void setTheme(BarTheme);
    void setAppearance(const Appearance&);
    /// Nothing shows through the panel, so the ground must be painted.
    void setOpaque(bool);
    /// Of a panel that floats: its corners are round, and it has an outline. Points.
    void setCornerRadius(double radius) { m_cornerRadius = radius; }
    /// The lines between the sections of the bar.
    void setDividers(std::vector<Rect>);

    /// What the theme paints where nothing shows through; absent: the plain ground of the palette.
    static std::optional<Palette::Ground> ground(BarTheme, const Appearance&);
    /// The blur behind the bar; absent: none.
    static std::optional<VisualEffect> blur(BarTheme, const Appearance&);

private:
    void paint(Canvas&) const override;
    void paintGround(Canvas&) const;

    const Palette& m_palette;
    BarTheme m_theme = BarTheme::frosted;
    Appearance m_appearance;
    bool m_isOpaque = true;
    double m_cornerRadius = 0;
    std::vector<Rect> m_dividers;
};

/// Slate with a slight shine, and a line along each edge.
struct LonghornThemeBackground {
    static constexpr double blurOpacity = 0.78;
    static Palette::Ground ground(bool isDark);
    static void paint(Canvas&, const Rect&);
};

/// Glass, dark or pale, with a bright upper half.
struct AeroThemeBackground {
    static constexpr double blurOpacity = 0.85;
    static Palette::Ground ground(bool isDark);
    static void paint(Canvas&, const Rect&);
};

}
