#include <optional>

#include "Quorvel/Skylight/Minimal.h"
#include "Tests/MacSystem/Support/SimulatedMac.h"

#include <dlfcn.h>

namespace quorvel::test {

namespace {

struct Event final : Object {
    explicit Event(Point point) : Object(TypeID::event), location(point) { }
    std::string description() const override { return "event"; }

    Point location;
    std::function<void(const Event&)> post;
    std::uint64_t flags = 0x100; ///< what is held while it is made
};

FakeDesktop& desktop()
{
    return SimulatedMac::current().desktop();
}

FakeWindowServer& server()
{
    return desktop().windowServer();
}

/// A reference for the caller to release.
template <typename Ref> Ref give(Value value)
{
    const auto ref = value.get();
    if (ref)
        CFRetain(ref);
    return static_cast<Ref>(ref);
}

template <typename Ref> Ref give(const char* call, const std::function<Value()>& truth)
{
    const auto* answer = SimulatedMac::current().answerFor(call);
    return give<Ref>(answer ? *answer : truth());
}

template <typename Identifier> Value numbers(const std::vector<Identifier>& identifiers)
{
    std::vector<Value> values;
    for (const auto identifier : identifiers)
        values.push_back(number(static_cast<std::int64_t>(raw(identifier))));
    return array(std::move(values));
}

template <typename Identifier> std::vector<Identifier> identifiers(CFArrayRef numbers)
{
    std::vector<Identifier> found;
    for (CFIndex i = 0; i < CFArrayGetCount(numbers); ++i) {
        std::int64_t value = 0;
        CFNumberGetValue(static_cast<CFNumberRef>(CFArrayGetValueAtIndex(numbers, i)),
            kCFNumberSInt64Type, &value);
        found.push_back(Identifier{static_cast<std::underlying_type_t<Identifier>>(value)});
    }
    return found;
}

template <typename Field, typename Make>
Value optional(const std::optional<Field>& field, Make make)
{
    return field ? make(*field) : Value{};
}

/// The numbers have the widths that they come in.
Value entryFor(const CGWindowInfo& info)
{
    const auto name = [](const std::string& value) { return text(value); };
    const auto number32
        = [](auto value) { return number(static_cast<std::int64_t>(value), kCFNumberSInt32Type); };
    return dictionary(
        {{std::string{CGWindowKeys::windowNumber}, optional(info.windowNumber, number32)},
            {std::string{CGWindowKeys::ownerPID}, optional(info.ownerPID, number32)},
            {std::string{CGWindowKeys::layer}, optional(info.layer, number32)},
            {std::string{CGWindowKeys::alpha},
                optional(info.alpha, [](float value) { return real(value, kCFNumberFloatType); })},
            {std::string{CGWindowKeys::bounds},
                optional(info.bounds,
                    [](const Rect& r) { return rectangle(r.x, r.y, r.width, r.height); })},
            {std::string{CGWindowKeys::ownerName}, optional(info.ownerName, name)},
            {std::string{CGWindowKeys::windowName}, optional(info.windowName, name)}});
}

Value entryFor(const ManagedSpace& space)
{
    const auto wide = [](auto value) { return number(static_cast<std::int64_t>(value)); };
    return dictionary({{"id64", optional(space.id64, wide)},
        {"ManagedSpaceID", optional(space.managedSpaceID, wide)},
        {"type", optional(space.type, wide)}});
}

Value entryFor(const ManagedDisplay& display)
{
    Value identifier;
    if (const auto* name = std::get_if<std::string>(&display.identifier))
        identifier = text(*name);
    else if (const auto* value = std::get_if<std::int64_t>(&display.identifier))
        identifier = number(*value);
    std::vector<Value> spaces;
    for (const auto& space : display.spaces)
        spaces.push_back(entryFor(space));
    return dictionary({{"Display Identifier", identifier}, {"Spaces", array(std::move(spaces))},
        {"Current Space",
            optional(display.currentSpace, [](const auto& space) { return entryFor(space); })}});
}

constexpr int kConnection = 77;

int mainConnection()
{
    return kConnection;
}

CFArrayRef copyManagedDisplaySpaces(int connection)
{
    return give<CFArrayRef>("CopyManagedDisplaySpaces", [connection]() -> Value {
        const auto displays = server().managedDisplaySpaces();
        if (!displays || connection != kConnection)
            return {};
        std::vector<Value> entries;
        for (const auto& display : *displays)
            entries.push_back(entryFor(display));
        return array(std::move(entries));
    });
}

CFArrayRef copyWindowsWithOptionsAndTags(
    int, std::uint32_t, CFArrayRef spaces, std::uint32_t options, std::uint64_t*, std::uint64_t*)
{
    return give<CFArrayRef>("CopyWindowsWithOptionsAndTags", [=]() -> Value {
        const auto windows = server().windowsOfSpaces(identifiers<SpaceID>(spaces), options);
        return windows ? numbers(*windows) : Value{};
    });
}

CFArrayRef copySpacesForWindows(int, int mask, CFArrayRef windows)
{
    return give<CFArrayRef>("CopySpacesForWindows", [=]() -> Value {
        const auto spaces = server().spacesOfWindows(
            static_cast<std::uint32_t>(mask), identifiers<WindowID>(windows));
        return spaces ? numbers(*spaces) : Value{};
    });
}

std::uint64_t getActiveSpace(int)
{
    return raw(server().activeSpace());
}

void addWindowsToSpaces(int, CFArrayRef windows, CFArrayRef spaces)
{
    server().addWindowsToSpaces(identifiers<WindowID>(windows), identifiers<SpaceID>(spaces));
}

void removeWindowsFromSpaces(int, CFArrayRef windows, CFArrayRef spaces)
{
    server().removeWindowsFromSpaces(identifiers<WindowID>(windows), identifiers<SpaceID>(spaces));
}

void moveWindowsToManagedSpace(int, CFArrayRef windows, std::uint64_t space)
{
    for (const auto id : identifiers<WindowID>(windows))
        desktop().moveToSpace(id, SpaceID{space});
}

void spaceSetEdgeReservation(
    int, std::uint64_t space, int edge, double, double, double, double height)
{
    server().setEdgeReservation(SpaceID{space}, static_cast<ScreenEdge>(edge), height);
}

void setDockRect(int, CGRect rect, int reason, int orientation)
{
    auto& mac = SimulatedMac::current();
    if (!mac.ignoresDockRect())
        mac.dockRect = {
            {rect.origin.x, rect.origin.y, rect.size.width, rect.size.height}, reason, orientation};
}

void getDockRect(int, CGRect* rect, int* reason, unsigned long* orientation)
{
    const auto& dock = SimulatedMac::current().dockRect;
    *rect = {{dock.rect.x, dock.rect.y}, {dock.rect.width, dock.rect.height}};
    *reason = dock.reason;
    *orientation = static_cast<unsigned long>(dock.orientation);
}

// A real system writes the key code with two bytes.
CGError getSymbolicHotKeyValue(int hotKey, int* character, int* keyCode, int* modifiers)
{
    const auto key = server().symbolicHotKey(hotKey);
    if (!key)
        return kCGErrorFailure;
    *reinterpret_cast<std::uint16_t*>(character) = 0xFFFF;
    *reinterpret_cast<std::uint16_t*>(keyCode) = key->keyCode;
    *modifiers = static_cast<int>(key->modifierFlags);
    return kCGErrorSuccess;
}

bool isSymbolicHotKeyEnabled(int hotKey)
{
    return server().isSymbolicHotKeyEnabled(hotKey);
}

CGError setSymbolicHotKeyEnabled(int hotKey, bool isEnabled)
{
    return server().setSymbolicHotKeyEnabled(hotKey, isEnabled) ? kCGErrorSuccess : kCGErrorFailure;
}

/// Serial numbers are texts here, and information is looked up by their description.
CFArrayRef copyRunningApplicationArray(int session)
{
    if (session != -2)
        return nullptr;
    return give<CFArrayRef>("CopyRunningApplicationArray", [] { return array({}); });
}

CFDictionaryRef copyApplicationInformation(int session, CFTypeRef serial, CFArrayRef keys)
{
    const auto* text = objectAs<Object>(serial);
    if (session != -2 || keys || !text)
        return nullptr;
    return give<CFDictionaryRef>(text->description().c_str(), [] { return Value{}; });
}

template <typename Function> void* address(Function* function)
{
    return reinterpret_cast<void*>(function);
}

/// Without the SLS or CGS that their names begin with.
const std::map<std::string, void*>& privateCalls()
{
    static const std::map<std::string, void*> calls{{"MainConnectionID", address(mainConnection)},
        {"CopyManagedDisplaySpaces", address(copyManagedDisplaySpaces)},
        {"CopyWindowsWithOptionsAndTags", address(copyWindowsWithOptionsAndTags)},
        {"CopySpacesForWindows", address(copySpacesForWindows)},
        {"GetActiveSpace", address(getActiveSpace)},
        {"AddWindowsToSpaces", address(addWindowsToSpaces)},
        {"RemoveWindowsFromSpaces", address(removeWindowsFromSpaces)},
        {"MoveWindowsToManagedSpace", address(moveWindowsToManagedSpace)},
        {"SpaceSetEdgeReservation", address(spaceSetEdgeReservation)},
        {"SetDockRectWithOrientation", address(setDockRect)},
        {"GetDockRectWithOrientation", address(getDockRect)},
        {"GetSymbolicHotKeyValue", address(getSymbolicHotKeyValue)},
        {"IsSymbolicHotKeyEnabled", address(isSymbolicHotKeyEnabled)},
        {"SetSymbolicHotKeyEnabled", address(setSymbolicHotKeyEnabled)}};
    return calls;
}

}

void* SimulatedMac::symbol(bool isInSkyLight, const std::string& name) const
{
    if (m_removed.contains(name))
        return nullptr;
    if (!isInSkyLight && name == "_AXUIElementGetWindow")
        return address(simulatedGetWindow);
    if (!isInSkyLight && name == "_LSCopyRunningApplicationArray")
        return address(copyRunningApplicationArray);
    if (!isInSkyLight && name == "_LSCopyApplicationInformation")
        return address(copyApplicationInformation);
    if (!name.starts_with(isInSkyLight ? "SLS" : "CGS"))
        return nullptr;
    const auto found = privateCalls().find(name.substr(3));
    return found == privateCalls().end() ? nullptr : found->second;
}

}

