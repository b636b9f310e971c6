#include "Quorvel/Views/AppLauncherPanel.h"

#include <utility>

#include "Quorvel/Platform/Workspace.h"

namespace quorvel {

AppLauncherPanel::AppLauncherPanel(const Platform& given, Menus& menus, const PanelOptions& options,
    const LauncherContents& contents)
    : SearchPanel(given, menus, options, contents.onDismiss)
{
    auto content = std::make_unique<AppLauncherContent>(
        SearchPanelContent::Inputs{platform(), surface(), contents.settings}, contents.appLauncher,
        contents.pinStore);
    m_content = content.get();
    // Copies of these two are in menus, which may outlive the panel.
    content->onLaunch = [&workspace = platform().workspace, dismiss = dismissal()](auto& app) {
        workspace.openApplication(app.path());
        dismiss();
    };
    content->onActionChosen
        = [&workspace = platform().workspace, dismiss = dismissal()](auto& app, auto& action) {
              workspace.perform(action, app.path());
              dismiss();
          };
    setContent(std::move(content));
}

}
