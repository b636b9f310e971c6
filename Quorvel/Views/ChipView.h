#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Quorvel/Core/BarSize.h"
#include "Quorvel/Core/DisplayItem.h"
#include "Quorvel/Views/DragSource.h"
#include "Quorvel/Views/Kit/View.h"

namespace quorvel {

/// One chip: icon and title of a window, or of the one that stands for its group. Its face is as
/// high as the metrics say; the view reaches from the top to the bottom of the bar, so that a click
/// at the very edge of the screen meets it.
class ChipView final : public View {
public:
    enum class Click { primary, middle, secondary };
    /// What of its text a chip shows.
    enum class Title { none, application, window };

    static constexpr double kLiftedOpacity = 0.82;
    static constexpr double kLiftedScale = 1.05;

    ChipView(const BarMetrics& metrics, const Text& text) : m_metrics(metrics), m_text(text) { }

    const DisplayItem& item() const { return m_item; }
    bool isHovered() const { return m_isHovered; }
    void setItem(const DisplayItem&);
    void setDark(bool);
    /// Of the mark and the progress; absent: the bar's own.
    void setAccent(const std::optional<Color>&);
    void setRightToLeft(bool);
    /// How strongly a request for attention shows now, from 0 to 1.
    void setPulse(double strength);
    void setTitle(Title title) { set(m_title, title); }
    /// The row is wide enough for titles.
    void setHasRoomForTitle(bool hasRoom) { set(m_hasRoomForTitle, hasRoom); }
    /// It follows the pointer, above the others.
    void setLifted(bool isLifted) { set(m_isLifted, isLifted); }

    std::function<void(const ChipView&, Click)> onClick;
    DragSource drag;
    std::function<void(const ChipView&, bool isHovered)> onHover;
    /// Files from elsewhere rest on the chip, or no longer do.
    std::function<void(const ChipView&, bool areOver)> onFilesOver;

    /// The width at which a title has all the room that the size gives it.
    static double fullWidth(const BarMetrics&);
    /// The width that still shows the whole icon.
    static double iconWidth(const BarMetrics&);
    /// The width at which some letters of this chip's title can be read.
    double leastTitledWidth() const;

    bool takesPointer() const override { return true; }
    void pointerEntered() override;
    void pointerExited() override;
    void pressed(PointerButton) override;
    void dragged(const DragMove&) override;
    void released(PointerButton, bool isInside) override;
    void pressCancelled() override;
    bool isDragged() const override { return drag.isDragging(); }

    bool takesFiles() const override { return true; }
    void filesEntered() override;
    void filesExited() override;
    /// Which of its documents the window would open is its program's to say.
    bool acceptsFiles() const override { return false; }

    bool isAccessible() const override { return true; }
    std::string accessibleID() const override { return displayItemID(m_item); }
    /// "Mail, 3 unread, 2 windows, focused".
    AccessibleState accessibleState() const override;
    bool performAccessibleAction(std::size_t) override;
    void setKeyFocused(bool isFocused) override { set(m_hasKeyFocus, isFocused); }
    void showContextMenu() override;

private:
    struct Parts {
        Rect face;
        Rect icon;
        Rect title; ///< empty where there is no room for one
        Rect count; ///< empty for a single window
        Rect badge; ///< empty without one
        Rect focusMark;
    };

    bool isLifted() const override { return m_isLifted; }
    void paint(Canvas&) const override;
    void paintChip(Canvas&) const;
    void paintFace(Canvas&, const Parts&) const;
    void paintProgress(Canvas&, const Parts&) const;
    void paintPill(Canvas&, const Rect&, std::string_view, const Color& fill, const Color&) const;
    Parts parts() const;
    Rect badgeRect(const Rect& icon) const;
    double pillWidth(std::string_view, double height) const;
    double countWidth() const;
    double countHeight() const;
    std::string count() const;
    std::string_view title() const;
    template <typename Value> void set(Value& member, Value value)
    {
        if (std::exchange(member, value) != value)
            invalidate();
    }

    BarMetrics m_metrics;
    const Text& m_text;
    DisplayItem m_item;
    bool m_isDark = true;
    std::optional<Color> m_accent;
    bool m_isRightToLeft = false;
    bool m_isHovered = false;
    bool m_isPressed = false;
    bool m_isLifted = false;
    bool m_hasKeyFocus = false;
    bool m_hasFilesOver = false;
    Title m_title = Title::window;
    bool m_hasRoomForTitle = true;
    double m_pulse = 0;
};

}
