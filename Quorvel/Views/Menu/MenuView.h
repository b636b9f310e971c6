#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Quorvel/Views/Menu/MenuRow.h"

namespace quorvel {

/// The rows of one menu, one of which may be highlighted. If they do not fit, they scroll, and a
/// strip at the top or the bottom shows that there is more. Positions are points of the view.
class MenuView final : public View {
public:
    using Row = std::size_t;

    /// All it is given outlives it.
    MenuView(const Menu&, MenuKeyTexts, const Text&, const Appearance&);

    void setAppearance(const Appearance&);

    /// An assistive program presses a row.
    std::function<void(Row)> onChosen;

    Size wantedSize() const { return m_layout.size(); }
    const MenuItem& item(Row row) const { return m_menu[row]; }
    const Menu& menu() const { return m_menu; }
    /// The row at the point, if it is visible there and can be chosen.
    std::optional<Row> rowAt(Point) const;
    std::optional<Row> rowBeside(std::optional<Row> row, int step) const
    {
        return m_layout.rowBeside(row, step);
    }
    /// The visible part.
    Rect rowFrame(Row) const;
    std::optional<Row> highlighted() const { return m_highlighted; }
    void highlight(std::optional<Row>);
    /// False if the end is already reached.
    bool scroll(double distance);
    /// Scrolls until the row is visible.
    void revealRow(Row);
    /// Scrolls the row to the middle, or as near as possible.
    void centreRow(Row);
    /// -1 over the strip for more above, 1 over the one for more below, 0 elsewhere.
    int stripAt(Point) const;

    bool isAccessible() const override { return true; }
    std::string accessibleID() const override { return "menu"; }
    AccessibleState accessibleState() const override;

private:
    class Viewport;
    class Strip;

    void layout() override;
    void paint(Canvas&) const override;
    double viewportHeight() const;
    double mostOffset() const;
    bool hasMore(int side) const;
    Rect strip(int side) const;

    const Menu& m_menu;
    const MenuKeyTexts m_keys;
    MenuLook m_look;
    const MenuLayout m_layout;
    Viewport* m_viewport;
    Strip* m_strips[2];
    std::vector<MenuRow*> m_rows;
    std::optional<Row> m_highlighted;
    double m_offset = 0; ///< the height of the rows above the visible part
};

}
