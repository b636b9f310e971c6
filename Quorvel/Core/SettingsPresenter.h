#pragma once

#include <memory>

#include "Quorvel/Core/SettingsModel.h"
#include "Quorvel/Core/SettingsSessions.h"

namespace quorvel {

/// Opens the settings, in whatever way the system shows them. What they show is made when they are
/// first opened. Main thread.
class SettingsPresenter {
public:
    /// Where the system has no window for them, the second is null, and only other programs can
    /// show them. All it is given outlives it.
    SettingsPresenter(const SettingsSubjects&, SettingsWindow*, ControlChannel&, Dispatch&);
    ~SettingsPresenter();
    SettingsPresenter(const SettingsPresenter&) = delete;
    SettingsPresenter& operator=(const SettingsPresenter&) = delete;

    /// Shows the window, or raises the one that is there; if that one does not answer, another
    /// takes its place. False if it cannot be shown.
    bool show();

private:
    SettingsModel& model();

    const SettingsSubjects m_subjects;
    SettingsWindow* const m_window;
    std::unique_ptr<SettingsModel> m_model;
    SettingsSessions m_sessions;
};

}
