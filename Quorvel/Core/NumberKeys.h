#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "Quorvel/Core/Bar.h"
#include "Quorvel/Core/KeyboardShortcut.h"
#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Hotkeys.h"
#include "Quorvel/Platform/WeakOwner.h"

namespace quorvel {

class HotkeyManager;
class UserSettings;

/// The keys 1 to 9 as shortcuts for the items of the bar, while the settings have them on: with
/// modifiers they use an item as a click does, with Shift besides they ask for another window of
/// its application. Main thread.
class NumberKeys {
public:
    /// By their place on the keyboard, which is the same on every layout.
    static constexpr std::array<std::uint32_t, 9> kKeyCodes{18, 19, 20, 21, 23, 22, 26, 28, 25};
    /// Of the shortcuts' identifiers, and of those with Shift.
    static constexpr std::uint32_t kFirstID = 11;
    static constexpr std::uint32_t kFirstShiftedID = 21;

    /// What is stored can be anything: without a usable modifier, the host's own apply.
    static std::uint32_t modifiersThatHold(
        const std::optional<std::uint32_t>& stored, const Hotkeys&);

    /// Suspended together with the first manager's shortcut, so that all keys can be recorded;
    /// those that are the managers' own are left to them. Null hotkeys: the system has none. What
    /// is referred to outlives it.
    NumberKeys(Hotkeys*, std::vector<const HotkeyManager*>, UserSettings&, Dispatch&);

    /// On the turn after the press; the place counts from 0.
    std::function<void(std::size_t place, ItemUse)> onPressed;

    /// They are on, and nothing suspends them.
    bool isInUse() const { return !m_wanted.empty(); }
    /// Of those that are in use, the ones that another program has.
    const Published<std::vector<KeyboardShortcut>>& taken() const { return m_taken; }

private:
    struct Combination {
        std::uint32_t keyCode = 0;
        std::uint32_t modifiers = 0;
        std::uint32_t id = 0;

        friend bool operator==(const Combination&, const Combination&) = default;
    };

    /// None while they are off.
    std::vector<Combination> wanted() const;
    void update();
    void updateTaken();
    HotkeyStatus handleHotkey(const HotkeyID&);

    Hotkeys* const m_hotkeys;
    const std::vector<const HotkeyManager*> m_managers; ///< one at least
    UserSettings& m_settings;
    Dispatch& m_dispatch;
    std::vector<Combination> m_wanted; ///< each has a registration
    std::vector<std::unique_ptr<HotkeyRegistration>> m_registrations;
    Published<std::vector<KeyboardShortcut>> m_taken;
    std::vector<Subscription> m_subscriptions;
    WeakOwner<NumberKeys> m_weak{*this};
};

}
