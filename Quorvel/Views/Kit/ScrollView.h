#pragma once

#include <memory>

#include "Quorvel/Views/Kit/MeasuredView.h"
#include "Quorvel/Views/Kit/OverlayScroller.h"

namespace quorvel {

/// Shows as much of its content as there is room for, and scrolls to the rest. Main thread.
class ScrollView final : public View {
public:
    /// Palette and dispatch outlive it.
    ScrollView(std::unique_ptr<MeasuredView> content, const Palette&, Dispatch&);

    /// What the content needs; points.
    double heightFor(double width) const { return m_content->heightFor(width); }
    /// In points, downwards; as far as there is something.
    void scrollBy(double distance);
    /// Shows for a moment how much there is, if that is more than fits.
    void flashScroller() { m_scroller->flash(); }
    void setReducesMotion(bool value) { m_scroller->setReducesMotion(value); }
    void appearanceDidChange(bool isRightToLeft);

    bool scrolled(const ScrollEvent&) override;

protected:
    bool clipsChildren() const override { return true; }
    void layout() override;
    void reveal(const View&) override;

private:
    double mostOffset() const;
    void place();

    MeasuredView* m_content;
    OverlayScroller* m_scroller;
    double m_offset = 0;
    bool m_isRightToLeft = false;
};

}
