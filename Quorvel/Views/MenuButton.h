#pragma once

#include "Quorvel/Core/BarSize.h"
#include "Quorvel/Views/Kit/ButtonView.h"

namespace quorvel {

/// The button at the leading end of the bar: it opens the launcher, and its menu is the bar's.
class MenuButton final : public ButtonView {
public:
    MenuButton(const Palette& palette, const BarMetrics& metrics)
        : ButtonView(palette)
        , m_metrics(metrics)
    {
    }

    /// It goes down. True: the press means nothing more.
    std::function<bool()> onPressed;

    /// What it opens is on the screen.
    void setLauncherOpen(bool isOpen);
    void setMenuOpen(bool isOpen);

    void pointerPressed(const PointerPress&) override;
    void released(PointerButton, bool isInside) override;

    std::string accessibleID() const override { return "menu"; }
    AccessibleState accessibleState() const override;
    std::string tooltip() const override { return accessibleState().name; }

private:
    void paint(Canvas&) const override;

    BarMetrics m_metrics;
    bool m_isPressUsed = false;
    bool m_isLauncherOpen = false;
    bool m_isMenuOpen = false;
};

}
