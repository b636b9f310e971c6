#pragma once

#include <cstdint>

#include "Hosts/MacOS/System/System.h"

namespace quorvel {

/// The undocumented calls that the host makes, looked up by name; each is null where this system
/// lacks it. The signatures are those commonly used by other projects: no system header declares
/// them.
///
/// The window server's calls are named SLS... in SkyLight and, most of them, CGS... in
/// CoreGraphics, which forwards; the first name found is used.
struct PrivateSymbols {
    using Connection = int;

    Connection (*mainConnectionID)() = nullptr;
    CFArrayRef (*copyManagedDisplaySpaces)(Connection) = nullptr;
    CFArrayRef (*copyWindowsWithOptionsAndTags)(Connection, std::uint32_t owner, CFArrayRef spaces,
        std::uint32_t options, std::uint64_t* setTags, std::uint64_t* clearTags)
        = nullptr;
    CFArrayRef (*copySpacesForWindows)(Connection, int mask, CFArrayRef windows) = nullptr;
    std::uint64_t (*getActiveSpace)(Connection) = nullptr;
    void (*addWindowsToSpaces)(Connection, CFArrayRef windows, CFArrayRef spaces) = nullptr;
    void (*removeWindowsFromSpaces)(Connection, CFArrayRef windows, CFArrayRef spaces) = nullptr;
    void (*moveWindowsToManagedSpace)(Connection, CFArrayRef windows, std::uint64_t space)
        = nullptr;
    /// Whether the last four really are floating-point numbers is unknown.
    void (*spaceSetEdgeReservation)(
        Connection, std::uint64_t space, int edge, double, double, double, double height)
        = nullptr;

    /// The Dock's rectangle (global top-left origin), its reason and its edge; the latter two in
    /// CoreDock's numbers. Useful only together. Their return values are unknown.
    void (*setDockRect)(Connection, CGRect, int reason, int orientation) = nullptr;
    void (*getDockRect)(Connection, CGRect*, int* reason, unsigned long* orientation) = nullptr;

    // The keys of the system's own actions, the Dock's among them. The call may write fewer bytes
    // than the numbers have, so they must be zero before.
    CGError (*getSymbolicHotKeyValue)(int hotKey, int* character, int* keyCode, int* modifiers)
        = nullptr;
    bool (*isSymbolicHotKeyEnabled)(int hotKey) = nullptr;
    CGError (*setSymbolicHotKeyEnabled)(int hotKey, bool isEnabled) = nullptr;

    /// Triggers one of the Dock's own actions; the number is always 0.
    CGError (*coreDockSendNotification)(CFStringRef name, int) = nullptr;

    /// Whether the Dock hides by itself; setting it takes effect at once and is stored.
    Boolean (*coreDockGetAutoHideEnabled)() = nullptr;
    void (*coreDockSetAutoHideEnabled)(Boolean) = nullptr;
    /// The edge it is at: 1 top, 2 bottom, 3 left, 4 right.
    void (*coreDockGetOrientationAndPinning)(std::int32_t* orientation, std::int32_t* pinning)
        = nullptr;

    ::AXError (*axElementGetWindow)(AXUIElementRef, CGWindowID*) = nullptr;

    /// Serial numbers, objects of an unnamed type.
    CFArrayRef (*copyRunningApplicationArray)(int session) = nullptr;
    /// All known values, if no keys are given.
    CFDictionaryRef (*copyApplicationInformation)(int session, CFTypeRef serial, CFArrayRef keys)
        = nullptr;

    static PrivateSymbols load();
};

}
