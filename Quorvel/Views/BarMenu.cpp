#include "Quorvel/Views/BarMenu.h"

#include <utility>

#include "Quorvel/Platform/Application.h"
#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Version.h"

namespace quorvel {

Menu barMenu(
    Application& application, std::function<void()> onSettings, std::optional<MenuItem> monitor)
{
    Menu menu;
    menu.push_back({std::string{"Quorvel "} + kVersion, false, {}});
    menu.push_back({});
    if (onSettings)
        menu.push_back({tr("Settings\u2026"), true, std::move(onSettings)});
    if (monitor)
        menu.push_back(*std::move(monitor));
    if (!menu.back().title.empty())
        menu.push_back({});
    menu.push_back({tr("Quit Quorvel"), true, [&application] { application.terminate(); }});
    return menu;
}

}
