#include "Quorvel/Views/PermissionsGateWindowController.h"

#include <utility>

namespace quorvel {

PermissionsGateWindowController::PermissionsGateWindowController(
    const Platform& platform, LaunchPermissionCenter& center)
    : m_dispatch(platform.dispatch)
    , m_model(platform.dispatch, center)
    , m_panel(platform, m_model)
{
    m_panel.onContinue = [this] { proceed(); };
    m_panel.onQuit = [this] { quit(); };
    m_panel.onClosed = [this] {
        if (!m_suppressDismissAction)
            quit();
    };
}

void PermissionsGateWindowController::show()
{
    m_model.startMonitoring();
    m_panel.show();
}

void PermissionsGateWindowController::close()
{
    m_model.stopMonitoring();
    m_suppressDismissAction = true;
    m_panel.close();
    m_suppressDismissAction = false;
}

/// The button may show what was true a second ago.
void PermissionsGateWindowController::proceed()
{
    if (m_answer.isPending())
        return;
    m_model.refresh();
    if (!m_model.state().value().areAllGranted())
        return;
    close();
    m_answer = m_dispatch.main().after(Duration::zero(), [this] {
        auto tell = onContinue;
        if (tell)
            tell(); // which may end the controller, so that the call is the last
    });
}

void PermissionsGateWindowController::quit()
{
    if (m_answer.isPending())
        return;
    m_model.stopMonitoring();
    m_answer = m_dispatch.main().after(Duration::zero(), [this] {
        auto tell = onQuit;
        if (tell)
            tell();
    });
}

}
