#pragma once

#include <optional>
#include <string>

namespace quorvel::xdg {

/// What the desktop's settings daemon says about the look of programs; each is absent or empty
/// where it says nothing.
struct DesktopLooks {
    std::optional<bool> isDark;
    std::optional<bool> isHighContrast;
    std::string iconTheme; ///< its folder's name
    std::string font; ///< as Pango reads it: "Cantarell 11"
    std::optional<double> scale; ///< pixels per point, as given: any positive number

    friend bool operator==(const DesktopLooks&, const DesktopLooks&) = default;
};

}
