#pragma once

#include <optional>
#include <string>

#include "Quorvel/Platform/Bundles.h"

namespace quorvel {

/// Where the Mac stores applications, for the user with this home folder. The Finder is in none of
/// the folders, and Safari, on a volume of its own since macOS 13, perhaps in another place than
/// the last of them: the system knows it.
inline ApplicationSources applicationPlaces(
    const std::string& home, const std::optional<ApplicationURL>& safari)
{
    constexpr int kOwnDepth = 3;
    constexpr auto kWatched = FolderWatch::whileItExists;
    ApplicationSources sources;
    sources.extension = "app";
    sources.folders = {
        {"/Applications", 0, kWatched},
        {"/System/Applications", 0, kWatched},
        {"/Applications/Utilities"},
        {"/System/Applications/Utilities"},
        {"/System/Volumes/Preboot/Cryptexes/App/System/Applications"},
        {home + "/Applications", kOwnDepth, kWatched},
    };
    sources.extras = {{"/System/Library/CoreServices/Finder.app"}};
    if (safari)
        sources.extras.push_back(*safari);
    return sources;
}

}
