#include "Hosts/X11/Desktop/DesktopServices.h"

#include <algorithm>

#include "Hosts/Linux/Applications/LauncherBus.h"
#include "Hosts/Linux/Desktop/DesktopAccessibility.h"
#include "Hosts/Linux/Desktop/DesktopLaunchServices.h"
#include "Hosts/Linux/Desktop/DesktopMatching.h"
#include "Hosts/Linux/Desktop/DesktopPeeking.h"
#include "Hosts/Linux/Desktop/DesktopTracker.h"
#include "Hosts/Linux/Desktop/DesktopWindowServer.h"
#include "Hosts/Linux/Desktop/DesktopWorkspace.h"
#include "Hosts/Linux/Desktop/ObserverRegistry.h"
#include "Hosts/Linux/PanelEnvironment.h"
#include "Hosts/X11/Desktop/Mirror.h"
#include "Hosts/X11/Desktop/PropertyIcons.h"
#include "Hosts/X11/Desktop/RootNotes.h"
#include "Hosts/X11/Desktop/SessionReport.h"
#include "Hosts/X11/Desktop/StartupTokens.h"
#include "Hosts/X11/Desktop/WindowRequests.h"
#include "Hosts/X11/Desktop/WindowSession.h"
#include "Hosts/X11/Desktop/X11Displays.h"
#include "Hosts/X11/Desktop/X11PeekRequests.h"
#include "Hosts/X11/Monitors.h"

namespace quorvel::xdg::x11 {

struct DesktopServices::Parts {
    Parts(Connection& connection, Dispatch& dispatch, Monitors& monitors,
        PanelEnvironment& environment, DesktopEntries& entries, Icons& icons,
        const RootNotes& notes)
        : faded(connection, notes.faded)
        , observers(model)
        , tracker(dispatch, entries, model, observers)
        , mirror(connection, dispatch, monitors, environment, model, tracker)
        , requests(connection, monitors, mirror.clients(), mirror.root(), model)
        , accessibility(model, observers, requests, dispatch)
        , tokens(connection)
        , windowIcons(connection, mirror.clients())
        , windowServer(model, tracker, requests, environment, windowSession(connection, notes))
        , displays(connection, monitors, mirror)
        , workspace(model, tracker, requests, tokens, windowIcons, entries, icons)
        , matching(tracker, entries)
        , peekRequests(connection, faded, mirror.clients(), mirror.root(), notes.raised)
        , peeking(model, peekRequests)
        , launchServices(model)
        , launcherBus(launchServices.entries(), entries,
              [this] { launchServices.answersMayHaveChanged.emit(); })
        , attentionChanged(tracker.attentionDidChange.subscribe(
              [this] { launchServices.answersMayHaveChanged.emit(); }))
        , report(dispatch, mirror)
        , focusLost(tracker.focusWasLost.subscribe([this] { requests.focusWasLost(); }))
    {
        environment.canReserve = [&monitors](DisplayNumber display) {
            auto& all = monitors.list();
            auto own = std::ranges::find(all, display, &Monitor::number);
            return own != all.end() && !hasMonitorBelow(own->pixels, all);
        };
        requests.onActivationAsked
            = [this](std::optional<WindowID> window) { tracker.expectFocus(window); };
    }

    FadedWindows faded; ///< before windows are read: a bar that was killed may have left some
    SharedModel model;
    ObserverRegistry observers;
    DesktopTracker tracker;
    Mirror mirror;
    WindowRequests requests;
    DesktopAccessibility accessibility;
    StartupTokens tokens;
    PropertyIcons windowIcons;
    DesktopWindowServer windowServer;
    X11Displays displays;
    DesktopWorkspace workspace;
    DesktopMatching matching;
    X11PeekRequests peekRequests;
    DesktopPeeking peeking;
    DesktopLaunchServices launchServices;
    LauncherBus launcherBus;
    Subscription attentionChanged;
    SessionReport report;
    Subscription focusLost;
};

DesktopServices::DesktopServices(Connection& connection, Dispatch& dispatch, Monitors& monitors,
    PanelEnvironment& environment, DesktopEntries& entries, Icons& icons)
    : m_parts(std::make_unique<Parts>(
          connection, dispatch, monitors, environment, entries, icons, RootNotes::read(connection)))
{
}

DesktopServices::~DesktopServices() = default;

const SharedModel& DesktopServices::model() const
{
    return m_parts->model;
}
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
LaunchServices& DesktopServices::launchServices()
{
    return m_parts->launchServices;
}
ApplicationMatching& DesktopServices::applicationMatching()
{
    return m_parts->matching;
}
Peeking& DesktopServices::peeking()
{
    return m_parts->peeking;
}
LaunchTokens& DesktopServices::launchTokens()
{
    return m_parts->tokens;
}

}
