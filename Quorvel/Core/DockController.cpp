#include "Quorvel/Core/DockController.h"

#include <cmath>
#include <utility>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "Quorvel/Core/UserSettings.h"
#include "Quorvel/Platform/DockControl.h"
#include "Quorvel/Platform/Files.h"

namespace quorvel {

namespace {

using Json = nlohmann::json;

constexpr std::string_view kFolderName = "Quorvel";
constexpr std::string_view kFileName = "initialDockSettings.json";
constexpr char kAutoHideEnabled[] = "autoHideEnabled";
constexpr std::size_t kLargestFile = 64 * 1024;
constexpr int kIndent = 2;
constexpr double kDelayTolerance = 0.0001; // seconds

std::string locate(Files& files)
{
    auto support = files.applicationSupportFolder();
    if (!support)
        return {};
    auto folder = fmt::format("{}/{}", *support, kFolderName);
    static_cast<void>(files.createFolder(folder)); // the first write says what is wrong
    return fmt::format("{}/{}", folder, kFileName);
}

/// A boolean counts as a number, as the system has it.
std::optional<double> numberIn(const Preferences* preferences, const char* key)
{
    if (!preferences)
        return std::nullopt;
    auto value = preferences->value(key);
    if (auto* number = std::get_if<double>(&value))
        return *number;
    if (auto* flag = std::get_if<bool>(&value))
        return *flag ? 1.0 : 0.0;
    return std::nullopt;
}

}

// MARK: The file

std::string InitialDockSettings::encoded() const
{
    return Json{{kAutoHideEnabled, autoHideEnabled}}.dump(kIndent) + "\n";
}

std::optional<InitialDockSettings> InitialDockSettings::decoded(std::string_view bytes)
{
    auto json = Json::parse(bytes, nullptr, /*allow_exceptions=*/false);
    auto found = json.find(kAutoHideEnabled); // at the end unless it is an object
    if (found == json.end() || !found->is_boolean())
        return std::nullopt;
    return InitialDockSettings{found->get<bool>()};
}

bool DockController::captureInitialSettings()
{
    InitialDockSettings current{m_dock.isAutoHideEnabled()};
    return !m_fileURL.empty() && !m_files.writeAtomically(m_fileURL, current.encoded());
}

// MARK: What is wanted

DockController::DockController(
    DockControl& dock, Files& files, const UserSettings& settings, Dispatch& dispatch)
    : m_dock(dock)
    , m_files(files)
    , m_settings(settings)
    , m_fileURL(locate(files))
    , m_dockDefaults(dock.preferences())
    , m_hideDock(settings.hideDock())
    , m_restarts(dispatch.makeSerialQueue("dock", QualityOfService::userInitiated))
{
    reconcileOnStartup();
    m_settingsDidChange = settings.data().subscribe(
        [this](const UserSettingsData& data) { settingsDidChange(data.hideDock); });
}

void DockController::reconcileOnStartup()
{
    if (!m_settings.hideDock())
        restore(/*synchronous=*/false);
    else if (!isHidden())
        hide();
}

void DockController::settingsDidChange(bool hideDock)
{
    if (std::exchange(m_hideDock, hideDock) == hideDock)
        return;
    if (hideDock)
        hide();
    else
        restore(/*synchronous=*/false);
}

void DockController::finishRestarts()
{
    m_restarts->sync([] { });
}

bool DockController::isHidden() const
{
    auto delay = currentAutoHideDelay();
    return currentBounceEnabled() == hiddenBounceEnabled && m_dock.isAutoHideEnabled() && delay
        && std::abs(*delay - hiddenDelay) <= kDelayTolerance;
}

// MARK: What is done

/// Never without a way back.
void DockController::hide()
{
    bool isCaptured = !m_fileURL.empty() && m_files.exists(m_fileURL);
    if (isCaptured || captureInitialSettings())
        applyHideSettings();
}

void DockController::applyHideSettings()
{
    m_dock.setAutoHideEnabled(true);
    writePreferences(hiddenDelay, hiddenBounceEnabled);
    m_restarts->async([&dock = m_dock] { dock.restart(); });
}

void DockController::restore(bool synchronous)
{
    auto bytes = m_fileURL.empty() ? std::nullopt : m_files.read(m_fileURL, kLargestFile);
    auto initial = bytes ? InitialDockSettings::decoded(*bytes) : std::nullopt;
    if (!initial)
        return;
    m_dock.setAutoHideEnabled(initial->autoHideEnabled);
    writePreferences(restoredDelay, restoredBounceEnabled);
    static_cast<void>(m_files.remove(m_fileURL)); // if it stays, all is restored once more
    if (synchronous)
        m_dock.restart();
    else
        m_restarts->async([&dock = m_dock] { dock.restart(); });
}

void DockController::writePreferences(double delay, bool isBounceEnabled)
{
    if (!m_dockDefaults)
        return;
    m_dockDefaults->setDouble(delayKey, delay);
    m_dockDefaults->synchronise();
    m_dockDefaults->setBool(noBouncingKey, !isBounceEnabled);
    m_dockDefaults->synchronise();
}

std::optional<double> DockController::currentAutoHideDelay() const
{
    return numberIn(m_dockDefaults, delayKey);
}

std::optional<bool> DockController::currentBounceEnabled() const
{
    auto noBouncing = numberIn(m_dockDefaults, noBouncingKey);
    return noBouncing ? std::optional{*noBouncing == 0} : std::nullopt;
}

}
