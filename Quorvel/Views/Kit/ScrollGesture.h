#pragma once

#include <optional>

#include "Quorvel/Platform/Surfaces.h"

namespace quorvel {

/// Turns the many events of a scroll into what the user meant: a step upwards or downwards, one for
/// each notch of a wheel and one for a whole gesture of the fingers, or a distance sideways. The
/// larger axis decides; for a gesture it is settled once, from its first few points.
class ScrollGesture {
public:
    /// The distance in points after which the axis of a gesture is settled.
    static constexpr double kSettledAfter = 4;

    struct Meaning {
        double step = 0; ///< has the sign of the vertical delta; 0: none
        double sideways = 0; ///< in the event's unit, with the sign of the horizontal delta
    };

    Meaning handle(const ScrollEvent&);

private:
    Meaning handleGesture(const ScrollEvent&);

    bool m_isUnderWay = false;
    std::optional<ScrollAxis> m_axis; ///< of the gesture; absent until it is settled
    Point m_sum; ///< the distance before that
};

}
