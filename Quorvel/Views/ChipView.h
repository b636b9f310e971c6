#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "Quorvel/Core/DisplayItem.h"
#include "Quorvel/Views/RowItem.h"

namespace quorvel {

class Text;

/// One chip: icon and title of a window, or of the one that stands for its group.
class ChipView final : public RowItem {
public:
    /// The parts of its text that a chip shows.
    enum class Title { none, application, window };

    ChipView(const Palette& palette, const BarMetrics& metrics, const Text& text)
        : RowItem(palette, metrics)
        , m_text(text)
    {
    }

    const DisplayItem& item() const { return m_item; }
    std::string bundleID() const override;
    using RowItem::hasKeyFocus;
    using RowItem::isHovered;
    void setItem(const DisplayItem&);
    void setPulse(double strength) override;
    bool asksForAttention() const override { return wantsAttention(m_item); }
    void setTitle(Title title) { set(m_title, title); }
    /// A pointer that rests on it is told a title that it cuts.
    void setTellsTitle(bool tellsTitle) { m_tellsTitle = tellsTitle; }
    /// The row is wide enough for titles.
    void setHasRoomForTitle(bool hasRoom) { set(m_hasRoomForTitle, hasRoom); }

    std::function<void(const ChipView&, bool isHovered)> onHover;

    /// The width at which a title has all the room that the size allows.
    static double fullWidth(const BarMetrics&);
    /// The width that still shows the whole icon.
    static double iconWidth(const BarMetrics&);
    /// The width at which a few letters of this chip's title are readable.
    double leastTitledWidth() const;

    std::string accessibleID() const override { return displayItemID(m_item); }
    /// "Mail, 3 unread, 2 windows, focused".
    AccessibleState accessibleState() const override;
    std::string tooltip() const override;

private:
    struct Parts {
        Rect face;
        Rect icon;
        Rect title; ///< empty where there is no room for one
        Rect count; ///< empty for a single window
        Rect badge; ///< empty if there is none
        Rect news; ///< a dot; empty if there is none
        Rect focusMark;
    };

    void pointerEntered() override;
    void pointerExited() override;
    /// Which of its documents the window would open is its program's to say.
    bool acceptsFiles() const override { return false; }

    void paintItem(Canvas&) const override;
    void paintGround(Canvas&, const Parts&) const;
    bool hasWash() const;
    Parts parts() const;
    Rect badgeRect(const Rect& icon) const;
    Rect newsRect(const Rect& icon) const;
    double countWidth() const;
    double countHeight() const;
    std::string count() const;
    std::string_view title() const;
    std::string_view wholeTitle() const;

    const Text& m_text;
    DisplayItem m_item;
    Title m_title = Title::window;
    bool m_hasRoomForTitle = true;
    bool m_tellsTitle = false;
    double m_pulse = 0;
};

}
