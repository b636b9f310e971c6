#include <algorithm>

#include <Carbon/Carbon.h>

#include "Tests/MacSystem/Support/SimulatedMac.h"

/// A registration of the program's; the system has one for each combination.
struct SimulatedHotKey {
    std::uint32_t keyCode;
    std::uint32_t modifiers;
    EventHotKeyID id;
};
struct SimulatedEvent {
    EventHotKeyID pressed;
};

namespace quorvel::test {

namespace {

constexpr std::uint32_t kKeys = 0x80;

struct HotKeyHandler {
    EventHandlerUPP call = nullptr;
    void* context = nullptr;
};
HotKeyHandler s_handler;
std::vector<SimulatedHotKey*> s_hotKeys;

SimulatedHotKey* findHotKey(std::uint32_t keyCode, std::uint32_t modifiers)
{
    auto found = std::ranges::find_if(s_hotKeys, [&](auto* candidate) {
        return candidate->keyCode == keyCode && candidate->modifiers == modifiers;
    });
    return found == s_hotKeys.end() ? nullptr : *found;
}

}

std::optional<std::int32_t> SimulatedMac::pressHotkey(
    std::uint32_t keyCode, std::uint32_t modifiers)
{
    const auto* pressed = findHotKey(keyCode, modifiers);
    if (!pressed || !s_handler.call)
        return {};
    const SimulatedEvent event{pressed->id};
    return s_handler.call(nullptr, &event, s_handler.context);
}

std::size_t SimulatedMac::hotkeyCount()
{
    return s_hotKeys.size() + (s_handler.call ? 1 : 0);
}

}

using namespace quorvel::test;

EventTargetRef GetApplicationEventTarget()
{
    static char target;
    return reinterpret_cast<EventTargetRef>(&target);
}

OSStatus InstallEventHandler(EventTargetRef target, EventHandlerUPP call, ItemCount count,
    const EventTypeSpec* types, void* context, EventHandlerRef* ref)
{
    if (target == GetApplicationEventTarget() && count == 1
        && types->eventClass == kEventClassKeyboard && types->eventKind == kEventHotKeyPressed)
        s_handler = {call, context};
    *ref = reinterpret_cast<EventHandlerRef>(&s_handler);
    return noErr;
}

OSStatus RemoveEventHandler(EventHandlerRef)
{
    s_handler = {};
    return noErr;
}

OSStatus GetEventParameter(
    EventRef event, OSType name, OSType type, OSType*, ByteCount size, ByteCount*, void* value)
{
    if (SimulatedMac::current().answerFor("GetEventParameter") || name != kEventParamDirectObject
        || type != typeEventHotKeyID || size != sizeof(EventHotKeyID))
        return -9870;
    *static_cast<EventHotKeyID*>(value) = event->pressed;
    return noErr;
}

OSStatus RegisterEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers, EventHotKeyID id,
    EventTargetRef, std::uint32_t, EventHotKeyRef* ref)
{
    if (keyCode >= kKeys)
        return eventHotKeyInvalidErr;
    if (findHotKey(keyCode, modifiers))
        return eventHotKeyExistsErr;
    *ref = s_hotKeys.emplace_back(new SimulatedHotKey{keyCode, modifiers, id});
    return noErr;
}

OSStatus UnregisterEventHotKey(EventHotKeyRef ref)
{
    std::erase(s_hotKeys, ref);
    delete ref;
    return noErr;
}

OSStatus CopySymbolicHotKeys(CFArrayRef* actions)
{
    const auto* answer = SimulatedMac::current().answerFor("CopySymbolicHotKeys");
    if (!answer)
        return eventHotKeyInvalidErr;
    *actions = static_cast<CFArrayRef>(CFRetain(answer->get()));
    return noErr;
}
