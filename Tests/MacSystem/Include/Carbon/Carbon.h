#pragma once

// What the host uses of Carbon's events, declared for the simulated system.

#include <CoreFoundation/CoreFoundation.h>

extern "C" {
using OSStatus = std::int32_t;
using OSType = std::uint32_t;
using ItemCount = unsigned long;
using ByteCount = unsigned long;
constexpr OSStatus noErr = 0;
constexpr OSStatus eventNotHandledErr = -9874;
constexpr OSStatus eventHotKeyExistsErr = -9878;
constexpr OSStatus eventHotKeyInvalidErr = -9879;
constexpr std::uint32_t cmdKey = 0x100;
constexpr std::uint32_t shiftKey = 0x200;
constexpr std::uint32_t optionKey = 0x800;
constexpr std::uint32_t controlKey = 0x1000;
constexpr OSType kEventClassKeyboard = 0x6B657962; // 'keyb'
constexpr std::uint32_t kEventHotKeyPressed = 5;
constexpr OSType kEventParamDirectObject = 0x2D2D2D2D; // '----'
constexpr OSType typeEventHotKeyID = 0x686B6964; // 'hkid'
constexpr std::uint32_t kEventHotKeyNoOptions = 0;

using EventTargetRef = struct SimulatedEventTarget*;
using EventHandlerRef = struct SimulatedEventHandler*;
using EventHandlerCallRef = struct SimulatedEventHandlerCall*;
using EventRef = const struct SimulatedEvent*;
using EventHotKeyRef = struct SimulatedHotKey*;
struct EventHotKeyID {
    OSType signature;
    std::uint32_t id;
};
struct EventTypeSpec {
    OSType eventClass;
    std::uint32_t eventKind;
};
using EventHandlerUPP = OSStatus (*)(EventHandlerCallRef, EventRef, void*);
EventTargetRef GetApplicationEventTarget();
OSStatus InstallEventHandler(
    EventTargetRef, EventHandlerUPP, ItemCount, const EventTypeSpec*, void*, EventHandlerRef*);
OSStatus RemoveEventHandler(EventHandlerRef);
OSStatus GetEventParameter(
    EventRef, OSType name, OSType type, OSType* actualType, ByteCount, ByteCount*, void*);
OSStatus RegisterEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers, EventHotKeyID,
    EventTargetRef, std::uint32_t options, EventHotKeyRef*);
OSStatus UnregisterEventHotKey(EventHotKeyRef);
OSStatus CopySymbolicHotKeys(CFArrayRef*);
}

#define kHISymbolicHotKeyCode CFSTR("kHISymbolicHotKeyCode")
#define kHISymbolicHotKeyModifiers CFSTR("kHISymbolicHotKeyModifiers")
#define kHISymbolicHotKeyEnabled CFSTR("kHISymbolicHotKeyEnabled")
