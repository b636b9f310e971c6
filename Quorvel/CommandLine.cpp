#include "Quorvel/CommandLine.h"

#include <algorithm>
#include <string_view>

#include "Quorvel/Version.h"

namespace quorvel {

namespace {

constexpr int kUsageError = 2;

constexpr std::string_view kHelp = R"(Usage: quorvel [OPTION]...
A taskbar along the bottom of the screen.

  --replace        take over from the bar that is running
  --trace[=FILE]   write a diagnostic log to FILE, or to standard error

To the running bar:
  --state          print its windows, spaces and panels as JSON
  --get [FIELD]    print its settings, or one of them, as JSON
  --set FIELD=VALUE
                   change a setting: VALUE is JSON or plain text; null clears
                   hotkeyKeyCode, hotkeyModifiers, findKeyCode, findModifiers and
                   others
  --launcher       open the list of applications, or close it
  --find           open the list of windows, to go to one, or close it
  --settings       open the settings
  --explain WINDOW
                   say why a window has a chip or none, and which application it
                   was matched to: by its number or its number in hex, or focused
  --match WINDOW [APPLICATION]
                   match windows like this one to an installed application, named
                   by its desktop file; without one, as before
  --focus          give it the keyboard: arrows, Return, Menu, Escape
  --toggle-bar     send it out of sight, or get it back: where autoHide is on
  --quit           end it

  --help           show this text
  --version        show the version
)";

ControlReply mistake(const std::string& text)
{
    return {kUsageError, "", "quorvel: " + text + "\nTry 'quorvel --help'.\n"};
}

bool isRequest(std::string_view argument)
{
    return argument == "--state" || argument == "--quit" || argument == "--focus"
        || argument == "--explain" || argument == "--match" || argument == "--launcher"
        || argument == "--find" || argument == "--settings" || argument == "--toggle-bar"
        || argument == "--get" || argument == "--set";
}

/// Whether the argument belongs to the request before it.
bool continues(const std::vector<std::string>& request, std::string_view argument)
{
    if (request.empty())
        return false;
    auto& name = request[0];
    if (request.size() == 1 && (name == "--set" || name == "--explain" || name == "--match"))
        return true;
    bool mayFollow
        = (request.size() == 1 && name == "--get") || (request.size() == 2 && name == "--match");
    return mayFollow && !argument.starts_with('-');
}

/// What a request lacks; empty if nothing.
std::string_view lacking(const std::vector<std::string>& request)
{
    if (request.empty())
        return {};
    if (request[0] == "--set" && (request.size() < 2 || request[1].find('=') == std::string::npos))
        return "--set takes FIELD=VALUE";
    if (request[0] == "--explain" && request.size() < 2)
        return "--explain takes a window";
    if (request[0] == "--match" && request.size() < 2)
        return "--match takes a window";
    return {};
}

/// What a rehearsal begins with: of "--show-permissions-gate=accessibility,screen-recording" the
/// part behind the name. Absent for any other text.
std::optional<LaunchPermissionsState> granted(std::string_view text)
{
    if (text.empty())
        return LaunchPermissionsState{};
    if (!text.starts_with('='))
        return {};
    LaunchPermissionsState state;
    for (text.remove_prefix(1); !text.empty();) {
        auto word = text.substr(0, text.find(','));
        if (word == "accessibility")
            state.accessibilityGranted = true;
        else if (word == "screen-recording")
            state.screenRecordingGranted = true;
        else
            return {};
        text.remove_prefix(std::min(text.size(), word.size() + 1));
    }
    return state;
}

}

std::variant<CommandLine, ControlReply> CommandLine::parse(
    const std::vector<std::string>& arguments)
{
    constexpr std::string_view traceTo = "--trace=";
    constexpr std::string_view showGate = "--show-permissions-gate";
    CommandLine line;
    for (auto& argument : arguments) {
        if (continues(line.request, argument)) {
            line.request.push_back(argument);
            continue;
        }
        if (argument == "--help")
            return ControlReply{0, std::string{kHelp}, ""};
        if (argument == "--version")
            return ControlReply{0, std::string{"quorvel "} + kVersion + "\n", ""};
        if (argument == "--replace") {
            line.replace = true;
        } else if (argument == "--trace") {
            line.traceFile = "";
        } else if (argument.starts_with(traceTo) && argument.size() > traceTo.size()) {
            line.traceFile = argument.substr(traceTo.size());
        } else if (auto rehearsal = argument.starts_with(showGate)
                ? granted(argument.substr(showGate.size()))
                : std::nullopt) {
            line.permissionsRehearsal = rehearsal;
        } else if (isRequest(argument) && line.request.empty()) {
            line.action = Action::ask;
            line.request = {argument};
        } else {
            return mistake("unexpected argument '" + argument + "'");
        }
    }
    if (auto problem = lacking(line.request); !problem.empty())
        return mistake(std::string{problem});
    if (line.action == Action::ask && (line.replace || line.traceFile || line.permissionsRehearsal))
        return mistake(line.request.front() + " goes alone");
    return line;
}

}
