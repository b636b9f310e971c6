#pragma once

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "Quorvel/Platform/HotkeyHandlers.h"

namespace quorvel::test {

/// The system's table of shortcuts, in which other programs have entries too.
class FakeHotkeys final : public Hotkeys {
public:
    /// Of which key, with which modifiers.
    struct Keys {
        std::uint32_t keyCode = 0;
        std::uint32_t modifiers = 0;

        friend bool operator==(const Keys&, const Keys&) = default;
    };

    std::unique_ptr<HotkeyRegistration> registerHotkey(
        std::uint32_t keyCode, std::uint32_t modifiers, const HotkeyID&) override;
    Subscription installHandler(Handler handler) override
    {
        return m_handlers.install(std::move(handler));
    }
    std::unique_ptr<HotkeyRegistration> registerHeld(const HotkeyID&) override;
    void askAgain() override { settle(); }
    std::uint32_t numberKeyModifiers() const override { return HotkeyModifier::command; }

    /// Another program takes a shortcut that nobody has, or gives it back.
    void takeElsewhere(Keys);
    void giveBackElsewhere(Keys);
    /// As on systems that do not tell.
    void giveBackUnnoticed(Keys keys) { std::erase(m_elsewhere, keys); }
    /// The user holds down a shortcut of another program, or nothing any longer.
    void hold(std::optional<Keys> keys) { m_heldDown = keys; }
    /// The user presses these keys. False if no handler has handled it: they are for others.
    bool press(Keys);
    /// Those that this program has in the table.
    std::vector<Keys> registered() const;
    /// Of calls, successful or not.
    int registrations() const { return m_registrations; }
    /// What the handlers say of a press with this identifier.
    HotkeyStatus ask(const HotkeyID& id) const { return m_handlers.offer(id); }

private:
    class Entry;
    class Held;

    bool isTaken(Keys, const Entry* exception) const;
    void settle();

    std::vector<Entry*> m_entries;
    std::vector<Held*> m_heldElsewhere;
    std::optional<Keys> m_heldDown;
    std::vector<Keys> m_elsewhere;
    HotkeyHandlers m_handlers;
    int m_registrations = 0;
};

}
