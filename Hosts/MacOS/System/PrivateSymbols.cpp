#include "Hosts/MacOS/System/PrivateSymbols.h"

namespace quorvel {

namespace {

// Not a file since macOS 11, but the loader still knows the path.
constexpr char kSkyLight[] = "/System/Library/PrivateFrameworks/SkyLight.framework/SkyLight";

template <typename Function> void look(Function& function, void* library, const char* name)
{
    if (!function && library)
        function = reinterpret_cast<Function>(dlsym(library, name));
}

/// First in SkyLight under its own name, then among what is linked under the older one.
template <typename Function>
void look(Function& function, void* skyLight, const char* name, const char* olderName)
{
    look(function, skyLight, name);
    look(function, RTLD_DEFAULT, olderName);
}

}

PrivateSymbols PrivateSymbols::load()
{
    PrivateSymbols s;
    void* const skyLight = dlopen(kSkyLight, RTLD_LAZY | RTLD_LOCAL);
    look(s.mainConnectionID, skyLight, "SLSMainConnectionID", "CGSMainConnectionID");
    look(s.copyManagedDisplaySpaces, skyLight, "SLSCopyManagedDisplaySpaces",
        "CGSCopyManagedDisplaySpaces");
    look(s.copyWindowsWithOptionsAndTags, skyLight, "SLSCopyWindowsWithOptionsAndTags",
        "CGSCopyWindowsWithOptionsAndTags");
    look(s.copySpacesForWindows, skyLight, "SLSCopySpacesForWindows", "CGSCopySpacesForWindows");
    look(s.getActiveSpace, skyLight, "SLSGetActiveSpace", "CGSGetActiveSpace");
    look(s.addWindowsToSpaces, skyLight, "SLSAddWindowsToSpaces", "CGSAddWindowsToSpaces");
    look(s.removeWindowsFromSpaces, skyLight, "SLSRemoveWindowsFromSpaces",
        "CGSRemoveWindowsFromSpaces");
    look(s.moveWindowsToManagedSpace, skyLight, "SLSMoveWindowsToManagedSpace",
        "CGSMoveWindowsToManagedSpace");
    look(s.spaceSetEdgeReservation, skyLight, "SLSSpaceSetEdgeReservation",
        "CGSSpaceSetEdgeReservation");
    look(s.setDockRect, skyLight, "SLSSetDockRectWithOrientation");
    look(s.getDockRect, skyLight, "SLSGetDockRectWithOrientation");
    look(s.getSymbolicHotKeyValue, skyLight, "SLSGetSymbolicHotKeyValue",
        "CGSGetSymbolicHotKeyValue");
    look(s.isSymbolicHotKeyEnabled, skyLight, "SLSIsSymbolicHotKeyEnabled",
        "CGSIsSymbolicHotKeyEnabled");
    look(s.setSymbolicHotKeyEnabled, skyLight, "SLSSetSymbolicHotKeyEnabled",
        "CGSSetSymbolicHotKeyEnabled");
    look(s.coreDockSendNotification, RTLD_DEFAULT, "CoreDockSendNotification");
    look(s.coreDockGetAutoHideEnabled, RTLD_DEFAULT, "CoreDockGetAutoHideEnabled");
    look(s.coreDockSetAutoHideEnabled, RTLD_DEFAULT, "CoreDockSetAutoHideEnabled");
    look(s.coreDockGetOrientationAndPinning, RTLD_DEFAULT, "CoreDockGetOrientationAndPinning");
    look(s.axElementGetWindow, RTLD_DEFAULT, "_AXUIElementGetWindow");
    look(s.copyRunningApplicationArray, RTLD_DEFAULT, "_LSCopyRunningApplicationArray");
    look(s.copyApplicationInformation, RTLD_DEFAULT, "_LSCopyApplicationInformation");
    return s;
}

}
