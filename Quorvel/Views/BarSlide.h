#pragma once

#include "Quorvel/Views/Kit/Animation.h"

namespace quorvel {

class Application;
class PanelSurface;
struct Platform;

/// The way of a bar out of sight behind its screen's edge, and back. Main thread.
class BarSlide {
public:
    /// Of the whole way.
    static constexpr Duration kLength = seconds(0.2);

    /// Both outlive it.
    BarSlide(const Platform&, PanelSurface&);

    /// Turns round where it is. A bar that nobody sees, and one whose user wants no motion, is
    /// there at once.
    void setOut(bool);
    /// Out, or on the way.
    bool isOut() const { return m_isOut; }
    /// The share of the bar that cannot be seen, from 0 to 1.
    double share() const { return m_share; }

private:
    void moveTo(double share);

    const Application& m_application;
    PanelSurface& m_surface;
    Animation m_motion;
    bool m_isOut = false;
    double m_share = 0;
};

}
