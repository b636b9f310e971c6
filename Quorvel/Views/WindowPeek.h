#pragma once

#include <optional>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Identifiers.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel {

class PeekFading;
class Surfaces;

/// When the windows themselves are shown to whoever looks at their pictures: the first once the
/// pointer has rested on its card, the next ones at once while it goes on from card to card. Main
/// thread; destroying it ends that.
class WindowPeek {
public:
    static constexpr Duration kRest = seconds(0.5);
    /// There are gaps between cards.
    static constexpr Duration kBetweenCards = seconds(0.2);

    /// All of it outlives this; null where the system cannot show a window alone.
    WindowPeek(Dispatch&, Surfaces&, PeekFading*);
    ~WindowPeek();

    /// The window of the card that the pointer is on; absent: it is on none.
    void pointAt(std::optional<WindowID>);
    /// Its card has gone with it.
    void windowDidGo(WindowID);
    /// Windows may have come, gone or been minimised.
    void update();
    /// The user does something else, until the pointer comes to a card again.
    void end();

private:
    void rest();
    void show();

    Dispatch& m_dispatch;
    Surfaces& m_surfaces;
    PeekFading* m_peeking;
    std::optional<WindowID> m_target;
    bool m_isUnderWay = false;
    WorkItem m_timer; ///< of the rest, or of the way to the next card
    Subscription m_moves;
};

}
