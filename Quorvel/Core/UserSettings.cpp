#include "Quorvel/Core/UserSettings.h"

#include <fmt/format.h>

#include "Quorvel/Core/UserSettingsCoding.h"
#include "Quorvel/Platform/Application.h"
#include "Quorvel/Platform/Files.h"
#include "Quorvel/Platform/Trace.h"

namespace quorvel {

namespace {

constexpr std::string_view kFolderName = "Quorvel";
constexpr std::string_view kFileName = "settings.json";
constexpr std::size_t kLargestFile = 4 * 1024 * 1024;
constexpr int kMostRejectedFiles = 100;

std::string locate(const Files& files)
{
    auto support = files.applicationSupportFolder();
    return support ? fmt::format("{}/{}/{}", *support, kFolderName, kFileName) : std::string{};
}

std::string rejectedName(const std::string& path, int number)
{
    return number == 1 ? path + ".rejected" : fmt::format("{}.rejected-{}", path, number);
}

}

UserSettings::UserSettings(Files& files, LoginItem& loginItem, Application& application,
    Dispatch& dispatch, const Trace& trace)
    : m_files(files)
    , m_application(application)
    , m_dispatch(dispatch)
    , m_trace(trace)
    , m_loginItem(loginItem)
    , m_fileURL(locate(files))
{
    createFolder();
    load();
    m_willTerminate = application.willTerminate.subscribe([this] { saveChanges(); });
}

// MARK: Loading

void UserSettings::load()
{
    auto initial = defaults();
    auto stored = storedData(initial);
    // Nothing says what the user wants, so a login item that is there is not taken away.
    initial.runAtLogin = m_loginItem.isEnabled();
    m_saved = stored.value_or(initial);
    m_data.set(m_saved);
    if (stored) {
        tellUnknownTexts();
        reconcileRunAtLoginState();
    }
}

std::optional<UserSettingsData> UserSettings::storedData(const UserSettingsData& defaults)
{
    if (m_fileURL.empty())
        return std::nullopt;
    m_fileState.set(FileState::notWritten);
    if (!m_files.exists(m_fileURL))
        return std::nullopt;
    m_fileState.set(FileState::written);
    std::optional<UserSettingsData> stored;
    if (auto bytes = m_files.read(m_fileURL, kLargestFile))
        stored = decodeUserSettings(*bytes, defaults);
    if (!stored && m_files.keepsRejectedFiles())
        m_application.warn(m_fileURL + " cannot be used; the defaults hold");
    return stored;
}

void UserSettings::reconcileRunAtLoginState()
{
    setRunAtLogin(runAtLogin());
}

void UserSettings::tellUnknownTexts()
{
    const auto holding = dataThatHolds();
    for (auto* name : {"barSize", "theme", "scrollUpSpaceSwitch"}) {
        auto stored = encodeUserSetting(value(), name).value_or("");
        auto holds = encodeUserSetting(holding, name).value_or("");
        if (stored != holds)
            m_application.warn(
                fmt::format("{}: there is no {} {}; {} holds", m_fileURL, name, stored, holds));
    }
}

// MARK: Fields

UserSettingsData UserSettings::dataThatHolds() const
{
    auto data = value();
    data.barSize = rawValue(barSize());
    data.theme = rawValue(theme());
    data.scrollUpSpaceSwitch = rawValue(scrollUpSpaceSwitch());
    data.more = data.more.withDefaults();
    return data;
}

UserSettingsData UserSettings::defaults() const
{
    return UserSettingsData::defaults(m_application.operatingSystemMajorVersion());
}

BarSize UserSettings::barSize() const
{
    return barSizeFrom(value().barSize).value_or(BarSize::medium);
}

BarTheme UserSettings::theme() const
{
    return barThemeFrom(value().theme)
        .value_or(defaultBarTheme(m_application.operatingSystemMajorVersion()));
}

SpaceScrollUpBehavior UserSettings::scrollUpSpaceSwitch() const
{
    return spaceScrollUpBehaviorFrom(value().scrollUpSpaceSwitch)
        .value_or(SpaceScrollUpBehavior::left);
}

void UserSettings::setRunAtLogin(bool isWanted)
{
    set(&UserSettingsData::runAtLogin, m_loginItem.setEnabled(isWanted));
}

void UserSettings::setData(UserSettingsData data)
{
    if (data == value())
        return;
    scheduleSave(); // first, because an observer may end the program
    m_data.set(std::move(data));
}

// MARK: Saving

void UserSettings::createFolder()
{
    if (m_fileURL.empty())
        return;
    // The write that follows says what is wrong.
    const auto folder = m_fileURL.substr(0, m_fileURL.size() - kFileName.size() - 1);
    static_cast<void>(m_files.createFolder(folder));
}

void UserSettings::scheduleSave()
{
    m_hasUnsavedChanges = true;
    m_saveDebounceWork = m_dispatch.main().after(saveDebounceInterval, [this] { saveNow(); });
}

bool UserSettings::saveChanges()
{
    m_saveDebounceWork = {};
    if (m_hasUnsavedChanges)
        saveNow();
    return !m_hasUnsavedChanges;
}

void UserSettings::saveNow()
{
    if (m_fileURL.empty())
        return;
    auto error = write();
    if (error == std::errc::operation_canceled)
        error = replaceRejectedFile();
    m_hasUnsavedChanges = static_cast<bool>(error);
    tellFailure(error);
    if (!error)
        m_saved = value();
    m_fileState.set(error ? FileState::failing : FileState::written);
}

std::error_code UserSettings::write()
{
    createFolder();
    return m_files.revise(
        m_fileURL, kLargestFile, [this](const auto& file) { return revised(file); });
}

std::optional<std::string> UserSettings::revised(const std::optional<std::string>& file) const
{
    auto sound = file ? reviseUserSettings(*file, m_saved, value()) : std::nullopt;
    if (!sound && m_files.keepsRejectedFiles() && m_files.exists(m_fileURL))
        return std::nullopt;
    return sound ? sound : encodeUserSettings(value());
}

std::error_code UserSettings::replaceRejectedFile()
{
    std::string keptAs;
    if (auto error = putRejectedFileAside(keptAs))
        return error;
    auto error = write();
    if (error)
        static_cast<void>(m_files.rename(keptAs, m_fileURL)); // what failed first is told
    else
        m_application.warn(m_fileURL + " is overwritten; what it held is kept as " + keptAs);
    return error;
}

std::error_code UserSettings::putRejectedFileAside(std::string& name)
{
    std::error_code error;
    for (int number = 1; number <= kMostRejectedFiles; ++number) {
        name = rejectedName(m_fileURL, number);
        error = m_files.rename(m_fileURL, name);
        if (error != std::errc::file_exists)
            break;
    }
    return error;
}

/// Once, until the disk is well again.
void UserSettings::tellFailure(std::error_code error)
{
    if (error)
        m_trace.line("settings save failed error={}", error.value());
    if (error && !m_isFailureTold) {
        m_application.warn(fmt::format("{} cannot be written ({}); changes last until the bar ends",
            m_fileURL, error.message()));
    }
    m_isFailureTold = static_cast<bool>(error);
}

}
