#include "Quorvel/Core/HotkeyManager.h"

#include <utility>

#include "Quorvel/Core/UserSettings.h"

namespace quorvel {

HotkeyManager::HotkeyManager(Hotkeys* hotkeys, UserSettings& settings, Dispatch& dispatch)
    : HotkeyManager(hotkeys, settings, dispatch, HotkeyPurpose::applications, nullptr)
{
}

HotkeyManager::HotkeyManager(
    Hotkeys* hotkeys, UserSettings& settings, Dispatch& dispatch, HotkeyManager& first)
    : HotkeyManager(hotkeys, settings, dispatch, HotkeyPurpose::windows, &first)
{
}

HotkeyManager::HotkeyManager(Hotkeys* hotkeys, UserSettings& settings, Dispatch& dispatch,
    HotkeyPurpose purpose, HotkeyManager* first)
    : m_hotkeys(hotkeys)
    , m_settings(settings)
    , m_dispatch(dispatch)
    , m_purpose(purpose)
    , m_first(first)
    , m_settingsChange(settings.data().subscribe([this](auto&) { loadShortcut(); }))
{
    if (m_hotkeys) {
        m_outcomeChange = m_hotkeys->outcomesDidChange.subscribe([this] { updateState(); });
        m_eventHandler
            = m_hotkeys->installHandler([this](auto& pressed) { return handleHotkey(pressed); });
    }
    if (m_first) {
        m_firstChanges.push_back(
            m_first->currentShortcut().subscribe([this](auto&) { reregister(); }));
        m_firstChanges.push_back(m_first->isSuspended().subscribe([this](auto&) { reregister(); }));
    }
    loadShortcut();
}

HotkeyManager::~HotkeyManager() = default;

// MARK: The shortcut

HotkeyManager::Fields HotkeyManager::fields(UserSettingsData& data) const
{
    if (m_purpose == HotkeyPurpose::applications)
        return {data.hotkeyKeyCode, data.hotkeyModifiers};
    return {data.more.findKeyCode, data.more.findModifiers};
}

HotkeyID HotkeyManager::ownID() const
{
    return m_purpose == HotkeyPurpose::applications ? hotkeyID : findHotkeyID;
}

/// Of two registrations of one program the system might honour either.
bool HotkeyManager::isLeftToFirst() const
{
    auto& mine = m_currentShortcut.value();
    auto* its = m_first && m_first->currentShortcut().value() ? &*m_first->currentShortcut().value()
                                                              : nullptr;
    return mine && its && mine->keyCode == its->keyCode
        && (mine->modifiers & HotkeyModifier::all) == (its->modifiers & HotkeyModifier::all);
}

void HotkeyManager::loadShortcut()
{
    auto data = m_settings.data().value();
    auto [keyCode, modifiers] = fields(data);
    std::optional<KeyboardShortcut> stored;
    if (keyCode && modifiers)
        stored = KeyboardShortcut{*keyCode, *modifiers};
    if (stored == m_currentShortcut.value())
        return;
    m_hotkeyRef.reset(); // whoever hears of the new one may want the keys of the old one
    m_currentShortcut.set(stored);
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
    auto& shortcut = m_currentShortcut.value();
    bool isHeld = m_suspensions > 0 || (m_first && m_first->isSuspended().value());
    if (m_hotkeys && shortcut && !isHeld && !isLeftToFirst())
        m_hotkeyRef = m_hotkeys->registerHotkey(shortcut->keyCode, shortcut->modifiers, ownID());
    updateState();
}

void HotkeyManager::updateState()
{
    if (!m_hotkeyRef)
        return m_state.set(m_hotkeys && isLeftToFirst() ? State::taken : State::none);
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
    if (m_first)
        return m_first->suspend();
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
