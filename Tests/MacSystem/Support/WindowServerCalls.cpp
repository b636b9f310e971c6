#include <optional>

#include "Quorvel/Skylight/Minimal.h"
#include "Tests/MacSystem/Support/SimulatedMac.h"

#include <dlfcn.h>

namespace quorvel::test {

namespace {

struct Event {
    Point location;
    std::function<void(const Event&)> post = {};
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

/// What the test wants the call to answer, else the truth.
template <typename Ref> Ref answer(const char* call, const std::function<Value()>& truth)
{
    const auto* wanted = SimulatedMac::current().answerFor(call);
    return give<Ref>(wanted ? *wanted : truth());
}

Value valueOf(const ManagedSpace&);
Value valueOf(const ManagedDisplay&);
template <typename Field> Value valueOf(const std::vector<Field>&);

/// As the system writes it; what is absent is none.
template <typename Field> Value valueOf(const Field& field)
{
    if constexpr (std::is_same_v<Field, std::monostate>)
        return {};
    else if constexpr (std::is_same_v<Field, std::string>)
        return text(field);
    else if constexpr (std::is_same_v<Field, Rect>)
        return rectangle(field.x, field.y, field.width, field.height);
    else if constexpr (std::is_floating_point_v<Field>)
        return real(field);
    else if constexpr (requires { field.value(); })
        return field ? valueOf(*field) : Value{};
    else
        return number(static_cast<std::int64_t>(field));
}

template <typename Field> Value valueOf(const std::vector<Field>& fields)
{
    std::vector<Value> values;
    for (const auto& field : fields)
        values.push_back(valueOf(field));
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

Value valueOf(const ManagedSpace& space)
{
    return dictionary({{"id64", valueOf(space.id64)},
        {"ManagedSpaceID", valueOf(space.managedSpaceID)}, {"type", valueOf(space.type)}});
}

Value valueOf(const ManagedDisplay& display)
{
    const auto identifier
        = std::visit([](const auto& known) { return valueOf(known); }, display.identifier);
    return dictionary({{"Display Identifier", identifier}, {"Spaces", valueOf(display.spaces)},
        {"Current Space", valueOf(display.currentSpace)}});
}

Value entryFor(const CGWindowInfo& info)
{
    const auto entry = [](std::string_view key, const auto& field) {
        return std::pair{std::string{key}, valueOf(field)};
    };
    return dictionary({entry(CGWindowKeys::windowNumber, info.windowNumber),
        entry(CGWindowKeys::ownerPID, info.ownerPID), entry(CGWindowKeys::layer, info.layer),
        entry(CGWindowKeys::alpha, info.alpha), entry(CGWindowKeys::bounds, info.bounds),
        entry(CGWindowKeys::ownerName, info.ownerName),
        entry(CGWindowKeys::windowName, info.windowName)});
}

constexpr int kConnection = 77;

int mainConnection()
{
    return kConnection;
}

CFArrayRef copyManagedDisplaySpaces(int connection)
{
    return answer<CFArrayRef>("CopyManagedDisplaySpaces", [connection]() -> Value {
        return connection == kConnection ? valueOf(server().managedDisplaySpaces()) : Value{};
    });
}

CFArrayRef copyWindowsWithOptionsAndTags(
    int, std::uint32_t, CFArrayRef spaces, std::uint32_t options, std::uint64_t*, std::uint64_t*)
{
    return answer<CFArrayRef>("CopyWindowsWithOptionsAndTags",
        [=] { return valueOf(server().windowsOfSpaces(identifiers<SpaceID>(spaces), options)); });
}

CFArrayRef copySpacesForWindows(int, int mask, CFArrayRef windows)
{
    return answer<CFArrayRef>("CopySpacesForWindows", [=] {
        return valueOf(server().spacesOfWindows(
            static_cast<std::uint32_t>(mask), identifiers<WindowID>(windows)));
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
    if (!mac.ignoresDockRect)
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
    return answer<CFArrayRef>("CopyRunningApplicationArray", [] { return array({}); });
}

CFDictionaryRef copyApplicationInformation(int session, CFTypeRef serial, CFArrayRef keys)
{
    if (session != -2 || keys || !serial)
        return nullptr;
    return answer<CFDictionaryRef>(Heap::shared().use(serial).name.c_str(), [] { return Value{}; });
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
    if (!isInSkyLight && name == "CoreDockGetAutoHideEnabled")
        return address(simulatedGetAutoHideEnabled);
    if (!isInSkyLight && name == "CoreDockSetAutoHideEnabled")
        return address(simulatedSetAutoHideEnabled);
    if (!isInSkyLight && name == "CoreDockGetOrientationAndPinning")
        return address(simulatedGetOrientationAndPinning);
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
    return mac.hasSkyLight && std::string_view{path}.ends_with("/SkyLight") ? &mac : nullptr;
}

void* simulatedSymbol(void* library, const char* name)
{
    auto& mac = SimulatedMac::current();
    return mac.symbol(library == &mac, name);
}

CFArrayRef CGWindowListCopyWindowInfo(CGWindowListOption options, CGWindowID)
{
    return answer<CFArrayRef>(__func__, [options] {
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
    if (SimulatedMac::current().failsDisplayCalls)
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
    if (SimulatedMac::current().failsDisplayCalls)
        return kCGErrorFailure;
    const auto display = desktop().displays().displayAt({point.x, point.y});
    *count = display ? 1 : 0;
    if (display && limit > 0)
        displays[0] = raw(*display);
    return kCGErrorSuccess;
}

CFUUIDRef CGDisplayCreateUUIDFromDisplayID(CGDirectDisplayID display)
{
    return answer<CFUUIDRef>(__func__, [display]() -> Value {
        const auto identifier = desktop().displays().identifier(quorvel::DisplayNumber{display});
        return identifier ? uuid(*identifier) : Value{};
    });
}

CGEventRef CGEventCreate(CGEventSourceRef)
{
    if (!SimulatedMac::current().isPointerReadable)
        return nullptr;
    return create<CGEventRef>(
        TypeID::event, "event", Event{desktop().displays().pointerLocation()});
}

CGPoint CGEventGetLocation(CGEventRef event)
{
    const auto location = contentOf<Event>(event).location;
    return CGPointMake(location.x, location.y);
}

CGEventRef CGEventCreateKeyboardEvent(CGEventSourceRef, CGKeyCode keyCode, bool isDown)
{
    const auto post = [keyCode, isDown](const Event& self) {
        server().postKeyEvent(
            keyCode, isDown ? quorvel::KeyAction::down : quorvel::KeyAction::up, self.flags);
    };
    return create<CGEventRef>(TypeID::event, "event", Event{{}, post});
}

CGEventRef CGEventCreateMouseEvent(CGEventSourceRef, CGEventType type, CGPoint point, CGMouseButton)
{
    using quorvel::PointerPost;
    const auto kind = type == kCGEventLeftMouseDown ? PointerPost::pressed
        : type == kCGEventLeftMouseUp               ? PointerPost::released
        : type == kCGEventLeftMouseDragged          ? PointerPost::dragged
                                                    : PointerPost::moved;
    const auto post = [kind](const Event& self) { server().postPointerEvent(kind, self.location); };
    return create<CGEventRef>(TypeID::event, "event", Event{{point.x, point.y}, post});
}

void CGEventSetFlags(CGEventRef event, CGEventFlags flags)
{
    contentOf<Event>(event).flags = flags;
}

void CGEventPost(CGEventTapLocation, CGEventRef event)
{
    const auto& posted = contentOf<Event>(event);
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
