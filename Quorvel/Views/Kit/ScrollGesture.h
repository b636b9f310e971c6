#pragma once

#include <optional>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Surfaces.h"

namespace quorvel {

/// Turns the many events of a scroll into what the user meant: a step upwards or downwards, one for
/// each notch of a wheel and one for a whole gesture of the fingers, or a distance sideways. The
/// larger axis decides. For a gesture it is settled once, from its first few points. Notches tell
/// no beginning or end, and X11 reports a touchpad in notches too: those that follow each other
/// without a pause belong together, and the axis with more of them so far decides about the next.
class ScrollGesture {
public:
    /// The distance in points after which the axis of a gesture is settled.
    static constexpr double kSettledAfter = 4;
    /// A notch that comes later than this begins anew: longer than between two notches of a finger
    /// on a wheel, shorter than to change one's mind.
    static constexpr Duration kPause = seconds(0.3);

    struct Meaning {
        double step = 0; ///< has the sign of the vertical delta; 0: none
        double sideways = 0; ///< in the event's unit, with the sign of the horizontal delta
    };

    Meaning handle(const ScrollEvent&, Instant now);

private:
    Meaning handleGesture(const ScrollEvent&);
    Meaning handleNotch(const ScrollEvent&, Instant now);

    bool m_isUnderWay = false;
    std::optional<ScrollAxis> m_axis; ///< of the gesture; absent until it is settled
    Point m_sum; ///< the distance before that
    std::optional<ScrollAxis> m_notchAxis; ///< of the notches so far
    Point m_notches; ///< how many of them along each axis, whatever their direction
    Instant m_lastNotch;
};

}
