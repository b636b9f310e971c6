#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Quorvel/Platform/Menu.h"

namespace quorvel {

class Text;

/// The measures of a menu, in points.
struct MenuMetrics {
    static constexpr double rowHeight = 26;
    static constexpr double separatorHeight = 9;
    static constexpr double padding = 5; ///< around all rows
    static constexpr double textInset = 12;
    static constexpr double markWidth = 20; ///< before all titles, if any entry can have a mark
    static constexpr double arrowWidth = 20; ///< after all titles, if any entry opens a submenu
    static constexpr double keysGap = 28; ///< at least, between a title and its keys
    static constexpr double symbolSize = 12;
    static constexpr double rowRadius = 7; ///< concentric with the corners of the menu
    static constexpr double radius = 12; ///< as of popups and launchers
    static constexpr double minimumWidth = 150;
    static constexpr double maximumWidth = 540; ///< in every language the longest text of ours fits
    static constexpr double fontSize = 13;
    static constexpr double stripHeight = 18; ///< over the first or last row, where there is more
};

/// The positions of the parts of one row.
struct MenuRowParts {
    Rect mark;
    Rect title;
    Rect keys; ///< in the same column in all rows; empty where no entry has any
    Rect arrow;
};

/// What is written beside the titles, for each row; empty: nothing.
using MenuKeyTexts = std::vector<std::string>;

/// The positions of a menu's rows, in points from its top left corner; pure.
class MenuLayout {
public:
    MenuLayout(const Menu&, const MenuKeyTexts&, const Text&);

    Size size() const { return m_size; }
    const std::vector<Rect>& rows() const { return m_rows; }
    /// For a row with this frame, which may be narrower than intended.
    MenuRowParts partsOf(const Rect& row, bool isRightToLeft) const;
    /// The row at this height, if it can be chosen.
    std::optional<std::size_t> rowAt(double y) const;
    /// The next row in this direction that can be chosen, wrapping around at the ends.
    std::optional<std::size_t> rowBeside(std::optional<std::size_t> row, int step) const;

private:
    std::vector<Rect> m_rows;
    std::vector<bool> m_canBeChosen;
    double m_markWidth = 0;
    double m_arrowWidth = 0;
    double m_keysWidth = 0;
    Size m_size;
};

/// The row that is highlighted first: the current one in a list of choices, else none.
std::optional<std::size_t> currentChoice(const Menu&);

}
