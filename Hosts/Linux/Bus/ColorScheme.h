#pragma once

#include <functional>
#include <optional>
#include <string_view>

#include "Hosts/Linux/Bus/BusService.h"
#include "Quorvel/Platform/Geometry.h"

namespace quorvel::xdg {

/// What the settings portal on the session bus says about colours. Nothing blocks: the answers are
/// handed on when they arrive, and again whenever they change. Main thread.
class ColorScheme {
public:
    /// Absent: the desktop has no preference, or stopped telling it.
    struct Preference {
        std::optional<bool> isDark;
        std::optional<Color> accent;
        std::optional<bool> isHighContrast;
    };
    using Changed = std::function<void(const Preference&)>;

    explicit ColorScheme(Changed);

private:
    void read(const char* key);
    void takeChange(GVariant* parameters);
    void take(std::string_view key, GVariant* value);

    Changed m_changed;
    Preference m_preference;
    BusService m_portal;
};

}