using namespace quorvel::test;

void* simulatedOpen(const char* path, int)
{
    auto& mac = SimulatedMac::current();
    return mac.hasSkyLight() && std::string_view{path}.ends_with("/SkyLight") ? &mac : nullptr;
}

void* simulatedSymbol(void* library, const char* name)
{
    auto& mac = SimulatedMac::current();
    return mac.symbol(library == &mac, name);
}

CFArrayRef CGWindowListCopyWindowInfo(CGWindowListOption options, CGWindowID)
{
    return give<CFArrayRef>(__func__, [options] {
        std::vector<Value> entries;
        server().enumerateWindows(
            options, [&](const auto& info) { entries.push_back(entryFor(info)); });
        return array(std::move(entries));
    });
}

CGDirectDisplayID CGMainDisplayID()
{
    return raw(desktop().displays().mainDisplay());
}

CGError CGGetActiveDisplayList(
    std::uint32_t limit, CGDirectDisplayID* displays, std::uint32_t* count)
{
    if (SimulatedMac::current().failsDisplayCalls())
        return kCGErrorFailure;
    *count = 0;
    for (const auto display : desktop().displays().activeDisplays(limit))
        displays[(*count)++] = raw(display);
    return kCGErrorSuccess;
}

// Counts every display under the point, also those that it had no room for.
CGError CGGetDisplaysWithPoint(
    CGPoint point, std::uint32_t limit, CGDirectDisplayID* displays, std::uint32_t* count)
{
    if (SimulatedMac::current().failsDisplayCalls())
        return kCGErrorFailure;
    const auto display = desktop().displays().displayAt({point.x, point.y});
    *count = display ? 1 : 0;
    if (display && limit > 0)
        displays[0] = raw(*display);
    return kCGErrorSuccess;
}

