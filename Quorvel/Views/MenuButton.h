#pragma once

#include "Quorvel/Core/BarSize.h"
#include "Quorvel/Views/Kit/ButtonView.h"

namespace quorvel {

/// The button at the leading end of the bar.
class MenuButton final : public ButtonView {
public:
    MenuButton(const Palette& palette, const BarMetrics& metrics)
        : ButtonView(palette)
        , m_metrics(metrics)
    {
    }

    std::string accessibleID() const override { return "menu"; }
    AccessibleState accessibleState() const override { return menuButtonState("Menu"); }

private:
    void paint(Canvas&) const override;

    BarMetrics m_metrics;
};

}
