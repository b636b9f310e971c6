#include "Quorvel/Views/AppListMenu.h"

#include <utility>

#include "Quorvel/Core/PinStore.h"
#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Platform/Workspace.h"

namespace quorvel {

namespace {

MenuItem pinToggle(std::string title, const AppInfo& app, PinStore& pins, PinDestination to)
{
    bool isPinned = pins.isPinned(app.id(), to);
    return {std::move(title), true,
        [&pins, id = app.id(), to, isPinned] { pins.setPin(id, to, !isPinned); }, isPinned, {},
        MenuItemKind::toggle};
}

MenuItem pinEntry(const AppInfo& app, PinStore& pins)
{
    if (pins.isPinned(app.id(), PinDestination::launcher))
        return {tr("Unpin"), true,
            [&pins, id = app.id()] { pins.setPin(id, PinDestination::launcher, false); }};
    MenuItem pinTo{tr("Pin to"), true, {}};
    pinTo.submenu.push_back(pinToggle(tr("Bar"), app, pins, PinDestination::bar));
    // The bar finds what it shows by its bundle identifier.
    pinTo.submenu.back().isEnabled = app.hasBundleIdentifier();
    pinTo.submenu.push_back(pinToggle(tr("App menu"), app, pins, PinDestination::launcher));
    return pinTo;
}

}

Menu appListMenu(const AppInfo& app, const AppListMenuContext& context)
{
    Menu menu{{tr("Open"), true, [app, open = context.onOpen] { open(app); }}, {},
        pinEntry(app, context.pinStore)};
    auto actions = context.workspace.actions(app.path());
    if (!actions.empty())
        menu.push_back({});
    for (auto& action : actions)
        menu.push_back({action.title, true,
            [app, action, perform = context.onAction] { perform(app, action); }});
    return menu;
}

}
