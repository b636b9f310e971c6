#pragma once

#include "Quorvel/Core/BarSize.h"
#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Views/Kit/ButtonView.h"

namespace quorvel {

/// The button at the trailing end of the bar, which moves all windows out of the way and back.
class ShowDesktopButton final : public ButtonView {
public:
    ShowDesktopButton(const Palette& palette, const BarMetrics& metrics)
        : ButtonView(palette)
        , m_metrics(metrics)
    {
    }

    std::string accessibleID() const override { return "show-desktop"; }
    AccessibleState accessibleState() const override
    {
        return buttonState(tr("Show Desktop"), tr("Show Desktop"));
    }
    std::string tooltip() const override { return accessibleState().name; }

private:
    void paint(Canvas&) const override;

    BarMetrics m_metrics;
};

}
