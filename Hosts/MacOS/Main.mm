#include <array>

#include <Security/AuthSession.h>
#include <Security/SecBase.h>
#include <sys/sysctl.h>

#include "Hosts/MacOS/Cocoa.h"
#include "Hosts/MacOS/Conversions.h"
#include "Hosts/MacOS/MacApplication.h"
#include "Hosts/MacOS/MacBundles.h"
#include "Hosts/MacOS/MacLoginItem.h"
#include "Hosts/MacOS/MacSettingsWindow.h"
#include "Hosts/MacOS/MacSurfaces.h"
#include "Hosts/MacOS/MacUpdater.h"
#include "Hosts/MacOS/MacWindowCapture.h"
#include "Hosts/MacOS/MacWorkspace.h"
#include "Hosts/MacOS/Rules/ProgramArguments.h"
#include "Hosts/MacOS/ScreenWatcher.h"
#include "Hosts/MacOS/System/FdSource.h"
#include "Hosts/MacOS/System/MacAccessibility.h"
#include "Hosts/MacOS/System/MacDispatch.h"
#include "Hosts/MacOS/System/MacDockControl.h"
#include "Hosts/MacOS/System/MacFileEvents.h"
#include "Hosts/MacOS/System/MacHotkeys.h"
#include "Hosts/MacOS/System/MacLaunchServices.h"
#include "Hosts/MacOS/System/MacWindowServer.h"
#include "Hosts/MacOS/TextLine.h"
#include "Hosts/Posix/Invocation.h"
#include "Hosts/Posix/PosixFiles.h"
#include "Hosts/Posix/StandardStreams.h"
#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Quorvel.h"

namespace quorvel {

namespace {

/// The system reads this setting when the user logs in.
MacWindowServer::DisplaySpaces displaySpaces()
{
    return NSScreen.screensHaveSeparateSpaces ? MacWindowServer::DisplaySpaces::separate
                                              : MacWindowServer::DisplaySpaces::shared;
}

/// A user has one screen session, so its displays share one bar. The temporary folder is the
/// user's own here.
std::optional<posix::ControlAddress> barAddress(std::string& problem)
{
    const std::string folder = fromSystem(NSTemporaryDirectory());
    return posix::ControlAddress::forDisplay("screen", folder.c_str(), "/tmp", problem);
}

/// The start of the machine and the log-in. Window numbers last as long as both.
std::optional<std::string> windowSession()
{
    std::array<char, 64> boot{};
    std::size_t size = boot.size() - 1;
    SecuritySessionId session = noSecuritySession;
    if (sysctlbyname("kern.bootsessionuuid", boot.data(), &size, nullptr, 0) != 0
        || SessionGetInfo(callerSecuritySession, &session, nullptr) != errSecSuccess)
        return std::nullopt;
    return std::string{boot.data()} + "-" + std::to_string(session);
}

std::optional<std::string> applicationSupportFolder()
{
    NSURL* folder = [NSFileManager.defaultManager URLsForDirectory:NSApplicationSupportDirectory
                                                         inDomains:NSUserDomainMask]
                        .firstObject;
    if (!folder.path)
        return std::nullopt;
    return fromSystem(folder.path);
}

/// From the tables of the bundle, in the first of the user's languages that it has.
std::string localized(const char* english)
{
    return fromSystem([NSBundle.mainBundle localizedStringForKey:toSystem(english)
                                                           value:nil
                                                           table:nil]);
}

/// A table of plural forms (stringsdict) has the text for one thing as its key. What it answers
/// looks like any text, and becomes one of the forms when it is formatted with the number.
std::string localizedPlural(const char* one, const char* many, std::size_t count)
{
    NSString* text = [NSBundle.mainBundle localizedStringForKey:toSystem(one)
                                                          value:toSystem(count == 1 ? one : many)
                                                          table:nil];
    return fromSystem([NSString localizedStringWithFormat:text, static_cast<unsigned long>(count)]);
}

int runBar(const CommandLine& line, ControlChannel& control, Trace& trace)
{
    const PrivateSymbols symbols = PrivateSymbols::load();
    MacApplication application;
    MacDispatch dispatch;
    MacAccessibility accessibility{symbols};
    MacWindowServer windowServer{symbols, displaySpaces(), windowSession()};
    MacDisplays displays;
    const ScreenWatcher screenWatcher{displays};
    MacWorkspace workspace;
    MacBundles bundles;
    MacFileEvents fileEvents;
    MacWindowCapture screenCapture;
    MacSurfaces surfaces{{windowServer, application, workspace, dispatch.main()}};
    CoreTextText text;
    posix::PosixFiles files{
        {applicationSupportFolder(), applicationSupportFolder(), /*keepsRejectedFiles=*/false}};
    MacLoginItem loginItem;
    MacHotkeys hotkeys;
    MacLaunchServices launchServices{symbols};
    MacSettingsWindow settingsWindow;
    MacDockControl dock{symbols};
    const std::unique_ptr<MacUpdater> updater = MacUpdater::load();
    return QuorvelApp::main(
        {
            .dispatch = dispatch,
            .accessibility = accessibility,
            .windowServer = windowServer,
            .displays = displays,
            .workspace = workspace,
            .bundles = bundles,
            .fileEvents = fileEvents,
            .screenCapture = screenCapture,
            .application = application,
            .surfaces = surfaces,
            .text = text,
            .control = control,
            .files = files,
            .loginItem = loginItem,
            .launchServices = launchServices,
            .trace = trace,
            .dockControl = MacDockControl::isAvailable(symbols) ? &dock : nullptr,
            .updater = updater.get(),
            .hotkeys = &hotkeys,
            .settingsWindow = &settingsWindow,
        },
        line.permissionsRehearsal);
}

}

}

int main(int count, char** values)
{
    @autoreleasepool {
        quorvel::posix::secureStandardStreams();
        quorvel::Translator::current() = {quorvel::localized, quorvel::localizedPlural};
        return quorvel::posix::invoke(quorvel::withoutSystemArguments({values + 1, values + count}),
            {quorvel::barAddress, quorvel::hostLoop(), {}, {}, quorvel::runBar});
    }
}
