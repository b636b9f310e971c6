#pragma once

#include "Quorvel/Views/Kit/ButtonView.h"

namespace quorvel {

/// Appears at the end of a row where there is more than is visible, and tells if something of that
/// wants attention.
class ScrollArrow final : public ButtonView {
public:
    enum class Towards { left, right };

    ScrollArrow(const Palette& palette, Towards towards) : ButtonView(palette), m_towards(towards)
    {
    }

    static constexpr double kWidth = 22;

    std::function<void()> onPointerLeft;

    /// True if that is news.
    bool setTellsAttention(bool tellsAttention);

    using ButtonView::isHovered;
    void pointerExited() override
    {
        ButtonView::pointerExited();
        if (onPointerLeft)
            onPointerLeft();
    }
    /// Whoever does not see has no ends of a row, and walks to what is beyond them.
    bool isAccessible() const override { return m_tellsAttention; }
    bool takesKeyboard() const override { return false; }
    bool takeAccessibleFocus() override { return false; }
    std::string accessibleID() const override;
    AccessibleState accessibleState() const override;
    std::string tooltip() const override;

private:
    void paint(Canvas&) const override;

    Towards m_towards;
    bool m_tellsAttention = false;
};

}
