#pragma once

#include <functional>
#include <optional>

#include "Quorvel/Platform/Dispatch.h"

namespace quorvel {

/// What the pointer, with files in its hand or without, does at the edge of the screen.
enum class EdgeContact { came, left, pressed };

/// When one bar that hides itself is out of sight: while a window needs its place, or the user has
/// sent it away, and nothing keeps it in. It knows neither screens nor windows, and has a timer
/// only while something is about to happen. Main thread.
class AutoHide {
public:
    /// From when a window takes its place, or the last thing ends that kept it in.
    static constexpr Duration kGoesAfter = seconds(0.5);
    /// How long the pointer rests at the edge: who only comes across it is sooner gone. At the
    /// first touch, the bar would come at each scroll bar's lower end.
    static constexpr Duration kRestsFor = seconds(0.2);
    /// Within this the pointer that called the bar has to reach it.
    static constexpr Duration kStaysForEdge = seconds(0.5);
    static constexpr Duration kStaysForAttention = seconds(4);

    AutoHide(Queue& main, std::function<void()> onChange);

    bool isOut() const { return m_isOut; }

    /// A window lies where the bar is. A change ends what the user has asked for.
    void setOverlapped(bool);
    /// All windows are out of the way for a while. A bar that the user has sent away comes, and
    /// goes again with that, unless the user has said something else meanwhile.
    void setShowingDesktop(bool);
    /// The user is doing something with the bar, or with what it has opened: it stays, or comes.
    void setInUse(bool);
    /// What the pointer does at the screen's edge while the bar is out.
    void edgeTouched(EdgeContact);
    /// Something has begun to ask for attention.
    void attentionBegan();
    /// Nothing does any longer.
    void attentionEnded();
    /// The user sends it away until the next call, or until windows come or leave its place; or
    /// gets it back, for as long, or until it has been used. What is in use goes afterwards.
    void toggle();
    /// It is about to be used.
    void callIn();

private:
    bool isWantedOut() const;
    bool shouldBeOut() const;
    void update();
    void stayFor(WorkItem& stay, Duration);
    void setOut(bool);

    Queue& m_main;
    const std::function<void()> m_onChange;
    bool m_isOut = false;
    bool m_isOverlapped = false;
    bool m_isInUse = false;
    bool m_isShowingDesktop = false;
    std::optional<bool> m_isWantedOut; ///< by the user; absent: the windows decide
    bool m_wasSentAway = false; ///< by the user, before the desktop was shown
    WorkItem m_rest;
    WorkItem m_edgeStay;
    WorkItem m_attentionStay;
    WorkItem m_going;
};

}
