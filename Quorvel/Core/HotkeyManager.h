#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "Quorvel/Core/KeyboardShortcut.h"
#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Hotkeys.h"
#include "Quorvel/Platform/WeakOwner.h"

namespace quorvel {

class UserSettings;
struct UserSettingsData;

/// What a shortcut is for: of each there is at most one.
enum class HotkeyPurpose {
    applications, ///< opens their list
    windows, ///< opens their list
    bar, ///< sends it away, or gets it back; nobody needs it unless bars hide
};

/// A shortcut that works in every program. It follows the settings, whoever changes them;
/// until the user records one there is none. Main thread.
class HotkeyManager {
public:
    enum class State {
        none, ///< there is no shortcut, nobody needs it, or it is suspended
        registered,
        taken, ///< another program has it
        doubled, ///< an earlier manager has it
        failed, ///< the system refuses it
    };

    static constexpr HotkeyID hotkeyID{0x5152564C, 1}; ///< "QRVL"
    static constexpr HotkeyID findHotkeyID{hotkeyID.signature, 3};
    static constexpr HotkeyID barHotkeyID{hotkeyID.signature, 4};

    /// The one that opens the applications. Null where the system has no such shortcuts: they are
    /// stored all the same.
    HotkeyManager(Hotkeys*, UserSettings&, Dispatch&);
    /// Another one. The same keys are left to the earlier managers, one at least, which outlive
    /// this one; all are suspended together.
    HotkeyManager(
        Hotkeys*, UserSettings&, Dispatch&, HotkeyPurpose, std::vector<HotkeyManager*> earlier);
    ~HotkeyManager();
    HotkeyManager(const HotkeyManager&) = delete;
    HotkeyManager& operator=(const HotkeyManager&) = delete;

    /// The running program's instance. Use only where the program is wired together.
    static HotkeyManager& shared();

    /// On the turn after the press.
    std::function<void()> onHotkeyPressed;

    bool isAvailable() const { return m_hotkeys != nullptr; }
    const Published<std::optional<KeyboardShortcut>>& currentShortcut() const
    {
        return m_currentShortcut;
    }
    /// The same, but absent while nobody needs it: its keys are free for others.
    const Published<std::optional<KeyboardShortcut>>& wantedShortcut() const
    {
        return m_wantedShortcut;
    }
    /// Stores it and registers it anew, even if it is the one that was there. Absent: none.
    void setCurrentShortcut(std::optional<KeyboardShortcut>);
    /// From a pressed key (the low 16 bits of its code) and `KeyModifier` flags. False, and nothing
    /// changes, without a modifier that a shortcut can have.
    bool recordShortcut(std::uint32_t keyCode, std::uint64_t modifierFlags);

    const Published<State>& state() const { return m_state; }
    /// Until what it returns is dropped, no shortcut is registered, and keys can be recorded.
    [[nodiscard]] Subscription suspend();
    const Published<bool>& isSuspended() const { return m_isSuspended; }

private:
    using Field = std::optional<std::uint32_t>;
    struct Fields {
        Field& keyCode;
        Field& modifiers;
    };
    Fields fields(UserSettingsData&) const;
    HotkeyID ownID() const;
    bool isWanted() const;
    bool isLeftToEarlier() const;
    HotkeyStatus handleHotkey(const HotkeyID&);
    void loadShortcut();
    void save(const std::optional<KeyboardShortcut>&);
    void reregister();
    void updateState();
    void changeSuspensions(int by);

    Hotkeys* const m_hotkeys;
    UserSettings& m_settings;
    Dispatch& m_dispatch;
    const HotkeyPurpose m_purpose;
    const std::vector<HotkeyManager*> m_earlier; ///< none before the first one
    Published<std::optional<KeyboardShortcut>> m_currentShortcut;
    Published<std::optional<KeyboardShortcut>> m_wantedShortcut;
    Published<State> m_state;
    Published<bool> m_isSuspended;
    int m_suspensions = 0;
    Subscription m_settingsChange;
    std::vector<Subscription> m_earlierChanges;
    Subscription m_outcomeChange;
    Subscription m_eventHandler;
    std::unique_ptr<HotkeyRegistration> m_hotkeyRef; ///< null if there is nothing to register
    WeakOwner<HotkeyManager> m_weak{*this};
};

}
