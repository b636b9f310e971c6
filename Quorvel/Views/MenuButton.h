#pragma once

#include <functional>
#include <utility>

#include "Quorvel/Core/BarSize.h"
#include "Quorvel/Views/Kit/View.h"

namespace quorvel {

/// The button at the leading end of the bar.
class MenuButton final : public View {
public:
    explicit MenuButton(const BarMetrics& metrics) : m_metrics(metrics) { }

    void setDark(bool);

    std::function<void()> onTapped;

    bool takesPointer() const override { return true; }
    void pointerEntered() override { set(m_isHovered, true); }
    void pointerExited() override { set(m_isHovered, false); }
    void pressed(PointerButton button) override
    {
        set(m_isPressed, button == PointerButton::primary);
    }
    void pressCancelled() override { set(m_isPressed, false); }
    void released(PointerButton, bool isInside) override;

private:
    void paint(Canvas&) const override;
    void set(bool& flag, bool value)
    {
        if (std::exchange(flag, value) != value)
            invalidate();
    }

    BarMetrics m_metrics;
    bool m_isDark = true;
    bool m_isHovered = false;
    bool m_isPressed = false;
};

}
