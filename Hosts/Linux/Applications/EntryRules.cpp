#include "Hosts/Linux/Applications/EntryRules.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include <fmt/format.h>

#include "Hosts/Linux/Applications/DesktopKeyFile.h"
#include "Hosts/Linux/Applications/ExecLine.h"
#include "Hosts/Linux/Applications/TerminalProgram.h"

namespace quorvel::xdg {

namespace {

using Names = std::optional<std::vector<std::string>>;

bool contains(const Names& names, std::string_view name)
{
    return names && std::ranges::find(*names, name) != names->end();
}

/// Of the names that this desktop has, the first that a list mentions decides.
bool isForThisDesktop(const DesktopKeyFile& file)
{
    const auto only = file.list("OnlyShowIn");
    const auto never = file.list("NotShowIn");
    const char* variable = std::getenv("XDG_CURRENT_DESKTOP");
    std::string_view desktops = variable ? variable : "";
    while (!desktops.empty()) {
        const auto end = desktops.find(':');
        const auto desktop = desktops.substr(0, end);
        if (contains(only, desktop))
            return true;
        if (contains(never, desktop))
            return false;
        desktops.remove_prefix(end == std::string_view::npos ? desktops.size() : end + 1);
    }
    return !only;
}

}

std::optional<std::string> whatIsMissing(const DesktopKeyFile& file)
{
    const auto needed = file.text("TryExec");
    if (!needed.empty() && !programPath(needed))
        return fmt::format("{} is not installed", needed);
    const auto exec = file.text("Exec");
    if (exec.empty())
        return std::nullopt;
    const auto words = wordsOf(exec);
    if (words.empty())
        return "its command line is none";
    if (!programPath(words.front()))
        return fmt::format("{} is not installed", words.front());
    return std::nullopt;
}

bool isForMenus(const DesktopKeyFile& file)
{
    return !file.flag("Hidden").value_or(false) && !file.flag("NoDisplay").value_or(false)
        && isForThisDesktop(file);
}

}
