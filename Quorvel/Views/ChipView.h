#pragma once

#include <functional>

#include "Quorvel/Core/BarSize.h"
#include "Quorvel/Core/DisplayItem.h"
#include "Quorvel/Views/Kit/View.h"

namespace quorvel {

/// One chip: icon and title of a window, or of the one that stands for its group. Its face is as
/// high as the metrics say; the view reaches from the top to the bottom of the bar, so that a click
/// at the very edge of the screen meets it.
class ChipView final : public View {
public:
    enum class Click { primary, middle, secondary };

    ChipView(const BarMetrics& metrics, const Text& text) : m_metrics(metrics), m_text(text) { }

    const DisplayItem& item() const { return m_item; }
    void setItem(const DisplayItem&);
    void setDark(bool);
    void setRightToLeft(bool);
    /// How strongly a request for attention shows now, from 0 to 1.
    void setPulse(double strength);

    std::function<void(const ChipView&, Click)> onClick;

    /// The width at which a title has all the room that the size gives it.
    static double fullWidth(const BarMetrics&);
    /// The width that still shows the whole icon.
    static double iconWidth(const BarMetrics&);

    bool takesPointer() const override { return true; }
    void pointerEntered() override { setHovered(true); }
    void pointerExited() override { setHovered(false); }
    void pressed(PointerButton) override;
    void released(PointerButton, bool isInside) override;
    void pressCancelled() override;

private:
    struct Parts {
        Rect face;
        Rect icon;
        Rect title; ///< empty where there is no room for one
        Rect count; ///< empty for a single window
        Rect badge; ///< empty without one
        Rect focusMark;
    };

    void paint(Canvas&) const override;
    void paintFace(Canvas&, const Parts&) const;
    void paintProgress(Canvas&, const Parts&) const;
    void paintPill(Canvas&, const Rect&, std::string_view, const Color& fill, const Color&) const;
    Parts parts() const;
    Rect badgeRect(const Rect& icon) const;
    double pillWidth(std::string_view, double height) const;
    std::string count() const;
    void setHovered(bool);
    void setPressed(bool);

    BarMetrics m_metrics;
    const Text& m_text;
    DisplayItem m_item;
    bool m_isDark = true;
    bool m_isRightToLeft = false;
    bool m_isHovered = false;
    bool m_isPressed = false;
    double m_pulse = 0;
};

}
