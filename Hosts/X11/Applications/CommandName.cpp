#include <algorithm>
#include <array>
#include <vector>

#include "Hosts/X11/Applications/DesktopEntryFile.h"

namespace quorvel::x11 {
namespace {

constexpr std::size_t kMostWords = 64;

/// Splits a command line at blanks outside of double quotes.
std::vector<std::string> wordsOf(std::string_view exec)
{
    std::vector<std::string> words;
    std::string word;
    bool isQuoted = false;
    bool hasWord = false;
    for (std::size_t i = 0; i < exec.size() && words.size() < kMostWords; ++i) {
        const char letter = exec[i];
        if (letter == '"') {
            isQuoted = !isQuoted;
            hasWord = true;
        } else if (letter == '\\' && isQuoted && i + 1 < exec.size()) {
            word += exec[++i];
        } else if ((letter == ' ' || letter == '\t') && !isQuoted) {
            if (hasWord)
                words.push_back(std::move(word));
            word.clear();
            hasWord = false;
        } else {
            word += letter;
            hasWord = true;
        }
    }
    if (hasWord)
        words.push_back(std::move(word));
    return words;
}

std::string baseName(std::string_view path)
{
    return std::string{path.substr(path.rfind('/') + 1)}; // npos + 1 is 0
}

bool isAssignment(std::string_view word)
{
    const auto equals = word.find('=');
    return equals != std::string_view::npos && equals > 0 && word.find('/') > equals;
}

/// What stands before the program when a command line sets its environment.
bool isPreamble(std::string_view word)
{
    return isAssignment(word) || word.starts_with('-') || baseName(word) == "env";
}

std::string withoutScriptEnding(std::string name)
{
    for (const std::string_view ending : {".py", ".sh", ".pl", ".jar", ".js", ".rb", ".exe"}) {
        if (name.size() > ending.size() && name.ends_with(ending))
            return name.substr(0, name.size() - ending.size());
    }
    return name;
}

bool isOneOf(std::string_view name, std::span<const std::string_view> names)
{
    return std::find(names.begin(), names.end(), name) != names.end();
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

/// The file that an interpreter is given. What follows -c or -m is no file.
std::string scriptName(std::span<const std::string> arguments)
{
    for (const auto& argument : arguments) {
        if (argument == "-c" || argument == "-m" || argument.starts_with('%'))
            return {};
        if (!argument.starts_with('-'))
            return withoutScriptEnding(baseName(argument));
    }
    return {};
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
    if (program == "flatpak" || program == "snap")
        return {}; // its id is the file's name already
    const auto arguments = rest.subspan(1);
    return program.starts_with("java") ? javaName(arguments) : scriptName(arguments);
}

}
