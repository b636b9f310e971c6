#include <csignal>

#include "Hosts/MacOS/Cocoa.h"
#include "Hosts/MacOS/Invocation.h"
#include "Hosts/MacOS/MacApplication.h"
#include "Hosts/MacOS/MacSurfaces.h"
#include "Hosts/MacOS/MacWorkspace.h"
#include "Hosts/MacOS/ScreenWatcher.h"
#include "Hosts/MacOS/System/MacAccessibility.h"
#include "Hosts/MacOS/System/MacDispatch.h"
#include "Hosts/MacOS/System/MacScreenCapture.h"
#include "Hosts/MacOS/System/MacWindowServer.h"
#include "Hosts/MacOS/TextLine.h"
#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Quorvel.h"

namespace quorvel {

namespace {

/// The system reads this setting when the user logs in.
MacWindowServer::DisplaySpaces displaySpaces()
{
    return NSScreen.screensHaveSeparateSpaces ? MacWindowServer::DisplaySpaces::separate
                                              : MacWindowServer::DisplaySpaces::shared;
}

int runBar(ControlChannel& control, Trace& trace)
{
    const PrivateSymbols symbols = PrivateSymbols::load();
    MacApplication application;
    MacDispatch dispatch;
    MacAccessibility accessibility{symbols};
    MacWindowServer windowServer{symbols, displaySpaces()};
    MacDisplays displays;
    const ScreenWatcher screenWatcher{displays};
    MacWorkspace workspace;
    MacScreenCapture screenCapture;
    MacSurfaces surfaces{windowServer, dispatch.main()};
    CoreTextText text;
    return QuorvelApp::main({
        .dispatch = dispatch,
        .accessibility = accessibility,
        .windowServer = windowServer,
        .displays = displays,
        .workspace = workspace,
        .screenCapture = screenCapture,
        .application = application,
        .surfaces = surfaces,
        .text = text,
        .control = control,
        .trace = trace,
    });
}

}

}

int main(int count, char** values)
{
    @autoreleasepool {
        // A client that hangs up must not end us. A handler, not "ignore", which the programs that
        // are started from here would inherit.
        struct sigaction action { };
        action.sa_handler = [](int) {};
        action.sa_flags = SA_RESTART;
        sigaction(SIGPIPE, &action, nullptr);
        return quorvel::invoke({values + 1, values + count}, quorvel::runBar);
    }
}
