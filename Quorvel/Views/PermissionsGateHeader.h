#pragma once

#include "Quorvel/Views/Kit/MeasuredView.h"

namespace quorvel {

class LabelView;
class Text;
struct Palette;

/// What the window is about.
class PermissionsGateHeader final : public MeasuredView {
public:
    /// Both outlive it.
    PermissionsGateHeader(const Text&, const Palette&);

    double heightFor(double width) const override;
    void appearanceDidChange(bool isRightToLeft) override;

private:
    bool isColumn() const override { return true; }
    void layout() override;
    void paint(Canvas&) const override;

    const Palette& m_palette;
    LabelView* m_title;
    LabelView* m_subtitle;
    Rect m_tile;
    bool m_isRightToLeft = false;
};

}
