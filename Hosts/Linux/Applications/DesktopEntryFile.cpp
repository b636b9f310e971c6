#include "Hosts/Linux/Applications/DesktopEntryFile.h"

#include "Hosts/Linux/Applications/DesktopKeyFile.h"

namespace quorvel::xdg {

DesktopEntryFile DesktopEntryFile::of(const DesktopKeyFile& file)
{
    return {.name = file.localText("Name"),
        .icon = file.localText("Icon"),
        .exec = file.text("Exec"),
        .startupWMClass = file.text("StartupWMClass"),
        .isHidden = file.flag("Hidden").value_or(false),
        .isNoDisplay = file.flag("NoDisplay").value_or(false)};
}

std::optional<DesktopEntryFile> DesktopEntryFile::read(const std::string& path)
{
    const auto file = DesktopKeyFile::read(path);
    return file ? std::optional{of(*file)} : std::nullopt;
}

}
