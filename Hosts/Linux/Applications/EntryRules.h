#pragma once

#include <optional>
#include <string>

namespace quorvel::xdg {

class DesktopKeyFile;

/// What the desktop file needs and this system lacks, in words; absent if it can be started. GIO
/// refuses such a file as if it did not exist.
std::optional<std::string> whatIsMissing(const DesktopKeyFile&);

/// Whether the application belongs into the menus of this desktop, which the environment names.
bool isForMenus(const DesktopKeyFile&);

}
