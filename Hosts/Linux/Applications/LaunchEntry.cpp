#include "Hosts/Linux/Applications/LaunchEntry.h"

#include <algorithm>
#include <filesystem>

#include <gio/gio.h>

#include "Hosts/Linux/Applications/DesktopKeyFile.h"
#include "Hosts/Linux/Applications/XdgFolders.h"

namespace quorvel::xdg {

namespace {

bool listContains(const DesktopKeyFile& file, const char* key, std::string_view word)
{
    const auto words = file.list(key);
    return words && std::ranges::find(*words, word) != words->end();
}

/// The file's name is the application's on the bus.
std::optional<std::string> nameOnTheBus(const DesktopKeyFile& file, const std::string& path)
{
    auto name = std::filesystem::path{path}.stem().string();
    const bool isName = g_dbus_is_name(name.c_str()) && !name.starts_with(':');
    return isName && file.flag("DBusActivatable").value_or(false) ? std::optional{name}
                                                                  : std::nullopt;
}

bool usesToken(const DesktopKeyFile& file)
{
    const bool isTerminal = listContains(file, "Categories", "TerminalEmulator")
        || file.flag("Terminal").value_or(false);
    return file.flag("StartupNotify").value_or(!isTerminal);
}

std::string orElse(std::string text, const std::string& replacement)
{
    if (text.empty())
        return replacement;
    return text;
}

}

std::optional<LaunchEntry> LaunchEntry::of(
    const DesktopKeyFile& file, const std::string& desktopFile, const std::string& action)
{
    if (!action.empty() && !listContains(file, "Actions", action))
        return std::nullopt;
    const auto name = file.localText("Name");
    return LaunchEntry{
        .name = orElse(name, std::filesystem::path{desktopFile}.stem().string()),
        .exec = file.text(action.empty() ? kEntryGroup : actionGroup(action).c_str(), "Exec"),
        .fields = {.name = name,
            .icon = file.localText("Icon"),
            .desktopFile = desktopFile,
            .takesOnlyURIs = file.flag("X-GIO-NoFuse").value_or(false)},
        .folder = orElse(file.text("Path"), homeFolder()),
        .busName = nameOnTheBus(file, desktopFile),
        .isForTerminal = file.flag("Terminal").value_or(false),
        .takesToken = usesToken(file),
    };
}

}
