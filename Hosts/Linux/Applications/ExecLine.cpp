#include "Hosts/Linux/Applications/ExecLine.h"

#include <memory>
#include <span>

#include "Hosts/Linux/GHandles.h"

namespace quorvel::xdg {

namespace {

using Files = std::span<const std::string>;

std::string quoted(const std::string& text)
{
    return text.empty() ? std::string{} : GText{g_shell_quote(text.c_str())}.get();
}

/// A file as this code wants it.
std::string fileWord(char code, const std::string& path, const ExecFields& fields)
{
    switch (code) {
    case 'u':
    case 'U':
        return quoted(fields.takesOnlyURIs ? addressOf(path) : path);
    case 'd':
    case 'D':
        return quoted(GText{g_path_get_dirname(path.c_str())}.get());
    case 'n':
    case 'N':
        return quoted(GText{g_path_get_basename(path.c_str())}.get());
    default:
        return quoted(path);
    }
}

/// Appends what a code stands for, and takes the files that it uses up.
void expand(char code, std::string& line, const ExecFields& fields, Files& files)
{
    switch (code) {
    case 'f':
    case 'u':
    case 'd':
    case 'n':
        if (files.empty())
            return;
        line += fileWord(code, files.front(), fields);
        files = files.subspan(1);
        return;
    case 'F':
    case 'U':
    case 'D':
    case 'N':
        for (; !files.empty(); files = files.subspan(1))
            line += fileWord(code, files.front(), fields) + (files.size() > 1 ? " " : "");
        return;
    case 'i':
        line += fields.icon.empty() ? std::string{} : "--icon " + quoted(fields.icon);
        return;
    case 'c':
        line += quoted(fields.name);
        return;
    case 'k':
        line += quoted(fields.desktopFile);
        return;
    case '%':
        line += '%';
        return;
    default:
        return;
    }
}

/// One command line, for as many of the files as it takes.
std::string expandedLine(std::string_view exec, const ExecFields& fields, Files& files)
{
    const auto before = files.size();
    std::string line;
    for (std::size_t i = 0; i < exec.size(); ++i) {
        if (exec[i] == '%' && i + 1 < exec.size())
            expand(exec[++i], line, fields, files);
        else
            line += exec[i];
    }
    if (!files.empty() && files.size() == before) {
        line += ' ';
        expand('f', line, fields, files);
    }
    return line;
}

}

std::string addressOf(const std::string& file)
{
    if (!file.starts_with('/'))
        return file;
    const GText address{g_filename_to_uri(file.c_str(), nullptr, nullptr)};
    return address ? address.get() : "";
}

Arguments wordsOf(std::string_view line)
{
    char** words = nullptr;
    if (!g_shell_parse_argv(std::string{line}.c_str(), nullptr, &words, nullptr))
        return {};
    const GTexts owned{words};
    Arguments arguments;
    for (auto** word = words; *word; ++word)
        arguments.emplace_back(*word);
    return arguments;
}

std::vector<Arguments> commandsOf(
    std::string_view exec, const ExecFields& fields, const std::vector<std::string>& files)
{
    std::vector<Arguments> commands;
    Files rest{files};
    do {
        auto words = wordsOf(expandedLine(exec, fields, rest));
        if (words.empty())
            return {};
        commands.push_back(std::move(words));
    } while (!rest.empty());
    return commands;
}

}
