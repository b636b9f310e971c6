#pragma once

#include <functional>
#include <optional>

#include "Hosts/Linux/Bus/BusService.h"

namespace quorvel::xdg {

/// Whether the desktop wants dark programs, from the settings portal on the session bus. Nothing
/// waits for it: the answer comes when it comes, and again whenever it changes. Main thread.
class ColorScheme {
public:
    /// Absent: the desktop has no preference, or no longer says.
    using Changed = std::function<void(std::optional<bool> prefersDark)>;

    explicit ColorScheme(Changed);

private:
    void read();
    void takeChange(GVariant* parameters);
    void take(GVariant* value);

    Changed m_changed;
    BusService m_portal;
};

}
