#include "Hosts/MacOS/System/MacDisplays.h"

#include "Hosts/MacOS/System/CFValues.h"

namespace quorvel {

std::vector<Screen> MacDisplays::screens() const
{
    const std::lock_guard lock(m_mutex);
    return m_screens;
}

DisplayNumber MacDisplays::mainDisplay() const
{
    return DisplayNumber{CGMainDisplayID()};
}

std::vector<DisplayNumber> MacDisplays::activeDisplays(std::size_t limit) const
{
    std::vector<CGDirectDisplayID> ids(limit);
    std::uint32_t count = 0;
    if (CGGetActiveDisplayList(static_cast<std::uint32_t>(limit), ids.data(), &count)
        != kCGErrorSuccess)
        return {};
    std::vector<DisplayNumber> numbers;
    for (std::size_t index = 0; index < std::min<std::size_t>(count, limit); ++index)
        numbers.push_back(DisplayNumber{ids[index]});
    return numbers;
}

std::optional<std::string> MacDisplays::identifier(DisplayNumber display) const
{
    const auto uuid = CFRef<CFUUIDRef>::adopt(CGDisplayCreateUUIDFromDisplayID(raw(display)));
    if (!uuid)
        return {};
    const auto text
        = CFRef<CFStringRef>::adopt(CFUUIDCreateString(kCFAllocatorDefault, uuid.get()));
    return textFrom(text.get());
}

Point MacDisplays::pointerLocation() const
{
    const auto event = CFRef<CGEventRef>::adopt(CGEventCreate(nullptr));
    if (!event)
        return {};
    const CGPoint point = CGEventGetLocation(event.get());
    return {point.x, point.y};
}

std::optional<DisplayNumber> MacDisplays::displayAt(Point globalTopLeft) const
{
    CGDirectDisplayID display = kCGNullDirectDisplay;
    std::uint32_t count = 0;
    const CGPoint point = CGPointMake(globalTopLeft.x, globalTopLeft.y);
    if (CGGetDisplaysWithPoint(point, 1, &display, &count) != kCGErrorSuccess || count == 0)
        return {};
    return DisplayNumber{display};
}

void MacDisplays::setScreens(std::vector<Screen> screens)
{
    {
        const std::lock_guard lock(m_mutex);
        m_screens = std::move(screens);
    }
    parametersDidChange.emit();
}

}
