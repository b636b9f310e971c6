#pragma once

#include <functional>

#include "Quorvel/Core/BarSize.h"
#include "Quorvel/Core/DisplayItem.h"
#include "Quorvel/Views/Kit/View.h"

namespace quorvel {

/// One chip: icon and title of a window. Its face is as high as the metrics say; the view reaches
/// from the top to the bottom of the bar, so that a click at the very edge of the screen meets it.
class ChipView final : public View {
public:
    enum class Click { primary, middle };

    explicit ChipView(const BarMetrics& metrics) : m_metrics(metrics) { }

    const ChipData& data() const { return m_data; }
    void setData(ChipData);
    void setDark(bool);
    void setRightToLeft(bool);

    std::function<void(const ChipData&, Click)> onClick;

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
        Rect focusMark;
    };

    void paint(Canvas&) const override;
    Parts parts() const;
    std::string_view title() const;
    void setHovered(bool);
    void setPressed(bool);

    BarMetrics m_metrics;
    ChipData m_data;
    bool m_isDark = true;
    bool m_isRightToLeft = false;
    bool m_isHovered = false;
    bool m_isPressed = false;
};

}
