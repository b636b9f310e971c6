#include "Quorvel/Core/HotkeyManager.h"

#include <utility>

#include "Quorvel/Core/UserSettings.h"

namespace quorvel {

HotkeyManager::HotkeyManager(Hotkeys* hotkeys, UserSettings& settings, Dispatch& dispatch)
    : m_hotkeys(hotkeys)
    , m_settings(settings)
    , m_dispatch(dispatch)
    , m_settingsChange(settings.data().subscribe([this](auto&) { loadShortcut(); }))
{
    if (m_hotkeys) {
        m_outcomeChange = m_hotkeys->outcomesDidChange.subscribe([this] { updateState(); });
        m_eventHandler
            = m_hotkeys->installHandler([this](auto& pressed) { return handleHotkey(pressed); });
    }
    loadShortcut();
}

HotkeyManager::~HotkeyManager() = default;

// MARK: The shortcut

void HotkeyManager::loadShortcut()
{
    auto keyCode = m_settings.hotkeyKeyCode();
    auto modifiers = m_settings.hotkeyModifiers();
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
    data.hotkeyKeyCode.reset();
    data.hotkeyModifiers.reset();
    if (shortcut) {
        data.hotkeyKeyCode = shortcut->keyCode;
        data.hotkeyModifiers = shortcut->modifiers;
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
    if (m_hotkeys && shortcut && m_suspensions == 0)
        m_hotkeyRef = m_hotkeys->registerHotkey(shortcut->keyCode, shortcut->modifiers, hotkeyID);
    updateState();
}

void HotkeyManager::updateState()
{
    if (!m_hotkeyRef)
        return m_state.set(State::none);
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
    if (pressed.id != hotkeyID.id)
        return HotkeyStatus::notHandled;
    m_dispatch.main().async([weak = m_weak.reference()] {
        auto* manager = weak.get();
        if (manager && manager->onHotkeyPressed)
            manager->onHotkeyPressed();
    });
    return HotkeyStatus::handled;
}

}
