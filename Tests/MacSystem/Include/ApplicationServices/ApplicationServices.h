#pragma once

// What the host uses of accessibility, the window list and the displays, declared for the
// simulated system.

#include <CoreFoundation/CoreFoundation.h>
#include <dispatch/dispatch.h>

#include <sys/types.h>

extern "C" {
struct CGPoint {
    double x;
    double y;
};
struct CGSize {
    double width;
    double height;
};
struct CGRect {
    CGPoint origin;
    CGSize size;
};
inline CGPoint CGPointMake(double x, double y) { return {x, y}; }
inline CGSize CGSizeMake(double width, double height) { return {width, height}; }
bool CGRectMakeWithDictionaryRepresentation(CFDictionaryRef, CGRect*);

using FSEventStreamRef = struct FSEventStreamObject*;
using ConstFSEventStreamRef = const struct FSEventStreamObject*;
using FSEventStreamCreateFlags = std::uint32_t;
using FSEventStreamEventFlags = std::uint32_t;
using FSEventStreamEventId = std::uint64_t;
constexpr FSEventStreamCreateFlags kFSEventStreamCreateFlagUseCFTypes = 1;
constexpr FSEventStreamCreateFlags kFSEventStreamCreateFlagFileEvents = 16;
constexpr FSEventStreamEventId kFSEventStreamEventIdSinceNow = ~FSEventStreamEventId{0};
struct FSEventStreamContext {
    CFIndex version;
    void* info;
    CFTypeRef (*retain)(CFTypeRef);
    void (*release)(CFTypeRef);
    CFStringRef (*copyDescription)(CFTypeRef);
};
using FSEventStreamCallback = void (*)(ConstFSEventStreamRef, void* info, std::size_t count,
    void* paths, const FSEventStreamEventFlags*, const FSEventStreamEventId*);
FSEventStreamRef FSEventStreamCreate(CFAllocatorRef, FSEventStreamCallback, FSEventStreamContext*,
    CFArrayRef paths, FSEventStreamEventId since, double latency, FSEventStreamCreateFlags);
void FSEventStreamSetDispatchQueue(FSEventStreamRef, dispatch_queue_t);
Boolean FSEventStreamStart(FSEventStreamRef);
void FSEventStreamStop(FSEventStreamRef);
void FSEventStreamInvalidate(FSEventStreamRef);
void FSEventStreamRelease(FSEventStreamRef);

using CGWindowID = std::uint32_t;
using CGWindowListOption = std::uint32_t;
constexpr CGWindowID kCGNullWindowID = 0;
CFArrayRef CGWindowListCopyWindowInfo(CGWindowListOption, CGWindowID relativeTo);

enum CGError : std::int32_t { kCGErrorSuccess = 0, kCGErrorFailure = 1000 };
using CGDirectDisplayID = std::uint32_t;
constexpr CGDirectDisplayID kCGNullDirectDisplay = 0;
CGDirectDisplayID CGMainDisplayID();
CGError CGGetActiveDisplayList(std::uint32_t limit, CGDirectDisplayID*, std::uint32_t* count);
CGError CGGetDisplaysWithPoint(
    CGPoint, std::uint32_t limit, CGDirectDisplayID*, std::uint32_t* count);
CFUUIDRef CGDisplayCreateUUIDFromDisplayID(CGDirectDisplayID);

using CGEventRef = struct CGEventObject*;
using CGEventSourceRef = struct CGEventSourceObject*;
CGEventRef CGEventCreate(CGEventSourceRef);
CGPoint CGEventGetLocation(CGEventRef);
using CGKeyCode = std::uint16_t;
enum CGEventFlags : std::uint64_t { };
enum CGEventType : std::uint32_t {
    kCGEventLeftMouseDown = 1,
    kCGEventLeftMouseUp = 2,
    kCGEventMouseMoved = 5,
    kCGEventLeftMouseDragged = 6,
};
enum CGMouseButton : std::uint32_t { kCGMouseButtonLeft = 0 };
enum CGEventTapLocation : std::uint32_t { kCGHIDEventTap = 0 };
CGEventRef CGEventCreateKeyboardEvent(CGEventSourceRef, CGKeyCode, bool isDown);
CGEventRef CGEventCreateMouseEvent(CGEventSourceRef, CGEventType, CGPoint, CGMouseButton);
void CGEventSetFlags(CGEventRef, CGEventFlags);
void CGEventPost(CGEventTapLocation, CGEventRef);
bool CGPreflightScreenCaptureAccess();
bool CGRequestScreenCaptureAccess();

enum AXError : std::int32_t {
    kAXErrorSuccess = 0,
    kAXErrorFailure = -25200,
    kAXErrorIllegalArgument = -25201,
};
enum AXValueType : std::uint32_t {
    kAXValueTypeCGPoint = 1,
    kAXValueTypeCGSize = 2,
    kAXValueTypeCGRect = 3,
    kAXValueTypeAXError = 5,
};
using AXValueRef = const struct AXValueObject*;
CFTypeID AXValueGetTypeID();
AXValueRef AXValueCreate(AXValueType, const void* value);
Boolean AXValueGetValue(AXValueRef, AXValueType, void* value);

extern const CFStringRef kAXTrustedCheckOptionPrompt;
Boolean AXIsProcessTrusted();
Boolean AXIsProcessTrustedWithOptions(CFDictionaryRef);

using AXUIElementRef = const struct AXUIElementObject*;
CFTypeID AXUIElementGetTypeID();
AXUIElementRef AXUIElementCreateSystemWide();
AXUIElementRef AXUIElementCreateApplication(pid_t);
AXError AXUIElementSetMessagingTimeout(AXUIElementRef, float seconds);
AXError AXUIElementCopyAttributeValue(AXUIElementRef, CFStringRef attribute, CFTypeRef* value);
AXError AXUIElementIsAttributeSettable(AXUIElementRef, CFStringRef attribute, Boolean* settable);
AXError AXUIElementSetAttributeValue(AXUIElementRef, CFStringRef attribute, CFTypeRef value);
AXError AXUIElementPerformAction(AXUIElementRef, CFStringRef action);

using AXObserverRef = struct AXObserverObject*;
using AXObserverCallback
    = void (*)(AXObserverRef, AXUIElementRef, CFStringRef notification, void* context);
AXError AXObserverCreate(pid_t, AXObserverCallback, AXObserverRef*);
AXError AXObserverAddNotification(
    AXObserverRef, AXUIElementRef, CFStringRef notification, void* context);
AXError AXObserverRemoveNotification(AXObserverRef, AXUIElementRef, CFStringRef notification);
CFRunLoopSourceRef AXObserverGetRunLoopSource(AXObserverRef);
}
