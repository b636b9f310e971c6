#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quorvel::xdg {

/// The user's data folder, then the system's, from the current environment; each once.
std::vector<std::string> dataFolders();
/// The same subfolder of each.
std::vector<std::string> dataFolders(std::string_view subfolder);
std::string configurationFolder();
std::string cacheFolder();
/// For what a program remembers between its runs, which is neither set by the user nor worth a
/// backup.
std::string stateFolder();
std::string homeFolder();

}
