#include "Hosts/MacOS/ScreenWatcher.h"

#include "Hosts/MacOS/Conversions.h"

namespace quorvel {

namespace {

Screen screenFrom(NSScreen* screen)
{
    Screen result;
    result.frame = fromSystem(screen.frame);
    result.visibleFrame = fromSystem(screen.visibleFrame);
    result.scale = screen.backingScaleFactor;
    id number = screen.deviceDescription[@"NSScreenNumber"];
    if ([number isKindOfClass:NSNumber.class])
        result.number = DisplayNumber{[number unsignedIntValue]};
    return result;
}

std::vector<Screen> currentScreens()
{
    std::vector<Screen> screens;
    for (NSScreen* screen in NSScreen.screens)
        screens.push_back(screenFrom(screen));
    return screens;
}

}

// Comes for the Dock's share of the screen too, not only for displays.
ScreenWatcher::ScreenWatcher(MacDisplays& displays)
    : m_observer(NSNotificationCenter.defaultCenter,
          NSApplicationDidChangeScreenParametersNotification,
          [&displays](NSNotification*) { displays.setScreens(currentScreens()); })
{
    displays.setScreens(currentScreens());
}

}
