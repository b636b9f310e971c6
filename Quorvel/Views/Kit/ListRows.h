#pragma once

#include <cstddef>
#include <memory>

#include "Quorvel/Views/Kit/View.h"

namespace quorvel {

/// The view of a row that is in sight. Once the row has left sight, it shows another one.
class ListRowView : public View {
public:
    bool isSelected() const { return m_isSelected; }
    void setSelected(bool);
    /// It follows the pointer, above the others.
    void setLifted(bool);
    bool isLifted() const override { return m_isLifted; }

    /// It is about to show another row, or none: a press on this one no longer counts.
    virtual void rowWillChange() { }

protected:
    virtual void selectionDidChange() { invalidate(); }

private:
    bool m_isSelected = false;
    bool m_isLifted = false;
};

/// What a list shows. Rows are numbered from the top. Main thread.
class ListRows {
public:
    virtual ~ListRows() = default;

    virtual std::size_t rowCount() const = 0;
    /// In points, more than 0.
    virtual double rowHeight(std::size_t row) const = 0;
    virtual bool isSelectable(std::size_t row) const = 0;
    /// Views of one kind can stand in for each other.
    virtual int rowKind(std::size_t row) const = 0;
    virtual std::unique_ptr<ListRowView> makeRowView(int kind) = 0;
    /// The view shows this row from now on, or the row has changed.
    virtual void fillRowView(ListRowView&, std::size_t row) = 0;
};

}
