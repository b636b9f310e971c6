#pragma once

namespace quorvel {

/// A key that is pressed in the program while one of its panels shows a field of the system.
struct KeyRoute {
    bool isForPanel = false; ///< the event names its window
    bool isPanelKey = false;
    bool isComposing = false; ///< an input method needs every key

    /// Whether the panel's client sees it before the field does.
    constexpr bool asksClientFirst() const { return isForPanel && isPanelKey && !isComposing; }
};

}
