#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "Quorvel/Views/Kit/MeasuredView.h"

namespace quorvel {

/// The parts of the window that asks for the permissions, below each other. Main thread.
class PermissionsGateBody final : public MeasuredView {
public:
    static constexpr double kInset = 24; ///< around them; points

    template <typename PartType> PartType& addPart(std::unique_ptr<PartType> part)
    {
        auto& added = addChild(std::move(part));
        m_parts.push_back(&added);
        return added;
    }

    double heightFor(double width) const override;
    void appearanceDidChange(bool isRightToLeft) override;

private:
    bool isColumn() const override { return true; }
    void layout() override;

    std::vector<MeasuredView*> m_parts;
};

}
