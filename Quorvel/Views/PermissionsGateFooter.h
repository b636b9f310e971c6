#pragma once

#include "Quorvel/Views/Kit/MeasuredView.h"

namespace quorvel {

class LabelView;
class PushButton;
class Text;
struct Palette;

/// What is still to be done, and the two ways out of the window.
class PermissionsGateFooter final : public MeasuredView {
public:
    /// Both outlive it.
    PermissionsGateFooter(const Text&, const Palette&);

    /// Whether there is nothing left to be done.
    void setComplete(bool);

    PushButton& quitButton() { return *m_quit; }
    PushButton& continueButton() { return *m_continue; }

    double heightFor(double width) const override;
    void appearanceDidChange(bool isRightToLeft) override;

private:
    /// None is below another, so they are read in the order in which they were made.
    bool isColumn() const override { return true; }
    void layout() override;
    double textRoom(double width) const;

    LabelView* m_status;
    PushButton* m_quit;
    PushButton* m_continue;
    bool m_isRightToLeft = false;
};

}
