#pragma once

#include <mutex>

#include "Quorvel/Platform/Displays.h"

namespace quorvel {

/// The display calls may come from any thread, but the list of screens belongs to the main thread:
/// it is passed in whenever it changes and read from here.
class MacDisplays final : public Displays {
public:
    std::vector<Screen> screens() const override;
    DisplayNumber mainDisplay() const override;
    std::vector<DisplayNumber> activeDisplays(std::size_t limit) const override;
    std::optional<std::string> identifier(DisplayNumber) const override;

    Point pointerLocation() const override;
    std::optional<DisplayNumber> displayAt(Point globalTopLeft) const override;

    /// Stores the new list and emits `parametersDidChange`. Main thread.
    void setScreens(std::vector<Screen>);

private:
    mutable std::mutex m_mutex;
    std::vector<Screen> m_screens;
};

}
