#pragma once

#include <optional>
#include <string>
#include <system_error>

#include "Quorvel/Core/LoginItemController.h"
#include "Quorvel/Core/UserSettingsData.h"
#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel {

class Application;
class Files;
class Trace;

/// The one store of the user's preferences: a record in memory that observers watch, written to a
/// file shortly after each change and on quitting. Several bars of one user share the file, so each
/// writes only its own changes into what the file says by then. After a failure to read or write
/// it, which is reported only on standard error, the record in memory stays. Main thread.
class UserSettings {
public:
    static constexpr Duration saveDebounceInterval = seconds(0.5);

    UserSettings(Files&, LoginItem&, Application&, Dispatch&, const Trace&);
    UserSettings(const UserSettings&) = delete;
    UserSettings& operator=(const UserSettings&) = delete;

    /// The running program's instance. Use only where the program is wired together.
    static UserSettings& shared();

    const Published<UserSettingsData>& data() const { return m_data; }
    /// Storing an equal record changes nothing: no observer is called, nothing is written.
    void setData(UserSettingsData);
    /// Writes now, without waiting for further changes. False if not everything reached the disk.
    bool saveChanges();
    /// The file's path; empty if the system names no place for it.
    const std::string& fileURL() const { return m_fileURL; }
    enum class FileState {
        noPlace, ///< the settings live in memory
        notWritten, ///< nothing has been changed yet
        written,
        failing, ///< what was changed last could not be written
    };
    const Published<FileState>& fileState() const { return m_fileState; }
    /// The record before the user has changed anything.
    UserSettingsData defaults() const;

    /// The record with the value in effect for each text that this version does not know, and for
    /// what the user has not chosen.
    UserSettingsData dataThatHolds() const;

    // A text that this version does not know reads as the default.
    BarSize barSize() const;
    void setBarSize(BarSize size) { setText(&UserSettingsData::barSize, rawValue(size)); }
    BarTheme theme() const;
    void setTheme(BarTheme theme) { setText(&UserSettingsData::theme, rawValue(theme)); }
    SpaceScrollUpBehavior scrollUpSpaceSwitch() const;
    void setScrollUpSpaceSwitch(SpaceScrollUpBehavior behavior)
    {
        setText(&UserSettingsData::scrollUpSpaceSwitch, rawValue(behavior));
    }

    std::optional<std::uint32_t> hotkeyKeyCode() const { return value().hotkeyKeyCode; }
    void setHotkeyKeyCode(std::optional<std::uint32_t> code)
    {
        set(&UserSettingsData::hotkeyKeyCode, code);
    }
    std::optional<std::uint32_t> hotkeyModifiers() const { return value().hotkeyModifiers; }
    void setHotkeyModifiers(std::optional<std::uint32_t> modifiers)
    {
        set(&UserSettingsData::hotkeyModifiers, modifiers);
    }

    bool groupWindowsByApp() const { return value().groupWindowsByApp; }
    void setGroupWindowsByApp(bool isOn) { set(&UserSettingsData::groupWindowsByApp, isOn); }
    bool showChipTitles() const { return value().showChipTitles; }
    void setShowChipTitles(bool isOn) { set(&UserSettingsData::showChipTitles, isOn); }
    bool showWindowNamesInChips() const { return value().showWindowNamesInChips; }
    void setShowWindowNamesInChips(bool isOn)
    {
        set(&UserSettingsData::showWindowNamesInChips, isOn);
    }
    bool hideDock() const { return value().hideDock; }
    void setHideDock(bool isOn) { set(&UserSettingsData::hideDock, isOn); }
    bool showOnAllDisplays() const { return value().showOnAllDisplays; }
    void setShowOnAllDisplays(bool isOn) { set(&UserSettingsData::showOnAllDisplays, isOn); }
    bool runAtLogin() const { return value().runAtLogin; }
    /// Stores the system's state afterwards, which may differ from the request.
    void setRunAtLogin(bool isWanted);

    bool numberKeys() const { return *value().more.withDefaults().numberKeys; }
    void setNumberKeys(bool isOn) { set(&MoreSettings::numberKeys, std::optional{isOn}); }
    std::map<std::string, std::string> mendedMatches() const
    {
        return value().more.mendedMatches.value_or(std::map<std::string, std::string>{});
    }
    /// None leaves no trace in the file.
    void setMendedMatches(std::map<std::string, std::string> matches)
    {
        auto wanted = matches.empty() ? std::nullopt : std::optional{std::move(matches)};
        set(&MoreSettings::mendedMatches, std::move(wanted));
    }
    bool marksTitleNews() const { return value().more.markTitleNews.value_or(false); }
    void setMarksTitleNews(bool isOn) { set(&MoreSettings::markTitleNews, std::optional{isOn}); }
    bool showsWindowPreviews() const { return value().more.windowPreviews.value_or(true); }
    void setShowsWindowPreviews(bool isOn)
    {
        set(&MoreSettings::windowPreviews, std::optional{isOn});
    }
    bool hidesBar() const { return value().more.autoHide.value_or(false); }
    void setHidesBar(bool isOn) { set(&MoreSettings::autoHide, std::optional{isOn}); }
    std::optional<std::uint32_t> numberKeyModifiers() const
    {
        return value().more.numberKeyModifiers;
    }
    void setNumberKeyModifiers(std::optional<std::uint32_t> modifiers)
    {
        set(&MoreSettings::numberKeyModifiers, modifiers);
    }

    const std::vector<PinnedAppRecord>& pinnedApps() const { return value().pinnedApps; }
    void setPinnedApps(std::vector<PinnedAppRecord> pins)
    {
        set(&UserSettingsData::pinnedApps, std::move(pins));
    }

private:
    const UserSettingsData& value() const { return m_data.value(); }
    template <typename Value> void set(Value UserSettingsData::* field, Value value)
    {
        auto changed = m_data.value();
        changed.*field = std::move(value);
        setData(std::move(changed));
    }
    template <typename Value> void set(Value MoreSettings::* field, Value value)
    {
        auto changed = m_data.value();
        changed.more.*field = std::move(value);
        setData(std::move(changed));
    }
    void setText(std::string UserSettingsData::* field, std::string_view text)
    {
        set(field, std::string{text});
    }

    void load();
    /// Absent if there is no usable file.
    std::optional<UserSettingsData> storedData(const UserSettingsData& defaults);
    void reconcileRunAtLoginState();
    void tellUnknownTexts();
    void createFolder();
    void scheduleSave();
    void saveNow();
    std::error_code write();
    /// The new content of the file; absent if its present content cannot be read and has to be
    /// kept.
    std::optional<std::string> revised(const std::optional<std::string>& file) const;
    std::error_code replaceRejectedFile();
    /// Renames the file that could not be read.
    std::error_code putRejectedFileAside(std::string& name);
    void tellFailure(std::error_code);

    Files& m_files;
    Application& m_application;
    Dispatch& m_dispatch;
    const Trace& m_trace;
    LoginItemController m_loginItem;
    std::string m_fileURL;
    Published<FileState> m_fileState;
    Published<UserSettingsData> m_data;
    bool m_hasUnsavedChanges = false;
    UserSettingsData m_saved; ///< what this bar last read or wrote
    bool m_isFailureTold = false;
    Subscription m_willTerminate;
    WorkItem m_saveDebounceWork;
};

}
