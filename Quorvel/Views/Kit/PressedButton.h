#pragma once

#include "Quorvel/Platform/PointerEvent.h"

namespace quorvel {

/// The button whose press is under way: from the first that goes down to its own release; what
/// other buttons do meanwhile means nothing.
class PressedButton {
public:
    bool isUnderWay() const { return m_button != PointerButton::none; }
    /// Whether the event shows that the release was missed: a grab of another program kept it away.
    bool hasMissedRelease(const PointerEvent& event) const
    {
        bool isUp = event.held && !event.held->contains(m_button);
        bool isAgain = event.action == PointerAction::pressed && event.button == m_button;
        return isUnderWay() && (isUp || isAgain);
    }
    /// Takes over a press that began before there was anybody here to hear of it.
    void takeOver(const PointerEvent& event)
    {
        for (auto button :
            {PointerButton::primary, PointerButton::secondary, PointerButton::middle}) {
            if (!isUnderWay() && event.held && event.held->contains(button))
                m_button = button;
        }
    }
    /// True if this button's press is the first.
    bool begin(PointerButton button)
    {
        if (isUnderWay() || button == PointerButton::none)
            return false;
        m_button = button;
        return true;
    }
    /// True if this button's release is the one that ends it.
    bool end(PointerButton button)
    {
        if (!isUnderWay() || button != m_button)
            return false;
        cancel();
        return true;
    }
    void cancel() { m_button = PointerButton::none; }

private:
    PointerButton m_button = PointerButton::none; ///< the one that is down
};

}
