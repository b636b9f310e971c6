#pragma once

#include <functional>

#include "Quorvel/Core/AppInfo.h"
#include "Quorvel/Platform/Menu.h"

namespace quorvel {

class PinStore;
class Workspace;

struct AppListMenuContext {
    PinStore& pinStore;
    const Workspace& workspace;
    std::function<void(const AppInfo&)> onOpen;
    std::function<void(const AppInfo&, const ApplicationAction&)> onAction;
};

/// The menu of an application in the launcher. The context's references outlive it.
Menu appListMenu(const AppInfo&, const AppListMenuContext&);

}
