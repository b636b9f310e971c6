#include "Quorvel/Core/SettingsPresenter.h"

namespace quorvel {

SettingsPresenter::SettingsPresenter(const SettingsSubjects& subjects, SettingsWindow* window,
    ControlChannel& control, Dispatch& dispatch)
    : m_subjects(subjects)
    , m_window(window)
    , m_sessions(control, dispatch, [this]() -> SettingsModel& { return model(); })
{
    m_sessions.onSilence = [this] {
        if (m_window)
            m_window->replace(model());
    };
}

SettingsPresenter::~SettingsPresenter()
{
    if (m_window)
        m_window->close();
}

SettingsModel& SettingsPresenter::model()
{
    if (!m_model)
        m_model = std::make_unique<SettingsModel>(m_subjects);
    return *m_model;
}

bool SettingsPresenter::show()
{
    if (m_sessions.present())
        return true;
    if (!m_window)
        return false;
    model().lookAgain();
    return m_window->show(model());
}

}
