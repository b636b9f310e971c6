#include "Quorvel/Core/PermissionsGateModel.h"

#include "Quorvel/Core/LaunchPermissionCenter.h"

namespace quorvel {

PermissionsGateModel::PermissionsGateModel(Dispatch& dispatch, LaunchPermissionCenter& center)
    : m_dispatch(dispatch)
    , m_center(center)
{
}

void PermissionsGateModel::startMonitoring()
{
    refresh();
    m_refreshTimer = m_dispatch.main().every(kPollInterval, [this] { refresh(); });
}

void PermissionsGateModel::refresh()
{
    m_state.set(m_center.currentState());
}

void PermissionsGateModel::requestAccessibility()
{
    m_center.requestAccessibility();
    refresh();
}

void PermissionsGateModel::requestScreenRecording()
{
    m_center.requestScreenRecording();
    refresh();
}

}
