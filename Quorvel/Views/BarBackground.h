#pragma once

#include <optional>
#include <vector>

#include "Quorvel/Core/BarTheme.h"
#include "Quorvel/Platform/Application.h"
#include "Quorvel/Platform/Surfaces.h"
#include "Quorvel/Views/Kit/View.h"

namespace quorvel {

/// The colour of the bar where the desktop cannot show through, chosen close to how it looks
/// blurred.
inline constexpr Color opaqueBarColor(bool isDark)
{
    return isDark ? Color::grey(37.0 / 255) : Color::grey(0.93);
}

/// The blur and what the theme lays over it; plain colour where the user wants no transparency.
class BarBackground final : public View {
public:
    void setTheme(BarTheme);
    void setAppearance(const Appearance&);
    /// Nothing shows through the panel, so the ground must be painted.
    void setOpaque(bool);
    /// The lines between the parts of the bar.
    void setDividers(std::vector<Rect>);

    /// The blur behind the bar; absent: none, the user wants no transparency.
    static std::optional<VisualEffect> blur(BarTheme, const Appearance&);

private:
    void paint(Canvas&) const override;
    void paintGround(Canvas&) const;

    BarTheme m_theme = BarTheme::frosted;
    Appearance m_appearance;
    bool m_isOpaque = true;
    std::vector<Rect> m_dividers;
};

/// A slight shine, and a line along each edge.
struct LonghornThemeBackground {
    static constexpr double blurOpacity = 0.78;
    static void paint(Canvas&, const Rect&);
};

/// Glass whose upper half is bright.
struct AeroThemeBackground {
    static constexpr double blurOpacity = 0.85;
    static void paint(Canvas&, const Rect&);
};

}
