#include <clocale>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include <malloc.h>
#include <unistd.h>

#include "Hosts/Linux/Accessible/AccessibleExport.h"
#include "Hosts/Linux/Applications/AutostartItem.h"
#include "Hosts/Linux/Applications/DesktopBundles.h"
#include "Hosts/Linux/Applications/DesktopEntries.h"
#include "Hosts/Linux/Applications/DirectoryEvents.h"
#include "Hosts/Linux/Applications/IconPictures.h"
#include "Hosts/Linux/Applications/Icons.h"
#include "Hosts/Linux/Applications/XdgFolders.h"
#include "Hosts/Linux/Desktop/SettingsProgram.h"
#include "Hosts/Linux/Drawing/TextShaper.h"
#include "Hosts/Linux/Gettext.h"
#include "Hosts/Linux/Loop/FdSource.h"
#include "Hosts/Linux/Loop/GLibDispatch.h"
#include "Hosts/Linux/PanelEnvironment.h"
#include "Hosts/Linux/Pictures/PictureDecoding.h"
#include "Hosts/Posix/Invocation.h"
#include "Hosts/Posix/PosixFiles.h"
#include "Hosts/Posix/StandardStreams.h"
#include "Hosts/X11/Capture/X11ScreenCapture.h"
#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Desktop/DesktopServices.h"
#include "Hosts/X11/DisplayClaim.h"
#include "Hosts/X11/Monitors.h"
#include "Hosts/X11/Surface/X11Surfaces.h"
#include "Hosts/X11/X11Application.h"
#include "Hosts/X11/XSettings.h"
#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Quorvel.h"

namespace quorvel::xdg::x11 {

namespace {

std::optional<posix::ControlAddress> addressOfDisplay(std::string& problem)
{
    const char* display = std::getenv("DISPLAY");
    if (!display || !*display) {
        problem = "no X display (DISPLAY is not set)";
        return std::nullopt;
    }
    return posix::ControlAddress::forDisplay(
        display, std::getenv("XDG_RUNTIME_DIR"), "/tmp", problem);
}

/// What the bar has of its display before it runs.
struct Display {
    std::unique_ptr<Connection> connection;
    std::unique_ptr<DisplayClaim> claim;
};

/// Programs start where the bar is: in the user's home, wherever it was started itself.
void goHome()
{
    if (chdir(homeFolder().c_str()) != 0)
        posix::tell("cannot enter " + homeFolder());
}

int runBar(Display display, const CommandLine& line, ControlChannel& control, Trace& trace)
{
    goHome();
    GLibDispatch dispatch;
    auto& connection = display.connection;
    XSettings settings{*connection};
    Monitors monitors{*connection, dispatch, settings.looks()};
    PanelEnvironment environment;
    DesktopEntries entries{dispatch};
    IconPictures pictures{dispatch, DecoderProcess::ownCommand()};
    Icons icons{entries, pictures};
    icons.follow(settings.looks());
    X11Application application{*connection, settings.looks()};
    auto replaced = display.claim->lost.subscribe([&] { application.terminate(); });
    X11Surfaces surfaces{*connection, dispatch, monitors, environment, application.appearance()};
    auto picturesArrived = pictures.arrived.subscribe([&] { surfaces.repaintAll(); });
    AccessibleExport accessible{dispatch, surfaces.accessible(), environment};
    DesktopServices desktop{*connection, dispatch, monitors, environment, entries, icons};
    X11ScreenCapture screenCapture{desktop.model(), dispatch, connection.get()};
    DesktopBundles bundles{entries};
    DirectoryEvents fileEvents{dispatch};
    posix::PosixFiles files{{configurationFolder(), stateFolder(), /*keepsRejectedFiles=*/true}};
    SettingsProgram settingsWindow{desktop.launchTokens(), dispatch, SettingsProgram::ownFolder()};
    AutostartItem loginItem{files, AutostartItem::userFile(), AutostartItem::runningProgram()};
    return QuorvelApp::main(
        {
            .dispatch = dispatch,
            .accessibility = desktop.accessibility(),
            .windowServer = desktop.windowServer(),
            .displays = desktop.displays(),
            .workspace = desktop.workspace(),
            .bundles = bundles,
            .fileEvents = fileEvents,
            .screenCapture = screenCapture,
            .application = application,
            .surfaces = surfaces,
            .text = surfaces.text(),
            .control = control,
            .files = files,
            .loginItem = loginItem,
            .launchServices = desktop.launchServices(),
            .trace = trace,
            .hotkeys = &surfaces.hotkeys(),
            .settingsWindow = &settingsWindow,
            .applicationMatching = &desktop.applicationMatching(),
            .peeking = &desktop.peeking(),
        },
        line.permissionsRehearsal);
}

/// Not one that asks the bar for something.
bool becomesTheBar(const std::vector<std::string>& arguments)
{
    const auto parsed = CommandLine::parse(arguments);
    const auto* line = std::get_if<CommandLine>(&parsed);
    return line && line->action == CommandLine::Action::run;
}

}

}

int main(int count, char** values)
{
    using namespace quorvel;
    if (count == 2 && std::string_view{values[1]} == xdg::kDecodePictures)
        return xdg::decodePictures();
    // The other threads allocate little; memory of its own would cost each of them more than a
    // lock.
    mallopt(M_ARENA_MAX, 1);
    posix::secureStandardStreams();
    std::setlocale(LC_ALL, ""); // no other thread may run beside it
    const std::vector<std::string> arguments{values + 1, values + count};
    if (xdg::x11::becomesTheBar(arguments))
        xdg::TextShaper::beginReadingFonts();
    xdg::useGettext();
    xdg::x11::Display display;
    auto open = [&](std::string& problem) {
        display.connection = xdg::x11::Connection::open(problem);
        return display.connection != nullptr;
    };
    auto claim = [&](bool replace, std::string& problem) {
        display.claim = xdg::x11::DisplayClaim::take(*display.connection, replace, problem);
        return display.claim != nullptr;
    };
    auto run = [&](const CommandLine& line, ControlChannel& control, Trace& trace) {
        return xdg::x11::runBar(std::move(display), line, control, trace);
    };
    return posix::invoke(
        arguments, {xdg::x11::addressOfDisplay, xdg::hostLoop(), open, claim, run});
}
