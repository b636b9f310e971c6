#include "Quorvel/Views/Kit/ListRows.h"

#include <utility>

namespace quorvel {

void ListRowView::setSelected(bool isSelected)
{
    if (std::exchange(m_isSelected, isSelected) != isSelected)
        selectionDidChange();
}

void ListRowView::setLifted(bool isLifted)
{
    if (m_isLifted == isLifted)
        return;
    invalidate();
    m_isLifted = isLifted;
    invalidate();
}

}
