#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Quorvel/Core/BarSize.h"
#include "Quorvel/Platform/Canvas.h"

namespace quorvel {

class Text;
struct Palette;

/// What chips and pins show of their application beside its icon. All lengths are points; places
/// are in the view's coordinates, as if it ran from left to right.
namespace itemMarks {

/// A pill as high as this for a text; at least a circle.
double pillWidth(const Text&, std::string_view text, double height);
void paintPill(Canvas&, const Rect&, std::string_view text, const Color& fill, const Color& ink);

/// On the icon's upper trailing corner, never past an item of this width: beyond it lies the next.
Rect badgeRect(
    const Text&, std::string_view badge, const Rect& icon, double width, const BarMetrics&);
/// As it is read out. What is no number says that there is something, not how much.
std::string badgeText(const std::string& badge);

/// From the leading end of the face.
void paintProgress(Canvas&, const Rect& face, double radius, std::optional<double> progress,
    bool isRightToLeft, const Palette&);
/// The strength of a pulse is from 0 to 1.
void paintAttention(Canvas&, const Rect& face, double radius, double pulse, const Palette&);

}

}
