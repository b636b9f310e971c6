#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Quorvel/Core/BarSize.h"
#include "Quorvel/Core/BarTheme.h"
#include "Quorvel/Core/PinnedAppRecord.h"
#include "Quorvel/Core/SpaceScrollUpBehavior.h"

namespace quorvel {

/// Preferences beside those that every version has, under the key "more" in the file. Each is
/// absent until the user chooses.
struct MoreSettings {
    std::optional<bool> numberKeys{}; ///< shortcuts with the keys 1 to 9 for what is on the bar
    std::optional<std::uint32_t> numberKeyModifiers{}; ///< absent: those that the host offers
    std::optional<bool> markTitleNews{}; ///< a dot on chips whose title has changed unseen
    std::optional<bool> windowPreviews{}; ///< popups with pictures above chips
    std::optional<bool> autoHide{}; ///< the bar goes where windows need its room
    /// The application that the user has chosen for windows, by what the host knows them by.
    std::optional<std::map<std::string, std::string>> mendedMatches{};
    /// The shortcut of the list of windows; without one of the two there is none.
    std::optional<std::uint32_t> findKeyCode{};
    std::optional<std::uint32_t> findModifiers{};
    /// The one that sends the bar away, or gets it back, while it hides; likewise.
    std::optional<std::uint32_t> barKeyCode{};
    std::optional<std::uint32_t> barModifiers{};

    /// With what holds where the user has not chosen; absent only where the host decides.
    MoreSettings withDefaults() const
    {
        auto more = *this;
        more.numberKeys = numberKeys.value_or(false);
        more.markTitleNews = markTitleNews.value_or(false);
        more.windowPreviews = windowPreviews.value_or(true);
        more.autoHide = autoHide.value_or(false);
        return more;
    }

    /// Calls `visit(name, field)` for each field, in order; all are optional.
    template <typename More, typename Visitor> static void forEachField(More& more, Visitor&& visit)
    {
        visit("numberKeys", more.numberKeys);
        visit("numberKeyModifiers", more.numberKeyModifiers);
        visit("markTitleNews", more.markTitleNews);
        visit("windowPreviews", more.windowPreviews);
        visit("autoHide", more.autoHide);
        visit("mendedMatches", more.mendedMatches);
        visit("findKeyCode", more.findKeyCode);
        visit("findModifiers", more.findModifiers);
        visit("barKeyCode", more.barKeyCode);
        visit("barModifiers", more.barModifiers);
    }

    friend bool operator==(const MoreSettings&, const MoreSettings&) = default;
};

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
    std::vector<PinnedAppRecord> pinnedApps;
    std::int64_t settingsVersion = 1; ///< of the file's format
    MoreSettings more;

    static UserSettingsData defaults(std::optional<int> systemMajorVersion)
    {
        UserSettingsData data;
        data.theme = rawValue(defaultBarTheme(systemMajorVersion));
        return data;
    }

    /// Calls `visit(name, field)` for each field but `more`, in order; the names are those used in
    /// the file.
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
        visit("pinnedApps", data.pinnedApps);
        visit("settingsVersion", data.settingsVersion);
    }

    /// The fields of `more` too: where settings go by their names alone.
    template <typename Data, typename Visitor>
    static void forEachSetting(Data& data, Visitor&& visit)
    {
        forEachField(data, visit);
        MoreSettings::forEachField(data.more, visit);
    }

    friend bool operator==(const UserSettingsData&, const UserSettingsData&) = default;
};

}
