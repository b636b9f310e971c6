#pragma once

#include <functional>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Views/Kit/Animation.h"
#include "Quorvel/Views/Kit/View.h"

namespace quorvel {

class ScrollArrow;
struct Palette;

/// How far a row is scrolled towards its end, and the arrows that appear where there is more. The
/// row asks for the offset when it places its children. Main thread.
class RowScroll {
public:
    /// The arrows become children of the row, above what it has by then.
    RowScroll(View& row, const Palette&, Dispatch&);

    std::function<void()> onScrolled;
    /// By the wheel, an arrow or a drag; called before.
    std::function<void()> onUserScrolls;

    void setRightToLeft(bool isRightToLeft) { m_isRightToLeft = isRightToLeft; }
    void setReducesMotion(bool value) { m_reducesMotion = value; }
    void setFrameInterval(Duration interval) { m_frameInterval = interval; }
    /// Points. An arrow scrolls by at least one item.
    void setContent(double width, double itemWidth);

    /// Points.
    double offset() const { return m_offset; }
    double maximum() const;
    void scrollBy(double distance);
    /// A notch of a wheel scrolls by one item.
    void scrollBy(double distance, ScrollUnit);
    /// Scrolls this range (in the row's coordinates) into view, clear of the arrows.
    void reveal(const Rect&);
    /// The same in its own time, for a range from so far behind the start of the content.
    void glideTo(double start, double width);
    /// Whether that range is clear of the arrows now.
    bool isInSight(double start, double width) const
    {
        return offsetThatShows(start, width) == m_offset;
    }
    /// Where a glide leads to, at once.
    void finishGlide();
    void stopGlide() { m_glide.stop(); }
    void stop();

    /// While the row is held, no arrow appears over what the pointer may be on, unless the user
    /// scrolls, and none disappears under the pointer.
    void placeArrows(bool isHeld);
    /// Something that cannot be seen there wants attention. True if that is news.
    bool setAttention(bool isLeft, bool isRight);
    /// The part of the row that the arrows leave to the items, in the row's coordinates.
    Rect roomForItems() const;

private:
    void step(double direction);
    void scrollTo(double offset);
    void animate(Animation&, double to);
    double offsetThatShows(double start, double width) const;

    View& m_row;
    ScrollArrow& m_backArrow;
    ScrollArrow& m_forwardArrow;
    Animation m_motion; ///< of a click on an arrow
    Animation m_glide;
    double m_glideEnd = 0;
    Duration m_frameInterval = seconds(1.0 / 60);
    bool m_isRightToLeft = false;
    bool m_reducesMotion = false;
    double m_contentWidth = 0;
    double m_itemWidth = 0;
    double m_offset = 0;
    double m_offsetOfArrows = 0; ///< the offset at which they were placed
};

}
