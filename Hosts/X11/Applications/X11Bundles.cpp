#include "Hosts/X11/Applications/X11Bundles.h"

#include "Hosts/X11/Applications/DesktopEntries.h"

namespace quorvel::x11 {

std::optional<std::string> X11Bundles::infoString(
    const ApplicationURL& url, std::string_view key) const
{
    return key == "CFBundleDisplayName" ? m_entries.nameInFile(url.path) : std::nullopt;
}

}
