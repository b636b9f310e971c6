#pragma once

#include <optional>
#include <set>

#include "Quorvel/Platform/SyntheticInput.h"

namespace quorvel {

/// The system's own keys for "switch to desktop n". Those that the user had switched off are
/// switched on when needed, and off again at the end. Main thread.
class DesktopShortcuts {
public:
    explicit DesktopShortcuts(SyntheticInput& input) : m_input(input) { }
    ~DesktopShortcuts() { restore(); }
    DesktopShortcuts(const DesktopShortcuts&) = delete;
    DesktopShortcuts& operator=(const DesktopShortcuts&) = delete;

    /// Desktops count from 1. Absent where the system has no such keys or does not let us use them.
    std::optional<SymbolicHotKey> desktopSwitchShortcut(int desktopNumber);
    void press(const SymbolicHotKey&);
    /// Restores the user's settings.
    void restore();

private:
    SyntheticInput& m_input;
    std::set<int> m_enabled; ///< those that this program enabled
};

}
