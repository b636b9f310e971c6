#include "Tests/Support/FakeDisplays.h"

#include "Tests/Support/FakeDesktop.h"

namespace quorvel::test {

std::vector<Screen> FakeDisplays::screens() const
{
    std::vector<Screen> screens;
    for (auto& display : m_desktop.model().displays) {
        auto visible = display.visibleFrame.isEmpty() ? display.frame : display.visibleFrame;
        screens.push_back({display.frame, visible, display.scale, display.number});
    }
    return screens;
}

DisplayNumber FakeDisplays::mainDisplay() const
{
    auto& model = m_desktop.model();
    if (model.mainDisplay && model.display(*model.mainDisplay))
        return *model.mainDisplay;
    auto& displays = model.displays;
    return displays.empty() ? DisplayNumber{} : displays.front().number;
}

std::vector<DisplayNumber> FakeDisplays::activeDisplays(std::size_t limit) const
{
    std::vector<DisplayNumber> numbers;
    for (auto& display : m_desktop.model().displays) {
        if (numbers.size() < limit)
            numbers.push_back(display.number);
    }
    return numbers;
}

std::optional<std::string> FakeDisplays::identifier(DisplayNumber number) const
{
    auto* display = m_desktop.model().display(number);
    return display ? std::optional{display->identifier} : std::nullopt;
}

Point FakeDisplays::pointerLocation() const
{
    return m_desktop.model().pointer;
}

std::optional<DisplayNumber> FakeDisplays::displayAt(Point globalTopLeft) const
{
    auto& model = m_desktop.model();
    for (auto& display : model.displays) {
        if (display.frame.flipped(model.flipHeight()).contains(globalTopLeft))
            return display.number;
    }
    return std::nullopt;
}

}
