#include "Quorvel/Core/NumberKeys.h"

#include <utility>

#include "Quorvel/Core/HotkeyManager.h"
#include "Quorvel/Core/UserSettings.h"

namespace quorvel {

namespace {

/// Without one of these the keys would be those that type.
constexpr std::uint32_t kLeading
    = HotkeyModifier::command | HotkeyModifier::option | HotkeyModifier::control;

}

NumberKeys::NumberKeys(Hotkeys* hotkeys, std::vector<const HotkeyManager*> managers,
    UserSettings& settings, Dispatch& dispatch)
    : m_hotkeys(hotkeys)
    , m_managers(std::move(managers))
    , m_settings(settings)
    , m_dispatch(dispatch)
{
    if (!m_hotkeys)
        return;
    m_subscriptions.push_back(settings.data().subscribe([this](auto&) { update(); }));
    m_subscriptions.push_back(
        m_managers.front()->isSuspended().subscribe([this](bool) { update(); }));
    for (auto* manager : m_managers)
        m_subscriptions.push_back(manager->wantedShortcut().subscribe([this](auto&) { update(); }));
    m_subscriptions.push_back(m_hotkeys->outcomesDidChange.subscribe([this] { updateTaken(); }));
    m_subscriptions.push_back(
        m_hotkeys->installHandler([this](auto& pressed) { return handleHotkey(pressed); }));
    update();
}

std::uint32_t NumberKeys::modifiersThatHold(
    const std::optional<std::uint32_t>& stored, const Hotkeys& hotkeys)
{
    auto chosen = stored.value_or(0) & HotkeyModifier::all;
    return chosen & kLeading ? chosen : hotkeys.numberKeyModifiers();
}

std::vector<NumberKeys::Combination> NumberKeys::wanted() const
{
    if (!m_settings.numberKeys() || m_managers.front()->isSuspended().value())
        return {};
    auto modifiers = modifiersThatHold(m_settings.numberKeyModifiers(), *m_hotkeys);
    std::vector<Combination> wanted;
    for (std::uint32_t place = 0; place < kKeyCodes.size(); ++place) {
        auto key = kKeyCodes[place];
        wanted.push_back({key, modifiers, kFirstID + place});
        if ((modifiers & HotkeyModifier::shift) == 0)
            wanted.push_back({key, modifiers | HotkeyModifier::shift, kFirstShiftedID + place});
    }
    for (auto* manager : m_managers) {
        auto& shortcut = manager->wantedShortcut().value();
        std::erase_if(wanted, [&](auto& combination) {
            return shortcut && combination.keyCode == shortcut->keyCode
                && combination.modifiers == (shortcut->modifiers & HotkeyModifier::all);
        });
    }
    return wanted;
}

void NumberKeys::update()
{
    auto wantedNow = wanted();
    if (std::exchange(m_wanted, wantedNow) == wantedNow)
        return;
    std::exchange(m_registrations, {}).clear(); // some may become free as others go
    for (auto& [keyCode, modifiers, id] : wantedNow) {
        m_registrations.push_back(
            m_hotkeys->registerHotkey(keyCode, modifiers, {HotkeyManager::hotkeyID.signature, id}));
    }
    updateTaken();
}

void NumberKeys::updateTaken()
{
    std::vector<KeyboardShortcut> taken;
    for (std::size_t index = 0; index < m_registrations.size(); ++index) {
        if (m_registrations[index]->outcome() == HotkeyOutcome::taken)
            taken.push_back({m_wanted[index].keyCode, m_wanted[index].modifiers});
    }
    m_taken.set(std::move(taken));
}

HotkeyStatus NumberKeys::handleHotkey(const HotkeyID& pressed)
{
    bool isShifted = pressed.id >= kFirstShiftedID;
    std::size_t place = pressed.id - (isShifted ? kFirstShiftedID : kFirstID);
    if (place >= kKeyCodes.size())
        return HotkeyStatus::notHandled;
    auto use = isShifted ? ItemUse::openNewWindow : ItemUse::click;
    m_dispatch.main().async([weak = m_weak.reference(), place, use] {
        auto* keys = weak.get();
        if (keys && keys->onPressed)
            keys->onPressed(place, use);
    });
    return HotkeyStatus::handled;
}

}
