#include "Hosts/X11/Desktop/DesktopServices.h"

#include "Hosts/Linux/Applications/LauncherBus.h"
#include "Hosts/Linux/Desktop/ObserverRegistry.h"
#include "Hosts/Linux/Desktop/X11LaunchServices.h"
#include "Hosts/X11/Capture/X11ScreenCapture.h"
#include "Hosts/X11/Desktop/Mirror.h"
#include "Hosts/X11/Desktop/WindowRequests.h"
#include "Hosts/X11/Desktop/X11Accessibility.h"
#include "Hosts/X11/Desktop/X11Displays.h"
#include "Hosts/X11/Desktop/X11WindowServer.h"
#include "Hosts/X11/Desktop/X11Workspace.h"

namespace quorvel::xdg::x11 {

struct DesktopServices::Parts {
    Parts(Connection& connection, Dispatch& dispatch, Monitors& monitors,
        PanelEnvironment& environment, DesktopEntries& entries, Icons& icons)
        : observers(model)
        , mirror(connection, dispatch, monitors, environment, entries, model, observers)
        , requests(connection, monitors, mirror.clients(), mirror.root(), model)
        , accessibility(model, observers, requests, dispatch)
        , windowServer(model, mirror, requests, environment)
        , displays(connection, monitors, mirror)
        , workspace(connection, model, mirror, requests, entries, icons)
        , screenCapture(model, dispatch)
        , launchServices(model)
        , launcherBus(launchServices.entries(), entries,
              [this] { launchServices.answersMayHaveChanged.emit(); })
        , attentionChanged(mirror.attentionDidChange.subscribe(
              [this] { launchServices.answersMayHaveChanged.emit(); }))
        , focusLost(mirror.focusWasLost.subscribe([this] { requests.focusWasLost(); }))
    {
        requests.onActivationAsked
            = [this](std::optional<WindowID> window) { mirror.expectFocus(window); };
    }

    SharedModel model;
    ObserverRegistry observers;
    Mirror mirror;
    WindowRequests requests;
    X11Accessibility accessibility;
    X11WindowServer windowServer;
    X11Displays displays;
    X11Workspace workspace;
    X11ScreenCapture screenCapture;
    X11LaunchServices launchServices;
    LauncherBus launcherBus;
    Subscription attentionChanged;
    Subscription focusLost;
};

DesktopServices::DesktopServices(Connection& connection, Dispatch& dispatch, Monitors& monitors,
    PanelEnvironment& environment, DesktopEntries& entries, Icons& icons)
    : m_parts(std::make_unique<Parts>(connection, dispatch, monitors, environment, entries, icons))
{
}

DesktopServices::~DesktopServices() = default;

Accessibility& DesktopServices::accessibility()
{
    return m_parts->accessibility;
}
WindowServer& DesktopServices::windowServer()
{
    return m_parts->windowServer;
}
Displays& DesktopServices::displays()
{
    return m_parts->displays;
}
Workspace& DesktopServices::workspace()
{
    return m_parts->workspace;
}
ScreenCapture& DesktopServices::screenCapture()
{
    return m_parts->screenCapture;
}
LaunchServices& DesktopServices::launchServices()
{
    return m_parts->launchServices;
}

}
