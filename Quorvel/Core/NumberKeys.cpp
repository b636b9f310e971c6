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

NumberKeys::NumberKeys(
    Hotkeys* hotkeys, const HotkeyManager& manager, UserSettings& settings, Dispatch& dispatch)
    : m_hotkeys(hotkeys)
    , m_manager(manager)
    , m_settings(settings)
    , m_dispatch(dispatch)
{
    if (!m_hotkeys)
        return;
    m_subscriptions.push_back(settings.data().subscribe([this](auto&) { update(); }));
    m_subscriptions.push_back(manager.isSuspended().subscribe([this](bool) { update(); }));
    m_subscriptions.push_back(
        m_hotkeys->installHandler([this](auto& pressed) { return handleHotkey(pressed); }));
    update();
}

std::uint32_t NumberKeys::wantedModifiers() const
{
    if (!m_settings.numberKeys() || m_manager.isSuspended().value())
        return 0;
    auto chosen = m_settings.numberKeyModifiers().value_or(0) & (kLeading | HotkeyModifier::shift);
    return chosen & kLeading ? chosen : m_hotkeys->numberKeyModifiers();
}

void NumberKeys::update()
{
    auto wanted = wantedModifiers();
    if (std::exchange(m_modifiers, wanted) == wanted)
        return;
    m_registrations.clear();
    if (wanted != 0)
        registerAll(wanted);
}

void NumberKeys::registerAll(std::uint32_t modifiers)
{
    constexpr auto signature = HotkeyManager::hotkeyID.signature;
    bool hasShift = (modifiers & HotkeyModifier::shift) != 0;
    for (std::uint32_t place = 0; place < kKeyCodes.size(); ++place) {
        auto key = kKeyCodes[place];
        m_registrations.push_back(
            m_hotkeys->registerHotkey(key, modifiers, {signature, kFirstID + place}));
        if (!hasShift) {
            m_registrations.push_back(m_hotkeys->registerHotkey(
                key, modifiers | HotkeyModifier::shift, {signature, kFirstShiftedID + place}));
        }
    }
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
