#include "Hosts/Linux/Applications/X11Bundles.h"

#include "Hosts/Linux/Applications/DesktopEntries.h"

namespace quorvel::xdg {

std::optional<std::string> X11Bundles::infoString(
    const ApplicationURL& url, std::string_view key) const
{
    return key == "CFBundleDisplayName" ? m_entries.nameInFile(url.path) : std::nullopt;
}

}
