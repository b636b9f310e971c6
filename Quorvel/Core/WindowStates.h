#pragma once

#include <optional>
#include <vector>

#include "Quorvel/Platform/Identifiers.h"
#include "Quorvel/Skylight/AXCalls.h"

namespace quorvel {

class WindowStore;

/// What its user can switch on and off of a window.
enum class WindowState { maximized, zoomed, fullScreen, keptAbove, onEverySpace };

/// The states of windows that the bar shows no picture of: asked for when they are wanted, since
/// the system does not report their changes everywhere. Main thread.
class WindowStates {
public:
    struct Offer {
        WindowState state{};
        /// Absent where the system only knows how to change it to and fro.
        std::optional<bool> isOn;

        friend bool operator==(const Offer&, const Offer&) = default;
    };

    using Offers = std::vector<Offer>;

    /// Both outlive it.
    WindowStates(const WindowStore&, Accessibility&);

    /// What the system and the window let one change at present, in the order of `WindowState`; of
    /// `maximized` and `zoomed` at most one. Empty if the application does not answer.
    Offers offers(WindowID);
    /// A state that is only known to change changes, whatever is wanted.
    void set(WindowID, WindowState, bool isOn);

private:
    struct Found {
        ProcessID pid{};
        AXElement window;
    };

    std::optional<Found> find(WindowID);
    /// Absent if there is none, or it does nothing.
    std::optional<AXElement> zoomButton(const Found&);
    void pressZoomButton(const Found&);

    const WindowStore& m_windowStore;
    AXCalls m_calls;
};

}
