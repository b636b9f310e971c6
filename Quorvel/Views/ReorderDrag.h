#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Quorvel/Platform/Geometry.h"

namespace quorvel {

/// An item of a row that follows the pointer, and where it would land among the others. The others
/// make room: each has a slot in the preview order. The row runs from left to right here; a
/// mirrored row mirrors its input and output. Values only; the row draws and animates.
class ReorderDrag {
public:
    using Frames = std::map<std::string, Rect>;

    /// The visible items in row order, including the dragged one, with a frame each.
    ReorderDrag(std::string draggedID, Frames startFrames, std::vector<std::string> visibleIDs);

    void setTranslation(Point);

    const std::string& draggedID() const { return m_draggedID; }
    Point translation() const { return m_translation; }
    /// Among the others: 0 is before all of them.
    int insertionIndex() const { return m_insertionIndex; }
    /// Whether a drop here changes the order.
    bool isElsewhere() const { return previewOrder() != m_visibleIDs; }
    /// The visible items in their order after a drop.
    std::vector<std::string> previewOrder() const;
    /// The left edge of the dragged item, which follows the pointer.
    double draggedX() const { return m_startX + m_translation.x; }
    /// The left edges of the others' slots in the preview order.
    std::map<std::string, double> slotsOfOthers() const;
    /// The item that a drop here puts the dragged one in front of: the next one that still exists,
    /// since some may have gone meanwhile. Absent: at the end.
    std::optional<std::string> dropTargetID(
        const std::function<bool(const std::string& id)>& isThere) const;

    /// A neighbour gives way once the moved frame covers its middle.
    static int insertionIndex(double translationX, const std::string& draggedID,
        const Frames& startFrames, const std::vector<std::string>& visibleIDs);

private:
    std::string m_draggedID;
    Frames m_startFrames;
    std::vector<std::string> m_visibleIDs;
    std::vector<double> m_slots; ///< left edges, in row order
    double m_startX = 0;
    Point m_translation;
    int m_insertionIndex = 0;
};

/// The pin that follows the last visible one in the full list, so that a pin dropped after the
/// visible ones stays ahead of those that are not on this bar. Absent if there is none.
std::optional<std::string> nextPinnedAppIDAfterVisibleEnd(const std::string& draggedID,
    const std::vector<std::string>& visibleIDs, std::vector<std::string> fullList);

}
