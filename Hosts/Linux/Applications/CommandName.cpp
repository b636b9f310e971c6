#include <algorithm>
#include <array>
#include <vector>

#include "Hosts/Linux/Applications/DesktopEntryFile.h"
#include "Hosts/Linux/Applications/DesktopEntryIndex.h"
#include "Hosts/Linux/Applications/ExecLine.h"

namespace quorvel::xdg {
namespace {

std::string baseName(std::string_view path)
{
    return std::string{path.substr(path.rfind('/') + 1)}; // npos + 1 is 0
}

bool isAssignment(std::string_view word)
{
    const auto equals = word.find('=');
    return equals != std::string_view::npos && equals > 0 && word.find('/') > equals;
}

bool isOneOf(std::string_view name, std::span<const std::string_view> names)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

bool isNumber(std::string_view word)
{
    return !word.empty() && word.find_first_not_of("0123456789") == std::string_view::npos;
}

/// What stands before the program when a command line sets the environment or the circumstances in
/// which it runs.
bool isPreamble(std::string_view word)
{
    constexpr std::array<std::string_view, 14> runners{"env", "exec", "command", "nice", "ionice",
        "nohup", "setsid", "time", "dbus-launch", "dbus-run-session", "prime-run", "gamemoderun",
        "mangohud", "firejail"};
    return isAssignment(word) || word.starts_with('-') || isNumber(word)
        || isOneOf(baseName(word), runners);
}

/// A file that carries its whole application, named with version and machine.
std::string bundledName(std::string_view name)
{
    const auto plain = withoutVersion(name);
    return std::string{plain.substr(0, std::min(plain.find("-x86_64"), plain.find("-aarch64")))};
}

std::string withoutScriptEnding(std::string name)
{
    if (constexpr std::string_view ending = ".AppImage"; name.ends_with(ending))
        return bundledName(name.substr(0, name.size() - ending.size()));
    for (const std::string_view ending : {".py", ".sh", ".pl", ".jar", ".js", ".rb", ".exe"}) {
        if (name.size() > ending.size() && name.ends_with(ending))
            return name.substr(0, name.size() - ending.size());
    }
    return name;
}

/// Java's windows have the main class as their class, with hyphens for the dots.
std::string javaName(std::span<const std::string> arguments)
{
    constexpr std::array<std::string_view, 5> takesValue{
        "-cp", "-classpath", "--class-path", "-p", "--module-path"};
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (isOneOf(arguments[i], takesValue)) {
            ++i;
        } else if (!arguments[i].starts_with('-')) {
            auto name = baseName(arguments[i]);
            if (name.ends_with(".jar"))
                return withoutScriptEnding(std::move(name));
            std::replace(name.begin(), name.end(), '.', '-');
            return name;
        }
    }
    return {};
}

/// A shell's script on the command line: what its first program is, after the likes of "cd".
std::string inlineScriptName(std::string_view script)
{
    constexpr std::array<std::string_view, 8> notTheProgram{
        "cd", "export", "unset", "test", "[", "sleep", "umask", "."};
    while (!script.empty()) {
        const auto end = std::min(script.find_first_of(";&|\n"), script.size());
        auto name = commandName(script.substr(0, end));
        if (!name.empty() && !isOneOf(name, notTheProgram))
            return name;
        script.remove_prefix(std::min(end + 1, script.size()));
    }
    return {};
}

/// The file that an interpreter is given. What follows -m is no file, and what follows -c is only
/// read where it is a shell's.
std::string scriptName(std::string_view interpreter, std::span<const std::string> arguments)
{
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const auto& argument = arguments[i];
        const bool isInline = argument.starts_with('-') && argument.ends_with('c');
        if (isInline && interpreter.ends_with("sh") && i + 1 < arguments.size())
            return inlineScriptName(arguments[i + 1]);
        if (argument == "-c" || argument == "-m" || argument.starts_with('%'))
            return {};
        if (!argument.starts_with('-'))
            return withoutScriptEnding(baseName(argument));
    }
    return {};
}

/// The application that a package manager runs; a branch may follow its name.
std::string packageName(std::span<const std::string> arguments)
{
    if (arguments.empty() || arguments.front() != "run")
        return {};
    const auto named = std::ranges::find_if(
        arguments.begin() + 1, arguments.end(), [](auto& word) { return !word.starts_with('-'); });
    return named == arguments.end() ? std::string{} : named->substr(0, named->find('/'));
}

}

bool isInterpreter(std::string_view programName)
{
    constexpr std::array<std::string_view, 22> interpreters{"sh", "bash", "dash", "zsh", "ksh",
        "env", "perl", "ruby", "node", "nodejs", "electron", "java", "javaw", "wine", "wine64",
        "mono", "gjs", "flatpak", "snap", "sudo", "pkexec", "python"};
    if (isOneOf(programName, interpreters))
        return true;
    const std::string_view versioned{"python"}; // also with a version: python3, python3.11
    return programName.starts_with(versioned)
        && programName.find_first_not_of("0123456789.", versioned.size()) == std::string_view::npos;
}

std::string commandName(std::string_view exec)
{
    const auto words = wordsOf(exec);
    std::span<const std::string> rest{words};
    while (!rest.empty() && isPreamble(rest.front()))
        rest = rest.subspan(1);
    if (rest.empty())
        return {};

    auto program = baseName(rest.front());
    if (!isInterpreter(program))
        return withoutScriptEnding(std::move(program));
    const auto arguments = rest.subspan(1);
    if (program == "flatpak" || program == "snap")
        return packageName(arguments);
    return program.starts_with("java") ? javaName(arguments) : scriptName(program, arguments);
}

}
