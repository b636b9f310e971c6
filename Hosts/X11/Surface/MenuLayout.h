#pragma once

#include <optional>
#include <vector>

#include "Quorvel/Platform/Surfaces.h"

namespace quorvel::x11 {

struct MenuStyle {
    double rowHeight = 26;
    double separatorHeight = 9;
    double padding = 5; ///< around all rows
    double textInset = 12;
    double rowRadius = 5;
    double minimumWidth = 150;
    double maximumWidth = 420;
    double fontSize = 13;
};

/// Where a menu's rows lie, in points from its top left corner; pure.
class MenuLayout {
public:
    MenuLayout(const Menu&, const Text&, const MenuStyle&);

    Size size() const { return m_size; }
    const std::vector<Rect>& rows() const { return m_rows; }
    /// The row under the point, if it can be chosen.
    std::optional<std::size_t> rowAt(Point) const;
    /// The next row in this direction that can be chosen, from the other end after the last.
    std::optional<std::size_t> rowBeside(std::optional<std::size_t> row, int step) const;

private:
    std::vector<Rect> m_rows;
    std::vector<bool> m_canBeChosen;
    Size m_size;
};

/// Where a menu of this size opens beside the anchor: above it or, where there is less room,
/// below, and wholly inside the bounds as far as it fits. All in one unit, y downwards.
Rect placeMenu(Size, const Rect& anchor, const Rect& bounds, bool isRightToLeft);

}
