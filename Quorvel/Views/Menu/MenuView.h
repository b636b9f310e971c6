#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Quorvel/Views/Menu/MenuRow.h"

namespace quorvel {

/// The rows of one menu, of which one may be highlighted; where they do not fit, they scroll, and a
/// strip at the top or the bottom says that there is more. Places are points of the view.
class MenuView final : public View {
public:
    using Row = std::size_t;

    /// All it is given outlives it.
    MenuView(const Menu&, const Text&, const Appearance&);

    void setAppearance(const Appearance&);

    /// An assistive program presses a row.
    std::function<void(Row)> onChosen;

    Size wantedSize() const { return m_layout.size(); }
    const MenuItem& item(Row row) const { return m_menu[row]; }
    const Menu& menu() const { return m_menu; }
    /// The row at the point, if it can be chosen and is in sight there.
    std::optional<Row> rowAt(Point) const;
    std::optional<Row> rowBeside(std::optional<Row> row, int step) const
    {
        return m_layout.rowBeside(row, step);
    }
    /// As far as it is in sight.
    Rect rowFrame(Row) const;
    std::optional<Row> highlighted() const { return m_highlighted; }
    void highlight(std::optional<Row>);
    /// False where the end is reached already.
    bool scroll(double distance);
    /// Until the row is in sight.
    void revealRow(Row);
    /// Until the row is in the middle, or as near as it gets.
    void centreRow(Row);
    /// -1 over the strip that says there is more above, 1 over that below, 0 elsewhere.
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
    MenuLook m_look;
    const MenuLayout m_layout;
    Viewport* m_viewport;
    Strip* m_strips[2];
    std::vector<MenuRow*> m_rows;
    std::optional<Row> m_highlighted;
    double m_offset = 0; ///< of the rows that lie above what is in sight
};

}
