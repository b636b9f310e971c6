#include "Quorvel/Core/HotkeyManager.h"

#include <algorithm>
#include <utility>

#include "Quorvel/Core/UserSettings.h"

namespace quorvel {

HotkeyManager::HotkeyManager(Hotkeys* hotkeys, UserSettings& settings, Dispatch& dispatch)
    : HotkeyManager(hotkeys, settings, dispatch, HotkeyPurpose::applications, {})
{
}

HotkeyManager::HotkeyManager(Hotkeys* hotkeys, UserSettings& settings, Dispatch& dispatch,
    HotkeyPurpose purpose, std::vector<HotkeyManager*> earlier)
    : m_hotkeys(hotkeys)
    , m_settings(settings)
    , m_dispatch(dispatch)
    , m_purpose(purpose)
    , m_earlier(std::move(earlier))
    , m_settingsChange(settings.data().subscribe([this](auto&) { loadShortcut(); }))
{
    if (m_hotkeys) {
        m_outcomeChange = m_hotkeys->outcomesDidChange.subscribe([this] { updateState(); });
        m_eventHandler
            = m_hotkeys->installHandler([this](auto& pressed) { return handleHotkey(pressed); });
    }
    auto follow = [this](auto& source) {
        m_earlierChanges.push_back(source.subscribe([this](auto&) { reregister(); }));
    };
    for (auto* manager : m_earlier)
        follow(manager->wantedShortcut());
    if (!m_earlier.empty())
        follow(m_earlier.front()->isSuspended());
    loadShortcut();
}

HotkeyManager::~HotkeyManager() = default;

// MARK: The shortcut

HotkeyManager::Fields HotkeyManager::fields(UserSettingsData& data) const
{
    switch (m_purpose) {
    case HotkeyPurpose::applications:
        break;
    case HotkeyPurpose::windows:
        return {data.more.findKeyCode, data.more.findModifiers};
    case HotkeyPurpose::bar:
        return {data.more.barKeyCode, data.more.barModifiers};
    }
    return {data.hotkeyKeyCode, data.hotkeyModifiers};
}

HotkeyID HotkeyManager::ownID() const
{
    switch (m_purpose) {
    case HotkeyPurpose::applications:
        break;
    case HotkeyPurpose::windows:
        return findHotkeyID;
    case HotkeyPurpose::bar:
        return barHotkeyID;
    }
    return hotkeyID;
}

bool HotkeyManager::isWanted() const
{
    return m_purpose != HotkeyPurpose::bar || m_settings.hidesBar();
}

/// Of two registrations of one program the system might honour either.
bool HotkeyManager::isLeftToEarlier() const
{
    auto& mine = m_wantedShortcut.value();
    return mine && std::ranges::any_of(m_earlier, [&](auto* manager) {
        auto& its = manager->wantedShortcut().value();
        return its && mine->keyCode == its->keyCode
            && (mine->modifiers & HotkeyModifier::all) == (its->modifiers & HotkeyModifier::all);
    });
}

void HotkeyManager::loadShortcut()
{
    auto data = m_settings.data().value();
    auto [keyCode, modifiers] = fields(data);
    std::optional<KeyboardShortcut> stored;
    if (keyCode && modifiers)
        stored = KeyboardShortcut{*keyCode, *modifiers};
    auto wanted = isWanted() ? stored : std::nullopt;
    if (stored == m_currentShortcut.value() && wanted == m_wantedShortcut.value())
        return;
    m_hotkeyRef.reset(); // whoever hears of the new one may want the keys of the old one
    m_currentShortcut.set(stored);
    m_wantedShortcut.set(wanted);
    reregister();
}

void HotkeyManager::setCurrentShortcut(std::optional<KeyboardShortcut> shortcut)
{
    bool isSame = shortcut == m_currentShortcut.value();
    save(shortcut);
    if (isSame)
        reregister();
}

/// Both fields at once, so that nobody sees one of the old shortcut and one of the new.
void HotkeyManager::save(const std::optional<KeyboardShortcut>& shortcut)
{
    auto data = m_settings.data().value();
    auto [keyCode, modifiers] = fields(data);
    keyCode.reset();
    modifiers.reset();
    if (shortcut) {
        keyCode = shortcut->keyCode;
        modifiers = shortcut->modifiers;
    }
    m_settings.setData(std::move(data));
}

bool HotkeyManager::recordShortcut(std::uint32_t keyCode, std::uint64_t modifierFlags)
{
    auto modifiers = hotkeyModifiersFrom(modifierFlags);
    if (modifiers == 0)
        return false;
    setCurrentShortcut(KeyboardShortcut{keyCode & 0xFFFF, modifiers});
    return true;
}

// MARK: Its registration

void HotkeyManager::reregister()
{
    m_hotkeyRef.reset();
    auto& shortcut = m_wantedShortcut.value();
    bool isHeld
        = m_suspensions > 0 || (!m_earlier.empty() && m_earlier.front()->isSuspended().value());
    if (m_hotkeys && shortcut && !isHeld && !isLeftToEarlier())
        m_hotkeyRef = m_hotkeys->registerHotkey(shortcut->keyCode, shortcut->modifiers, ownID());
    updateState();
}

void HotkeyManager::updateState()
{
    if (!m_hotkeyRef)
        return m_state.set(m_hotkeys && isLeftToEarlier() ? State::doubled : State::none);
    switch (m_hotkeyRef->outcome()) {
    case HotkeyOutcome::registered:
        return m_state.set(State::registered);
    case HotkeyOutcome::taken:
        return m_state.set(State::taken);
    case HotkeyOutcome::failed:
        return m_state.set(State::failed);
    }
}

Subscription HotkeyManager::suspend()
{
    if (!m_earlier.empty())
        return m_earlier.front()->suspend();
    changeSuspensions(1);
    auto end = [weak = m_weak.reference()](void*) {
        if (auto* manager = weak.get())
            manager->changeSuspensions(-1);
    };
    return Subscription{std::shared_ptr<void>{this, end}};
}

void HotkeyManager::changeSuspensions(int by)
{
    m_suspensions += by;
    bool isSuspended = m_suspensions > 0;
    if (isSuspended == m_isSuspended.value())
        return;
    reregister(); // before others can take its keys
    m_isSuspended.set(isSuspended);
}

HotkeyStatus HotkeyManager::handleHotkey(const HotkeyID& pressed)
{
    if (pressed.id != ownID().id)
        return HotkeyStatus::notHandled;
    m_dispatch.main().async([weak = m_weak.reference()] {
        auto* manager = weak.get();
        if (manager && manager->onHotkeyPressed)
            manager->onHotkeyPressed();
    });
    return HotkeyStatus::handled;
}

}
