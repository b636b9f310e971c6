#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Quorvel/Core/BarSize.h"
#include "Quorvel/Core/BarTheme.h"
#include "Quorvel/Core/PinnedAppRecord.h"
#include "Quorvel/Core/SpaceScrollUpBehavior.h"

namespace quorvel {

/// Every preference of the user, as it is stored. Enumerations are kept as text, so that values
/// written by a newer version survive this one.
struct UserSettingsData {
    std::string barSize{rawValue(BarSize::medium)};
    std::string theme{rawValue(BarTheme::frosted)};
    std::string scrollUpSpaceSwitch{rawValue(SpaceScrollUpBehavior::left)};
    std::optional<std::uint32_t> hotkeyKeyCode; ///< absent: no global shortcut
    std::optional<std::uint32_t> hotkeyModifiers;
    bool groupWindowsByApp = true;
    bool showChipTitles = true;
    bool showWindowNamesInChips = true;
    bool hideDock = false;
    bool showOnAllDisplays = false;
    bool runAtLogin = false;
    bool numberKeys = false; ///< shortcuts with the keys 1 to 9 for what is on the bar
    std::optional<std::uint32_t> numberKeyModifiers; ///< absent: those that the host offers
    std::vector<PinnedAppRecord> pinnedApps;
    std::int64_t settingsVersion = 1; ///< of the file's format

    static UserSettingsData defaults(std::optional<int> systemMajorVersion)
    {
        UserSettingsData data;
        data.theme = rawValue(defaultBarTheme(systemMajorVersion));
        return data;
    }

    /// Calls `visit(name, field)` for each field, in order; the names are those used in the file.
    template <typename Data, typename Visitor> static void forEachField(Data& data, Visitor&& visit)
    {
        visit("barSize", data.barSize);
        visit("theme", data.theme);
        visit("scrollUpSpaceSwitch", data.scrollUpSpaceSwitch);
        visit("hotkeyKeyCode", data.hotkeyKeyCode);
        visit("hotkeyModifiers", data.hotkeyModifiers);
        visit("groupWindowsByApp", data.groupWindowsByApp);
        visit("showChipTitles", data.showChipTitles);
        visit("showWindowNamesInChips", data.showWindowNamesInChips);
        visit("hideDock", data.hideDock);
        visit("showOnAllDisplays", data.showOnAllDisplays);
        visit("runAtLogin", data.runAtLogin);
        visit("numberKeys", data.numberKeys);
        visit("numberKeyModifiers", data.numberKeyModifiers);
        visit("pinnedApps", data.pinnedApps);
        visit("settingsVersion", data.settingsVersion);
    }

    friend bool operator==(const UserSettingsData&, const UserSettingsData&) = default;
};

}
