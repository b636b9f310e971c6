#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Views/Kit/Animation.h"
#include "Quorvel/Views/Kit/ListRows.h"

namespace quorvel {

class OverlayScroller;
struct Palette;

/// Rows below each other, of which only those in sight have views: five thousand cost no more than
/// twenty. At most one is selected. A scroller lies over the trailing edge while the rows move or
/// the pointer is on it. Lengths are points. Main thread.
class ListView : public View {
public:
    using Row = std::size_t;

    /// How far one notch of a wheel goes.
    static constexpr double kNotch = 72;

    /// All it is given outlives it.
    ListView(ListRows&, const Palette&, Dispatch&);
    ~ListView() override;

    /// The rows have changed. Nothing glides any more; the selection keeps its number if that row
    /// can be selected. The offset becomes this one; it stays as far as possible if absent.
    void reload(std::optional<double> offset = {});
    /// The row went to another place among the others, which glide there from where they are seen.
    /// The selection goes with its row.
    void moveRow(Row from, Row to, Duration);
    /// The row is seen here (the top, in the list's coordinates) instead of in its place, above the
    /// others, until it is dropped: then it glides there.
    void lift(Row, double y);
    void dropLifted(Duration);

    std::optional<Row> selectedRow() const { return m_selected; }
    void select(std::optional<Row>);
    /// The next row that can be selected, downwards (1) or upwards (-1).
    std::optional<Row> selectableBeside(std::optional<Row>, int side) const;
    /// The farthest row that can be selected within a page from this one; at least the next one.
    std::optional<Row> selectableAPageFrom(std::optional<Row>, int side) const;

    /// Other rows are in sight, or in another order, or another one is selected.
    std::function<void()> onChanged;

    /// The height of what lies above the part in sight.
    double offset() const { return m_offset; }
    double mostOffset() const;
    void scrollTo(double offset);
    /// As little as possible. Rows right above it that cannot be selected come along.
    void revealRow(Row);
    /// Shows for a moment that there is more, and where.
    void flashScroller();

    /// In the list's coordinates; parts may be out of sight.
    Rect rowFrame(Row) const;
    /// The row that has this place, whatever is seen there.
    std::optional<Row> rowAt(double y) const;
    /// Null while it has no view.
    ListRowView* rowView(Row) const;
    /// Those that have one, from top to bottom.
    std::vector<Row> rowsWithViews() const;

    void setRightToLeft(bool);
    void setReducesMotion(bool);
    void setFrameInterval(Duration);

    /// As a screen reader says it.
    void setName(std::string name) { m_name = std::move(name); }
    std::vector<AccessibleElement*> accessibleChildren() override;
    bool scrolled(const ScrollEvent&) override;

protected:
    bool isAccessible() const override { return true; }
    /// Whoever has the keyboard walks the rows.
    bool takesKeyboard() const override { return false; }
    std::string accessibleID() const override { return "list"; }
    AccessibleState accessibleState() const override;
    bool clipsChildren() const override { return true; }
    void layout() override;

private:
    struct Shown {
        ListRowView* view = nullptr;
        int kind = 0;
    };
    using Shifts = std::map<Row, double>;

    void measure();
    Row rowBelow(double top) const;
    std::vector<Row> rowsInSight() const;
    double shownTop(Row) const;
    void placeRows();
    void placeScroller();
    void show(Row);
    void spare(Row);
    void setOffset(double);
    void wheelTo(double offset);
    void turnWheel();
    void glide(Shifts, Duration);
    void tellChanged();

    ListRows& m_rows;
    std::string m_name;
    Dispatch& m_dispatch;
    OverlayScroller* m_scroller;
    std::vector<double> m_tops{0}; ///< of each row as if not scrolled, and the height of all
    std::map<Row, Shown> m_shown;
    std::map<int, std::vector<ListRowView*>> m_spare; ///< by kind; they have no place
    std::optional<Row> m_selected;
    double m_offset = 0;
    bool m_isRightToLeft = false;
    bool m_reducesMotion = false;
    Duration m_frameInterval = seconds(1.0 / 60);
    double m_wheelTarget = 0;
    bool m_isGestureOurs = false; ///< it began here, and no other scroll has ended it
    Shifts m_shifts; ///< how far below their places rows are seen
    std::optional<Row> m_lifted;
    double m_liftedY = 0;
    Animation m_gliding;
    WorkItem m_wheel;
};

/// Does nothing without a row.
void selectAndReveal(ListView&, std::optional<ListView::Row>);

}
