#include "Quorvel/CommandLine.h"

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
    return argument == "--state" || argument == "--quit";
}

}

std::variant<CommandLine, ControlReply> CommandLine::parse(
    const std::vector<std::string>& arguments)
{
    constexpr std::string_view traceTo = "--trace=";
    CommandLine line;
    for (auto& argument : arguments) {
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
        } else if (isRequest(argument) && line.request.empty()) {
            line.action = Action::ask;
            line.request = {argument};
        } else {
            return mistake("unexpected argument '" + argument + "'");
        }
    }
    if (line.action == Action::ask && (line.replace || line.traceFile))
        return mistake(line.request.front() + " goes alone");
    return line;
}

}
