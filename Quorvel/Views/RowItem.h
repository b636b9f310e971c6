#pragma once

#include <functional>
#include <string>

#include "Quorvel/Core/BarSize.h"
#include "Quorvel/Views/Kit/ButtonView.h"
#include "Quorvel/Views/Kit/DragSource.h"

namespace quorvel {

/// What chips and pins have in common: they are clicked, dragged along the row, lifted meanwhile,
/// and files may rest on them. The face is as high as the metrics say; the view reaches from the
/// top to the bottom of the bar, so that a click at the very edge of the screen meets it.
class RowItem : public ButtonView {
public:
    enum class Lift {
        none,
        inHand, ///< it follows the pointer along the bar, above the others
        overTarget, ///< it is small, so that what it is over can be seen around it
    };

    DragSource drag;
    /// Files from another program rest on the item, or no longer do.
    std::function<void(bool areOver)> onFilesOver;

    /// Of its application; empty if it has none.
    virtual std::string bundleID() const = 0;
    virtual bool asksForAttention() const = 0;
    /// How strongly a request for attention shows now, from 0 to 1.
    virtual void setPulse(double strength) = 0;

    void setLift(Lift);
    /// The key that uses it during the keyboard walk; 0: none, and none is shown.
    void setNumber(int number) { set(m_number, number); }
    void setRightToLeft(bool isRightToLeft) { set(m_isRightToLeft, isRightToLeft); }
    DragSource* dragSource() override { return &drag; }

    bool takesFiles() const override { return true; }
    bool hasFilesOver() const { return m_hasFilesOver; }
    void filesEntered() override { setFilesOver(true); }
    void filesExited() override { setFilesOver(false); }

protected:
    /// The metrics are the row's, which outlives it.
    RowItem(const Palette& palette, const BarMetrics& metrics)
        : ButtonView(palette)
        , m_metrics(metrics)
    {
    }

    const BarMetrics& metrics() const { return m_metrics; }
    bool isRightToLeft() const { return m_isRightToLeft; }
    bool isOverTarget() const { return m_lift == Lift::overTarget; }
    Rect face() const { return bounds().centred({bounds().width, m_metrics.chipHeight}); }
    virtual void paintItem(Canvas&) const = 0;
    /// The ring while files are over it or the keyboard is on it.
    void paintRing(Canvas&) const;

private:
    void setFilesOver(bool areOver);
    bool isLifted() const override { return m_lift != Lift::none; }
    /// Lifted, it throws a shadow around its frame.
    Rect paintFrame() const override;
    void paint(Canvas&) const final;
    void paintLifted(Canvas&) const;
    void paintNumber(Canvas&) const;

    const BarMetrics& m_metrics;
    Lift m_lift = Lift::none;
    bool m_hasFilesOver = false;
    bool m_isRightToLeft = false;
    int m_number = 0;
};

}
