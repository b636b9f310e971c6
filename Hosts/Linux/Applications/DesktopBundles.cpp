#include "Hosts/Linux/Applications/DesktopBundles.h"

#include "Hosts/Linux/Applications/DesktopEntries.h"

namespace quorvel::xdg {

std::optional<std::string> DesktopBundles::infoString(
    const ApplicationURL& url, std::string_view key) const
{
    return key == "CFBundleDisplayName" ? m_entries.nameInFile(url.path) : std::nullopt;
}

}
