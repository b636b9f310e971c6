#include "Hosts/MacOS/System/MacHotkeys.h"

#include "Hosts/MacOS/System/CFValues.h"

namespace quorvel {

namespace {

static_assert(HotkeyModifier::command == cmdKey);
static_assert(HotkeyModifier::shift == shiftKey);
static_assert(HotkeyModifier::option == optionKey);
static_assert(HotkeyModifier::control == controlKey);
static_assert(static_cast<OSStatus>(HotkeyStatus::handled) == noErr);
static_assert(static_cast<OSStatus>(HotkeyStatus::notHandled) == eventNotHandledErr);

/// Whether one of the system's own actions is switched on and has these keys.
bool isOfSystem(std::uint32_t keyCode, std::uint32_t modifiers)
{
    CFRef<CFArrayRef> actions;
    if (CopySymbolicHotKeys(actions.out()) != noErr || !actions)
        return false;
    bool isTaken = false;
    forEachIn(actions.get(), [&](CFTypeRef value) {
        const auto action = dictionaryFrom(value);
        if (!action || !truthFrom(valueIn(action, kHISymbolicHotKeyEnabled)).value_or(false))
            return;
        isTaken |= int64From(valueIn(action, kHISymbolicHotKeyCode)) == keyCode
            && int64From(valueIn(action, kHISymbolicHotKeyModifiers)) == modifiers;
    });
    return isTaken;
}

}

class MacHotkeys::Registration final : public HotkeyRegistration {
public:
    Registration(MacHotkeys& owner, std::uint32_t keyCode, std::uint32_t modifiers, HotkeyID id)
        : m_owner(owner)
        , m_keyCode(keyCode)
        , m_modifiers(modifiers)
        , m_id{id.signature, id.id}
    {
        m_owner.m_registrations.push_back(this);
        attempt();
    }
    ~Registration() override
    {
        std::erase(m_owner.m_registrations, this);
        if (!m_ref)
            return;
        UnregisterEventHotKey(m_ref);
        m_owner.registerRefusedAgain();
    }
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;

    HotkeyOutcome outcome() const override { return m_outcome; }
    /// Does nothing once it has succeeded.
    void attempt()
    {
        if (m_ref)
            return;
        const auto status = RegisterEventHotKey(m_keyCode, m_modifiers, m_id,
            GetApplicationEventTarget(), kEventHotKeyNoOptions, &m_ref);
        if (status != noErr)
            m_ref = nullptr;
        if (status == noErr && !isOfSystem(m_keyCode, m_modifiers))
            m_outcome = HotkeyOutcome::registered;
        else if (status == noErr || status == eventHotKeyExistsErr)
            m_outcome = HotkeyOutcome::taken;
        else
            m_outcome = HotkeyOutcome::failed;
    }

private:
    MacHotkeys& m_owner;
    const std::uint32_t m_keyCode;
    const std::uint32_t m_modifiers;
    const EventHotKeyID m_id;
    EventHotKeyRef m_ref = nullptr; ///< null unless it is registered
    HotkeyOutcome m_outcome = HotkeyOutcome::failed;
};

MacHotkeys::MacHotkeys()
{
    const EventTypeSpec pressed{kEventClassKeyboard, kEventHotKeyPressed};
    InstallEventHandler(
        GetApplicationEventTarget(), &handleEvent, 1, &pressed, this, &m_eventHandler);
}

MacHotkeys::~MacHotkeys()
{
    if (m_eventHandler)
        RemoveEventHandler(m_eventHandler);
}

std::unique_ptr<HotkeyRegistration> MacHotkeys::registerHotkey(
    std::uint32_t keyCode, std::uint32_t modifiers, const HotkeyID& id)
{
    return std::make_unique<Registration>(*this, keyCode, modifiers, id);
}

/// The system lets a program have each combination once.
void MacHotkeys::registerRefusedAgain()
{
    bool hasChanged = false;
    for (auto* registration : m_registrations) {
        const auto before = registration->outcome();
        registration->attempt();
        hasChanged |= registration->outcome() != before;
    }
    if (hasChanged)
        outcomesDidChange.emit();
}

OSStatus MacHotkeys::handleEvent(EventHandlerCallRef, EventRef event, void* self)
{
    EventHotKeyID pressed{};
    const auto status = GetEventParameter(event, kEventParamDirectObject, typeEventHotKeyID,
        nullptr, sizeof pressed, nullptr, &pressed);
    if (status != noErr)
        return eventNotHandledErr;
    const auto answer
        = static_cast<MacHotkeys*>(self)->m_handlers.offer({pressed.signature, pressed.id});
    return static_cast<OSStatus>(answer);
}

}
