#pragma once

#include "Quorvel/Views/SpaceSwitcher.h"

namespace quorvel {

/// The cell of one space.
class SpaceCell final : public ButtonView {
public:
    SpaceCell(const Palette& palette, const BarMetrics& metrics)
        : ButtonView(palette)
        , m_metrics(metrics)
    {
    }

    const SpaceCellData& data() const { return m_data; }
    void setData(const SpaceCellData&);
    void setDropTarget(bool isTarget) { set(m_isDropTarget, isTarget); }

    std::string accessibleID() const override { return "space-" + std::to_string(raw(m_data.id)); }
    AccessibleState accessibleState() const override;
    /// The cell shows only a number.
    std::string tooltip() const override { return m_data.name; }

private:
    void paint(Canvas&) const override;

    BarMetrics m_metrics;
    SpaceCellData m_data;
    bool m_isDropTarget = false;
};

}
