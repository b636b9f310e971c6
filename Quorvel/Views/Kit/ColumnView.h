#pragma once

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "Quorvel/Views/Kit/MeasuredView.h"

namespace quorvel {

/// Views below each other, each as wide as there is room. Main thread.
class ColumnView : public MeasuredView {
public:
    /// Around them and between them; points.
    struct Spacing {
        double sides = 0;
        double top = 0;
        double bottom = 0;
        double gap = 0;
    };
    explicit ColumnView(const Spacing& spacing) : m_spacing(spacing) { }

    /// Another gap above it than the usual one, if the column says so.
    template <typename PartType>
    PartType& addPart(std::unique_ptr<PartType> part, std::optional<double> gap = {})
    {
        auto& added = addChild(std::move(part));
        m_parts.push_back({&added, m_parts.empty() ? 0 : gap.value_or(m_spacing.gap)});
        return added;
    }

    double heightFor(double width) const override;
    void appearanceDidChange(bool isRightToLeft) override;

protected:
    struct Part {
        MeasuredView* view;
        double gap; ///< above it
    };
    const std::vector<Part>& parts() const { return m_parts; }

private:
    bool isColumn() const override { return true; }
    void layout() override;
    double widthOfParts(double width) const;

    const Spacing m_spacing;
    std::vector<Part> m_parts;
};

}
