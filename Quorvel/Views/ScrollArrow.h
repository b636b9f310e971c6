#pragma once

#include "Quorvel/Views/Kit/ButtonView.h"

namespace quorvel {

/// Appears at the end of a row where there is more than is visible.
class ScrollArrow final : public ButtonView {
public:
    enum class Towards { left, right };

    ScrollArrow(const Palette& palette, Towards towards) : ButtonView(palette), m_towards(towards)
    {
    }

    static constexpr double kWidth = 22;

    std::function<void()> onPointerLeft;

    using ButtonView::isHovered;
    void pointerExited() override
    {
        ButtonView::pointerExited();
        if (onPointerLeft)
            onPointerLeft();
    }
    bool isAccessible() const override { return false; }

private:
    void paint(Canvas&) const override;

    Towards m_towards;
};

}
