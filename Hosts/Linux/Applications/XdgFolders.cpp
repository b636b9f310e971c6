#include "Hosts/Linux/Applications/XdgFolders.h"

#include <algorithm>
#include <cstdlib>

#include <glib.h>

namespace quorvel::xdg {
namespace {

/// The variable's value, or the replacement where it is unset, empty or (a relative path means
/// nothing to a bar) not absolute.
std::string folderFrom(const char* variable, const std::string& replacement)
{
    const char* value = std::getenv(variable);
    return value && value[0] == '/' ? value : replacement;
}

void addFolder(std::vector<std::string>& folders, std::string folder)
{
    while (folder.size() > 1 && folder.back() == '/')
        folder.pop_back();
    if (folder.starts_with('/')
        && std::find(folders.begin(), folders.end(), folder) == folders.end())
        folders.push_back(std::move(folder));
}

}

std::vector<std::string> dataFolders()
{
    std::vector<std::string> folders;
    addFolder(folders, folderFrom("XDG_DATA_HOME", homeFolder() + "/.local/share"));

    const char* variable = std::getenv("XDG_DATA_DIRS");
    std::string_view rest = variable && variable[0] ? variable : "/usr/local/share:/usr/share";
    while (!rest.empty()) {
        const auto end = rest.find(':');
        addFolder(folders, std::string{rest.substr(0, end)});
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    return folders;
}

std::vector<std::string> dataFolders(std::string_view subfolder)
{
    auto folders = dataFolders();
    for (auto& folder : folders)
        folder.append("/").append(subfolder);
    return folders;
}

std::string configurationFolder()
{
    return folderFrom("XDG_CONFIG_HOME", homeFolder() + "/.config");
}

std::string cacheFolder()
{
    return folderFrom("XDG_CACHE_HOME", homeFolder() + "/.cache");
}

std::string stateFolder()
{
    return folderFrom("XDG_STATE_HOME", homeFolder() + "/.local/state");
}

std::string homeFolder()
{
    return folderFrom("HOME", g_get_home_dir());
}

}
