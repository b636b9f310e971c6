#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Quorvel/Core/PinnedAppRecord.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel {

class UserSettings;

/// The user's pinned applications: one ordered list, in which each application has the places it is
/// pinned to. Reordering the pins of one place does not affect another. Kept in the settings. Main
/// thread.
class PinStore {
public:
    explicit PinStore(UserSettings&);

    const Published<std::vector<PinnedAppRecord>>& pinnedApps() const { return m_pinnedApps; }
    /// In order.
    std::vector<std::string> pinnedAppIDs(PinDestination) const;
    bool isPinned(std::string_view id, PinDestination to) const;

    void setPin(const std::string& id, PinDestination to, bool isEnabled);
    /// Moves one application among the pins of one place: before another, or to the end.
    void movePinnedApp(const std::string& id, const std::optional<std::string>& before,
        PinDestination destination);

private:
    void assign(std::vector<PinnedAppRecord>);

    UserSettings& m_settings;
    Published<std::vector<PinnedAppRecord>> m_pinnedApps;
    Subscription m_settingsChange;
};

}
