#pragma once

#include <functional>

#include "Quorvel/Core/PermissionsGateModel.h"
#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Views/PermissionsGatePanel.h"

namespace quorvel {

/// Keeps the permissions' window up until the user goes on or quits. Main thread.
class PermissionsGateWindowController {
public:
    /// The platform's services and the centre outlive it.
    PermissionsGateWindowController(const Platform&, LaunchPermissionCenter&);

    // Called in a turn of the loop of their own, so that they may end the controller.
    /// Everything is granted, the user wants to go on, and the window has closed.
    std::function<void()> onContinue;
    /// The user wants to quit, perhaps by closing the window.
    std::function<void()> onQuit;

    void show();
    /// Without counting as the user's wish to quit.
    void close();

private:
    void proceed();
    void quit();

    Dispatch& m_dispatch;
    PermissionsGateModel m_model;
    PermissionsGatePanel m_panel;
    bool m_suppressDismissAction = false; ///< the controller itself closes the window
    WorkItem m_answer;
};

}
