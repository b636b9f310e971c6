#pragma once

#include <memory>
#include <vector>

#include "Hosts/MacOS/System/System.h"
#include "Quorvel/Platform/HotkeyHandlers.h"

namespace quorvel {

/// Carbon's hot keys, which need no permission of the user. Main thread.
///
/// The system's own shortcuts win over them without a word, so one that the system has too counts
/// as taken. Two programs may have the same one, and then both hear of it.
class MacHotkeys final : public Hotkeys {
public:
    MacHotkeys();
    ~MacHotkeys() override;
    MacHotkeys(const MacHotkeys&) = delete;
    MacHotkeys& operator=(const MacHotkeys&) = delete;

    std::unique_ptr<HotkeyRegistration> registerHotkey(
        std::uint32_t keyCode, std::uint32_t modifiers, const HotkeyID&) override;
    Subscription installHandler(Handler handler) override
    {
        return m_handlers.install(std::move(handler));
    }
    std::uint32_t numberKeyModifiers() const override
    {
        return HotkeyModifier::command | HotkeyModifier::option;
    }

private:
    class Registration;

    static OSStatus handleEvent(EventHandlerCallRef, EventRef, void* self);
    void registerRefusedAgain();

    EventHandlerRef m_eventHandler = nullptr;
    HotkeyHandlers m_handlers;
    std::vector<Registration*> m_registrations;
};

}
