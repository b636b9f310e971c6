#pragma once

#include <functional>
#include <string>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Views/Kit/ButtonView.h"

namespace quorvel {

class Text;

/// A line at the end of the row of chips that says what went wrong, until it has been read or is
/// clicked. Main thread.
class BarNote final : public ButtonView {
public:
    static constexpr Duration kTimeToRead = seconds(8);

    /// All it is given outlives it.
    BarNote(const Palette&, const Text&, Queue& main);

    /// It has begun to say something, or has ended.
    std::function<void()> onShownChanged;

    bool isShown() const { return !m_text.empty(); }
    /// Replaces what it says.
    void show(std::string text);
    void hide();
    /// Where it may lie, in the parent's coordinates, and at which end.
    void setRoom(const Rect&, bool isRightToLeft);

    std::string accessibleID() const override { return "note"; }
    AccessibleState accessibleState() const override { return buttonState(m_text, tr("Dismiss")); }

private:
    void paint(Canvas&) const override;
    void place();
    double widthOfText() const;

    const Text& m_measure;
    Queue& m_main;
    std::string m_text; ///< empty while there is nothing to say
    Rect m_room;
    bool m_isRightToLeft = false;
    WorkItem m_end;
};

}
