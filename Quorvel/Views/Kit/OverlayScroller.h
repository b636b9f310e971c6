#pragma once

#include <functional>

#include "Quorvel/Views/Kit/Animation.h"
#include "Quorvel/Views/Kit/View.h"

namespace quorvel {

struct Palette;

/// A thin bar over the edge of what scrolls up and down. It shows for a moment after each scroll
/// and while the pointer is on it, and can be dragged then; a press beside it goes a page further.
/// While it is hidden the pointer goes to what lies below. Uses no timer then. Main thread.
class OverlayScroller final : public View {
public:
    static constexpr double kWidth = 12; ///< points
    /// How long it stays after the last scroll, and how long it takes to go.
    static constexpr Duration kStays = seconds(0.8);
    static constexpr Duration kFades = seconds(0.2);

    /// All it is given outlives it.
    OverlayScroller(const Palette&, Dispatch&);

    /// The user moves it; points, perhaps beyond an end.
    std::function<void(double offset)> onScrolled;

    /// Where it lies when it shows, in the parent's coordinates.
    void setStrip(const Rect&);
    /// Heights in points; without more than fits it never shows.
    void setContent(double contentHeight, double offset);
    void flash();
    void setReducesMotion(bool value) { m_reducesMotion = value; }
    void setFrameInterval(Duration interval) { m_frameInterval = interval; }

    bool takesPointer() const override { return true; }
    void pointerEntered() override;
    void pointerExited() override;
    void pointerPressed(const PointerPress&) override;
    void dragged(const DragMove&) override;
    void released(PointerButton, bool isInside) override;
    void pressCancelled() override { released(PointerButton::none, false); }

private:
    void paint(Canvas&) const override;
    double mostOffset() const;
    Rect knob() const;
    void setOpacity(double);
    void place();
    void stay();
    void fade();

    const Palette& m_palette;
    Dispatch& m_dispatch;
    Rect m_strip;
    double m_contentHeight = 0;
    double m_offset = 0;
    double m_opacity = 0;
    double m_offsetWhenPressed = 0;
    bool m_isHovered = false;
    bool m_isPressed = false;
    bool m_reducesMotion = false;
    Duration m_frameInterval = seconds(1.0 / 60);
    Animation m_fading;
    WorkItem m_rest;
};

}
