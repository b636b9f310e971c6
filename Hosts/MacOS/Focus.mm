#include "Hosts/MacOS/Focus.h"

#include "Hosts/MacOS/Cocoa.h"

namespace quorvel {

void handBackFocus()
{
    if (!NSApp.active)
        return;
    for (NSWindow* window in NSApp.windows) {
        if (window.visible && (window.styleMask & NSWindowStyleMaskTitled))
            return;
    }
    // A program that hides is no longer active. Bars and popups stay: they cannot be hidden.
    [NSApp hide:nil];
    [NSApp unhideWithoutActivation];
}

}
