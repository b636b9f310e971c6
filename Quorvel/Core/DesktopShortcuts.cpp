#include "Quorvel/Core/DesktopShortcuts.h"

#include <utility>

namespace quorvel {

namespace {

constexpr int kMostDesktops = 16;
constexpr int kBeforeFirstIdentifier = 117;

}

void DesktopShortcuts::restore()
{
    for (int identifier : std::exchange(m_enabled, {}))
        m_input.setSymbolicHotKeyEnabled(identifier, false);
}

std::optional<SymbolicHotKey> DesktopShortcuts::desktopSwitchShortcut(int desktopNumber)
{
    if (desktopNumber < 1 || desktopNumber > kMostDesktops)
        return {};
    int identifier = kBeforeFirstIdentifier + desktopNumber;
    auto keys = m_input.symbolicHotKey(identifier);
    if (!keys || m_input.isSymbolicHotKeyEnabled(identifier))
        return keys;
    if (!m_input.setSymbolicHotKeyEnabled(identifier, true))
        return {};
    m_enabled.insert(identifier);
    return keys;
}

void DesktopShortcuts::press(const SymbolicHotKey& keys)
{
    m_input.postKeyEvent(keys.keyCode, KeyAction::down, keys.modifierFlags);
    m_input.postKeyEvent(keys.keyCode, KeyAction::up, 0);
}

}
