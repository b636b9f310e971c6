#pragma once

#include "Quorvel/Core/BarSize.h"
#include "Quorvel/Views/Kit/ButtonView.h"

namespace quorvel {

/// The button at the leading end of the bar.
class MenuButton final : public ButtonView {
public:
    explicit MenuButton(const BarMetrics& metrics) : m_metrics(metrics) { }

    std::string accessibleID() const override { return "menu"; }
    AccessibleState accessibleState() const override { return menuButtonState("Menu"); }

private:
    void paint(Canvas&) const override;

    BarMetrics m_metrics;
};

}
