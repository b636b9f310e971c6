#include "Quorvel/Core/NewWindow.h"

#include <algorithm>

#include "Quorvel/Platform/Workspace.h"

namespace quorvel {

void openNewWindow(Workspace& workspace, const std::string& bundleID)
{
    auto url = workspace.applicationURL(bundleID);
    if (!url)
        return;
    auto actions = workspace.actions(*url);
    auto action = std::ranges::find(actions, kNewWindowAction, &ApplicationAction::identifier);
    if (action != actions.end())
        workspace.perform(*action, *url);
    else if (workspace.canOpenNewInstance(*url))
        workspace.openNewInstance(*url);
    else
        workspace.openApplication(*url);
}

}