CFUUIDRef CGDisplayCreateUUIDFromDisplayID(CGDirectDisplayID display)
{
    return give<CFUUIDRef>(__func__, [display]() -> Value {
        const auto identifier = desktop().displays().identifier(quorvel::DisplayNumber{display});
        return identifier ? uuid(*identifier) : Value{};
    });
}

CGEventRef CGEventCreate(CGEventSourceRef)
{
    if (!SimulatedMac::current().isPointerReadable())
        return nullptr;
    return create<CGEventRef, Event>(desktop().displays().pointerLocation());
}

CGPoint CGEventGetLocation(CGEventRef event)
{
    const auto location = expectObject<Event>(event).location;
    return CGPointMake(location.x, location.y);
}

CGEventRef CGEventCreateKeyboardEvent(CGEventSourceRef, CGKeyCode keyCode, bool isDown)
{
    const auto event = create<CGEventRef, Event>(quorvel::Point{});
    expectObject<Event>(event).post = [keyCode, isDown](const Event& self) {
        server().postKeyEvent(
            keyCode, isDown ? quorvel::KeyAction::down : quorvel::KeyAction::up, self.flags);
    };
    return event;
}

CGEventRef CGEventCreateMouseEvent(CGEventSourceRef, CGEventType type, CGPoint point, CGMouseButton)
{
    using quorvel::PointerPost;
    const auto event = create<CGEventRef, Event>(quorvel::Point{point.x, point.y});
    expectObject<Event>(event).post = [type](const Event& self) {
        const auto post = type == kCGEventLeftMouseDown ? PointerPost::pressed
            : type == kCGEventLeftMouseUp               ? PointerPost::released
            : type == kCGEventLeftMouseDragged          ? PointerPost::dragged
                                                        : PointerPost::moved;
        server().postPointerEvent(post, self.location);
    };
    return event;
}

void CGEventSetFlags(CGEventRef event, CGEventFlags flags)
{
    expectObject<Event>(event).flags = flags;
}

void CGEventPost(CGEventTapLocation, CGEventRef event)
{
    const auto& posted = expectObject<Event>(event);
    posted.post(posted);
}

bool CGPreflightScreenCaptureAccess()
{
    return desktop().screenCapture().preflightAccess();
}

bool CGRequestScreenCaptureAccess()
{
    return desktop().screenCapture().requestAccess();
}
