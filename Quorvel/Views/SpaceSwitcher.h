#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Quorvel/Core/BarSize.h"
#include "Quorvel/Platform/Identifiers.h"
#include "Quorvel/Views/Kit/ButtonView.h"

namespace quorvel {

/// What the switcher shows for one space.
struct SpaceCellData {
    SpaceID id{};
    std::string label; ///< short: it must fit into the cell
    std::string name;
    int windowCount = 0;
    bool isCurrent = false;
    bool isFullscreen = false; ///< holds the one window that made it, and accepts no other
    bool wantsAttention = false;

    friend bool operator==(const SpaceCellData&, const SpaceCellData&) = default;
};

class SpaceCell;

/// One cell for each space of the display, and a button that lists them by name. With one space
/// there is nothing to switch, and the view has no width; if there is no room for all cells, only
/// the current one is shown.
class SpaceSwitcher final : public View {
public:
    SpaceSwitcher(const Palette&, const BarMetrics&);
    ~SpaceSwitcher() override;

    void setSpaces(const std::vector<SpaceCellData>&);
    void setRightToLeft(bool);
    /// The list of the spaces is on the screen.
    void setListOpen(bool isOpen) { m_listButton->setOpen(isOpen); }
    /// The width limit.
    double wantedWidth(double available) const;
    /// A window is being dragged over this cell; absent: over none.
    void setDropTarget(std::optional<SpaceID>);
    /// The space whose cell is at this point of the root; null if none is.
    const SpaceCellData* spaceAt(Point inRoot) const;

    std::function<void(SpaceID)> onSpaceSwitchRequested;
    std::function<void()> onListRequested;

    const std::vector<SpaceCellData>& spaces() const { return m_spaces; }
    std::vector<std::pair<SpaceID, Rect>> cellFrames() const;
    Rect listButtonFrame() const;

private:
    void layout() override;
    double cellWidth() const;
    double listButtonWidth() const;
    bool showsAll(double width) const;

    const Palette& m_palette;
    BarMetrics m_metrics;
    bool m_isRightToLeft = false;
    std::vector<SpaceCellData> m_spaces;
    std::vector<SpaceCell*> m_cells;
    ButtonView* m_listButton;
};

}
