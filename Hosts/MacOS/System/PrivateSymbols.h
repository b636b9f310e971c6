#pragma once

#include <cstdint>

#include "Hosts/MacOS/System/System.h"

namespace quorvel {

/// The undocumented calls that the host makes, looked up by name; each is null where this system
/// has it not. The signatures are what other people's headers say: no header of the system does.
///
/// The window server's calls are called SLS... in SkyLight and, most of them, CGS... in
/// CoreGraphics, which forwards; the first name found is taken.
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
    /// Whether the last four really are floating-point numbers is not known.
    void (*spaceSetEdgeReservation)(
        Connection, std::uint64_t space, int edge, double, double, double, double height)
        = nullptr;

    /// The Dock's rectangle (global top-left origin), why it is there and at which edge; the latter
    /// in CoreDock's numbers. Only of use together. What they answer is not known.
    void (*setDockRect)(Connection, CGRect, int reason, int orientation) = nullptr;
    void (*getDockRect)(Connection, CGRect*, int* reason, unsigned long* orientation) = nullptr;

    // The keys of the system's own actions, the Dock's among them. The numbers may be written with
    // fewer bytes than they have, so they must be zero before.
    CGError (*getSymbolicHotKeyValue)(int hotKey, int* character, int* keyCode, int* modifiers)
        = nullptr;
    bool (*isSymbolicHotKeyEnabled)(int hotKey) = nullptr;
    CGError (*setSymbolicHotKeyEnabled)(int hotKey, bool isEnabled) = nullptr;

    /// One of the Dock's own actions; the number is always 0.
    CGError (*coreDockSendNotification)(CFStringRef name, int) = nullptr;

    ::AXError (*axElementGetWindow)(AXUIElementRef, CGWindowID*) = nullptr;

    /// Serial numbers, objects of a type without a name.
    CFArrayRef (*copyRunningApplicationArray)(int session) = nullptr;
    /// Everything that is known, if no keys are named.
    CFDictionaryRef (*copyApplicationInformation)(int session, CFTypeRef serial, CFArrayRef keys)
        = nullptr;

    static PrivateSymbols load();
};

}
