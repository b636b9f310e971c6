#pragma once

#include "Quorvel/Platform/Displays.h"

namespace quorvel::test {

class FakeDesktop;

/// The screens of the desktop, and where the pointer is.
class FakeDisplays final : public Displays {
public:
    explicit FakeDisplays(FakeDesktop& desktop) : m_desktop(desktop) { }

    std::vector<Screen> screens() const override;
    DisplayNumber mainDisplay() const override;
    std::vector<DisplayNumber> activeDisplays(std::size_t limit) const override;
    std::optional<std::string> identifier(DisplayNumber) const override;
    Point pointerLocation() const override;
    std::optional<DisplayNumber> displayAt(Point globalTopLeft) const override;

private:
    FakeDesktop& m_desktop;
};

}
