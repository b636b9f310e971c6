#include "Hosts/MacOS/System/MacWindowServer.h"

#include <algorithm>
#include <cmath>

#include "Hosts/MacOS/System/CFValues.h"

namespace quorvel {

namespace {

template <typename Identifier>
CFRef<CFArrayRef> makeNumbersOf(const std::vector<Identifier>& identifiers)
{
    std::vector<std::uint64_t> numbers;
    for (const Identifier identifier : identifiers)
        numbers.push_back(raw(identifier));
    return makeNumbers(numbers);
}

template <typename Identifier> std::vector<Identifier> identifiersFrom(CFArrayRef array)
{
    std::vector<Identifier> identifiers;
    for (const std::uint64_t number : numbersFrom(array))
        identifiers.push_back(Identifier{static_cast<std::underlying_type_t<Identifier>>(number)});
    return identifiers;
}

template <typename Visitor> Listing forEachWindow(std::uint32_t options, const Visitor& visitor)
{
    const AutoreleasePool pool;
    // Null where nobody is logged in at the screen.
    const auto windows
        = CFRef<CFArrayRef>::adopt(CGWindowListCopyWindowInfo(options, kCGNullWindowID));
    if (!arrayFrom(windows.get()))
        return Listing::failed;
    forEachIn(windows.get(), [&](CFTypeRef entry) {
        if (const CFDictionaryRef window = dictionaryFrom(entry))
            visitor(window);
    });
    return Listing::complete;
}

constexpr int kBottom = 2; ///< the Dock's orientation

bool isAbout(const CGRect& one, const CGRect& other)
{
    const auto isNear = [](double a, double b) { return std::abs(a - b) < 1; };
    return isNear(one.origin.x, other.origin.x) && isNear(one.origin.y, other.origin.y)
        && isNear(one.size.width, other.size.width) && isNear(one.size.height, other.size.height);
}

CGEventType eventType(PointerPost post)
{
    switch (post) {
    case PointerPost::pressed:
        return kCGEventLeftMouseDown;
    case PointerPost::dragged:
        return kCGEventLeftMouseDragged;
    case PointerPost::released:
        return kCGEventLeftMouseUp;
    case PointerPost::moved:
        break;
    }
    return kCGEventMouseMoved;
}

}

MacWindowServer::MacWindowServer(const PrivateSymbols& symbols, DisplaySpaces displaySpaces,
    std::optional<std::string> windowSession)
    : m_symbols(symbols)
    , m_displaySpaces(displaySpaces)
    , m_windowSession(std::move(windowSession))
{
}

int MacWindowServer::connection() const
{
    return m_symbols.mainConnectionID ? m_symbols.mainConnectionID() : 0;
}

Listing MacWindowServer::enumerateWindows(std::uint32_t options, const WindowVisitor& visitor) const
{
    return forEachWindow(
        options, [&](CFDictionaryRef window) { visitor(m_decoder.decode(window)); });
}

Listing MacWindowServer::enumerateWindows(
    ProcessID owner, std::uint32_t options, const WindowVisitor& visitor) const
{
    // The system lists all or nothing; at least the texts of the others are not read.
    return forEachWindow(options, [&](CFDictionaryRef window) {
        if (m_decoder.ownerPID(window) == owner)
            visitor(m_decoder.decode(window));
    });
}

std::optional<std::uint32_t> MacWindowServer::nativeWindowNumber(WindowID window) const
{
    return raw(window);
}

std::optional<std::vector<ManagedDisplay>> MacWindowServer::managedDisplaySpaces() const
{
    if (!m_symbols.copyManagedDisplaySpaces)
        return {};
    const auto displays = CFRef<CFTypeRef>::adopt(m_symbols.copyManagedDisplaySpaces(connection()));
    const CFArrayRef array = arrayFrom(displays.get());
    return array ? std::optional{managedDisplaysFrom(array)} : std::nullopt;
}

std::optional<std::vector<WindowID>> MacWindowServer::windowsOfSpaces(
    const std::vector<SpaceID>& spaces, std::uint32_t options) const
{
    if (!m_symbols.copyWindowsWithOptionsAndTags)
        return {};
    constexpr std::uint32_t anyOwner = 0;
    std::uint64_t setTags = 0;
    std::uint64_t clearTags = 0;
    const auto numbers = makeNumbersOf(spaces);
    const auto windows = CFRef<CFTypeRef>::adopt(m_symbols.copyWindowsWithOptionsAndTags(
        connection(), anyOwner, numbers.get(), options, &setTags, &clearTags));
    const CFArrayRef array = arrayFrom(windows.get());
    return array ? std::optional{identifiersFrom<WindowID>(array)} : std::nullopt;
}

std::optional<std::vector<SpaceID>> MacWindowServer::spacesOfWindows(
    std::uint32_t mask, const std::vector<WindowID>& windows) const
{
    if (!m_symbols.copySpacesForWindows)
        return {};
    const auto numbers = makeNumbersOf(windows);
    const auto spaces = CFRef<CFTypeRef>::adopt(
        m_symbols.copySpacesForWindows(connection(), static_cast<int>(mask), numbers.get()));
    const CFArrayRef array = arrayFrom(spaces.get());
    return array ? std::optional{identifiersFrom<SpaceID>(array)} : std::nullopt;
}

SpaceID MacWindowServer::activeSpace() const
{
    return SpaceID{m_symbols.getActiveSpace ? m_symbols.getActiveSpace(connection()) : 0};
}

std::optional<std::string> MacWindowServer::spaceName(SpaceID) const
{
    return {};
}

bool MacWindowServer::displaysHaveSeparateSpaces() const
{
    return m_displaySpaces == DisplaySpaces::separate;
}

void MacWindowServer::addWindowsToSpaces(
    const std::vector<WindowID>& windows, const std::vector<SpaceID>& spaces)
{
    if (!m_symbols.addWindowsToSpaces)
        return;
    const auto windowNumbers = makeNumbersOf(windows);
    const auto spaceNumbers = makeNumbersOf(spaces);
    m_symbols.addWindowsToSpaces(connection(), windowNumbers.get(), spaceNumbers.get());
}

void MacWindowServer::removeWindowsFromSpaces(
    const std::vector<WindowID>& windows, const std::vector<SpaceID>& spaces)
{
    if (!m_symbols.removeWindowsFromSpaces)
        return;
    const auto windowNumbers = makeNumbersOf(windows);
    const auto spaceNumbers = makeNumbersOf(spaces);
    m_symbols.removeWindowsFromSpaces(connection(), windowNumbers.get(), spaceNumbers.get());
}

bool MacWindowServer::setEdgeReservation(SpaceID space, ScreenEdge edge, double height)
{
    if (!m_symbols.spaceSetEdgeReservation)
        return false;
    m_symbols.spaceSetEdgeReservation(
        connection(), raw(space), static_cast<int>(edge), 0, 0, 0, height);
    return true;
}

// MARK: The Dock's rectangle

MacWindowServer::DockPlace MacWindowServer::dockPlace() const
{
    DockPlace place;
    unsigned long orientation = 0;
    m_symbols.getDockRect(connection(), &place.rect, &place.reason, &orientation);
    place.orientation = static_cast<int>(orientation);
    return place;
}

void MacWindowServer::setDockPlace(const DockPlace& place)
{
    m_symbols.setDockRect(connection(), place.rect, place.reason, place.orientation);
}

bool MacWindowServer::setDockRectangle(const DockRectangle& dock)
{
    if (!canSetDockRectangle())
        return false;
    if (!m_dockBefore)
        m_dockBefore = dockPlace();
    const auto& [display, wanted] = dock;
    const CGRect rect{CGPointMake(wanted.x, wanted.y), CGSizeMake(wanted.width, wanted.height)};
    // What the reason means is not known, so it stays what it was.
    setDockPlace({rect, m_dockBefore->reason, kBottom});
    // Nor what the call answers.
    const bool isTaken = isAbout(dockPlace().rect, rect);
    if (isTaken)
        m_dockRectangles[display] = rect;
    else if (m_dockRectangles.empty())
        withdrawDockRectangle();
    return isTaken;
}

void MacWindowServer::clearDockRectangle(DisplayNumber display)
{
    const auto isShown = [shown = dockPlace().rect](
                             const auto& registered) { return isAbout(shown, registered.second); };
    // A Dock that has started anew has registered its own since, which stays.
    const bool isOurs = std::ranges::any_of(m_dockRectangles, isShown);
    if (m_dockRectangles.erase(display) == 0 || !m_dockBefore)
        return;
    if (!isOurs && m_dockRectangles.empty())
        return m_dockBefore.reset();
    if (m_dockRectangles.empty())
        return withdrawDockRectangle();
    if (isOurs)
        setDockPlace({m_dockRectangles.begin()->second, m_dockBefore->reason, kBottom});
}

void MacWindowServer::withdrawDockRectangle()
{
    setDockPlace(*m_dockBefore);
    m_dockBefore.reset();
}

std::optional<SymbolicHotKey> MacWindowServer::symbolicHotKey(int identifier) const
{
    constexpr int noKey = 0xFFFF; // what an action without keys has
    int character = 0;
    int keyCode = 0;
    int modifiers = 0;
    if (!m_symbols.getSymbolicHotKeyValue
        || m_symbols.getSymbolicHotKeyValue(identifier, &character, &keyCode, &modifiers)
            != kCGErrorSuccess
        || keyCode < 0 || keyCode >= noKey)
        return {};
    return SymbolicHotKey{
        static_cast<std::uint16_t>(keyCode), static_cast<std::uint32_t>(modifiers)};
}

bool MacWindowServer::isSymbolicHotKeyEnabled(int identifier) const
{
    return m_symbols.isSymbolicHotKeyEnabled && m_symbols.isSymbolicHotKeyEnabled(identifier);
}

bool MacWindowServer::setSymbolicHotKeyEnabled(int identifier, bool isEnabled)
{
    return m_symbols.setSymbolicHotKeyEnabled
        && m_symbols.setSymbolicHotKeyEnabled(identifier, isEnabled) == kCGErrorSuccess;
}

void MacWindowServer::postKeyEvent(
    std::uint16_t keyCode, KeyAction action, std::uint64_t modifierFlags)
{
    const auto event = CFRef<CGEventRef>::adopt(
        CGEventCreateKeyboardEvent(nullptr, keyCode, action == KeyAction::down));
    if (!event)
        return;
    // A new event carries the modifiers that are held at the moment.
    CGEventSetFlags(event.get(), static_cast<CGEventFlags>(modifierFlags));
    CGEventPost(kCGHIDEventTap, event.get());
}

void MacWindowServer::postPointerEvent(PointerPost post, Point at)
{
    const auto event = CFRef<CGEventRef>::adopt(CGEventCreateMouseEvent(
        nullptr, eventType(post), CGPointMake(at.x, at.y), kCGMouseButtonLeft));
    if (event)
        CGEventPost(kCGHIDEventTap, event.get());
}

void MacWindowServer::toggleShowingDesktop()
{
    if (m_symbols.coreDockSendNotification)
        m_symbols.coreDockSendNotification(CFSTR("com.apple.showdesktop.awake"), 0);
}

// MARK: The program's own windows

std::optional<std::vector<SpaceID>> MacWindowServer::currentSpaces() const
{
    const auto displays = managedDisplaySpaces();
    if (!displays)
        return {};
    std::vector<SpaceID> spaces;
    for (const ManagedDisplay& display : *displays) {
        const auto current = display.currentSpace.value_or(ManagedSpace{});
        if (const auto id = current.id64 ? current.id64 : current.managedSpaceID)
            spaces.push_back(SpaceID{*id});
    }
    return spaces.empty() ? std::nullopt : std::optional{spaces};
}

std::optional<std::vector<SpaceID>> MacWindowServer::spacesOfOwnWindow(WindowID window) const
{
    return spacesOfWindows(kAllSpacesMask, {window});
}

bool MacWindowServer::moveOwnWindow(WindowID window, SpaceID space) const
{
    if (!m_symbols.moveWindowsToManagedSpace)
        return false;
    const auto windows = makeNumbersOf(std::vector{window});
    m_symbols.moveWindowsToManagedSpace(connection(), windows.get(), raw(space));
    return spacesOfOwnWindow(window) == std::vector{space};
}

}
