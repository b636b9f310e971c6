#pragma once

#include <memory>
#include <optional>
#include <string>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Views/TooltipPanel.h"

namespace quorvel {

class View;

/// When the views of a bar say what they are: the first once the pointer has rested on it, the next
/// ones at once while the pointer goes on from one to the other. A press, a key or a scroll ends
/// it until the pointer comes to another view. Main thread.
class Tooltips {
public:
    static constexpr Duration kShowDelay = seconds(0.25);
    /// For so long after one has gone, the next shows at once: there are gaps between views.
    static constexpr Duration kNextAtOnce = seconds(0.4);

    /// Both outlive it.
    Tooltips(const Platform&, const PanelSurface& bar, DisplayNumber);

    /// The deepest view that takes the pointer; null: none does, or the last one has gone.
    void pointAt(const View*);
    /// What the view says may have changed.
    void update();
    /// The bar is shown from now on. Whatever it comes under says nothing until the pointer goes
    /// on: it rests there since before, perhaps after the click that has shown this bar.
    void barDidAppear();
    /// Says at once, over a place of the bar (points, origin top left), what the pointer is about
    /// to do there, until it is told something else; empty: nothing.
    void tell(std::string text, const Rect& place);
    /// The user does something: none is wanted now.
    void dismiss();

    /// Null while none is on the screen.
    const TooltipPanel* panel() const { return m_panel.get(); }

private:
    void rest();
    void show();
    void open(std::string text, const Rect& place);
    void hide();
    bool isUnder(const View&, Point globalTopLeft) const;

    const Platform& m_platform;
    const PanelSurface& m_bar;
    DisplayNumber m_display;
    const View* m_target = nullptr; ///< null once it is not to show any
    bool m_hasPointer = false;
    std::optional<Point> m_appearedUnder; ///< the pointer, of which nothing has been heard yet
    std::string m_text; ///< of the panel
    std::unique_ptr<TooltipPanel> m_panel;
    Instant m_lastSeen = Instant::min();
    WorkItem m_showTimer;
    Subscription m_moves;
};

}
