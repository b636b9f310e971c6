#pragma once

#include <optional>
#include <vector>

#include "Quorvel/Platform/Surfaces.h"

namespace quorvel::xdg::x11 {

struct MenuStyle {
    double rowHeight = 26;
    double separatorHeight = 9;
    double padding = 5; ///< around all rows
    double textInset = 12;
    double markWidth = 18; ///< before all titles, if an entry is checked
    double arrowWidth = 18; ///< after all titles, if an entry opens a submenu
    double symbolSize = 12;
    double rowRadius = 5;
    double minimumWidth = 150;
    double maximumWidth = 420;
    double fontSize = 13;
};

/// Where the parts of one row lie.
struct MenuRowParts {
    Rect mark;
    Rect title;
    Rect arrow;
};

/// Where a menu's rows lie, in points from its top left corner; pure.
class MenuLayout {
public:
    MenuLayout(const Menu&, const Text&, const MenuStyle&);

    Size size() const { return m_size; }
    const std::vector<Rect>& rows() const { return m_rows; }
    MenuRowParts partsOf(std::size_t row, bool isRightToLeft) const;
    /// The row under the point, if it can be chosen.
    std::optional<std::size_t> rowAt(Point) const;
    /// The next row in this direction that can be chosen, from the other end after the last.
    std::optional<std::size_t> rowBeside(std::optional<std::size_t> row, int step) const;

private:
    const MenuStyle m_style;
    std::vector<Rect> m_rows;
    std::vector<bool> m_canBeChosen;
    double m_markWidth = 0;
    double m_arrowWidth = 0;
    Size m_size;
};

// All in one unit, y downwards.

/// Where a menu of this size opens beside the anchor: above it or, where there is less room,
/// below, and wholly inside the bounds as far as it fits. One that is higher than the room is cut.
Rect placeMenu(Size, const Rect& anchor, const Rect& bounds, bool isRightToLeft);

/// Where a submenu opens beside the row of its entry, with its first row level with it: on the side
/// where reading goes on or, where it does not fit there, on the other.
Rect placeSubmenu(Size, const Rect& row, double padding, const Rect& bounds, bool isRightToLeft);

/// Whether a pointer that moves so is on its way to the rectangle beside it, maybe across what lies
/// between.
bool headsFor(Point from, Point to, const Rect&);

}
