#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel {

class DockControl;
class Files;
class Preferences;
class UserSettings;

/// How the user had the Dock before the program hid it.
struct InitialDockSettings {
    bool autoHideEnabled = false;

    std::string encoded() const;
    /// Absent unless the bytes are a JSON object with each field.
    static std::optional<InitialDockSettings> decoded(std::string_view bytes);

    friend bool operator==(const InitialDockSettings&, const InitialDockSettings&) = default;
};

/// Hides the system's Dock while the user wants the bar in its place, and brings it back. It cannot
/// be removed, so it is put out of reach: it hides by itself and appears only after a long rest of
/// the pointer at its edge.
///
/// A file with the user's own settings is there exactly while the Dock is hidden by this program.
/// It is written before the first change and removed after the last, so that a start after a crash
/// finds either mismatch and repairs it. The Dock stays hidden when the bar ends. Main thread.
class DockController {
public:
    static constexpr char delayKey[] = "autohide-delay";
    static constexpr char noBouncingKey[] = "no-bouncing";
    static constexpr double hiddenDelay = 1000.0; ///< seconds
    /// Seconds. Restoring writes this and `restoredBounceEnabled`, whatever the user had before.
    static constexpr double restoredDelay = 0.2;
    static constexpr bool hiddenBounceEnabled = false;
    static constexpr bool restoredBounceEnabled = true;

    /// Brings the Dock in line with the settings at once, and follows them.
    DockController(DockControl&, Files&, const UserSettings&, Dispatch&);
    DockController(const DockController&) = delete;
    DockController& operator=(const DockController&) = delete;

    /// The running program's instance; null where there is no Dock. Use only where the program is
    /// wired together.
    static DockController* shared();

    /// Repairs what an earlier run left behind.
    void reconcileOnStartup();
    /// Writes the file. False, and nothing is written, if that fails.
    bool captureInitialSettings();
    void applyHideSettings();
    /// Does nothing without a readable file. Synchronous: returns when the Dock has been restarted,
    /// which blocks the main thread for as long as the host lets a tool run; else that happens on
    /// another thread.
    void restore(bool synchronous);
    /// Before the program ends: what was written is of no use until the Dock has read it. Blocks as
    /// a synchronous `restore` does.
    void finishRestarts();
    /// Seconds.
    std::optional<double> currentAutoHideDelay() const;
    std::optional<bool> currentBounceEnabled() const;

    /// The file's path; empty if the system names no place for it.
    const std::string& fileURL() const { return m_fileURL; }

private:
    void settingsDidChange(bool hideDock);
    void hide();
    bool isHidden() const;
    void writePreferences(double delay, bool isBounceEnabled);

    DockControl& m_dock;
    Files& m_files;
    const UserSettings& m_settings;
    std::string m_fileURL;
    Preferences* m_dockDefaults; ///< null if they cannot be opened
    bool m_hideDock; ///< the setting, as it was last applied
    std::unique_ptr<Queue> m_restarts;
    Subscription m_settingsDidChange;
};

}
