#include "Hosts/Linux/Drawing/UriList.h"

#include <algorithm>
#include <optional>

#include "Hosts/Linux/GHandles.h"

namespace quorvel::xdg {

namespace {

std::optional<std::string> localPath(const std::string& uri, const std::string& hostName)
{
    char* host = nullptr;
    const GText path{g_filename_from_uri(uri.c_str(), &host, nullptr)};
    const GText owned{host};
    const bool isHere = !host || g_ascii_strcasecmp(host, "localhost") == 0
        || g_ascii_strcasecmp(host, hostName.c_str()) == 0;
    return path && isHere ? std::optional<std::string>{path.get()} : std::nullopt;
}

}

std::vector<std::string> localPaths(std::string_view list, std::string_view hostName)
{
    if (list.size() > uriListLimits::bytes)
        return {};
    std::vector<std::string> paths;
    while (!list.empty()) {
        // Lines end with CR and LF; some programs send one of the two, some a NUL behind the last.
        auto line = list.substr(0, list.find_first_of(std::string_view{"\r\n\0", 3}));
        list.remove_prefix(std::min(line.size() + 1, list.size()));
        auto path = localPath(std::string{line}, std::string{hostName});
        if (!path)
            continue;
        if (paths.size() == uriListLimits::files)
            return {};
        paths.push_back(std::move(*path));
    }
    return paths;
}

}
