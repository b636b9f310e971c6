#include "Hosts/Linux/Drawing/UriList.h"

#include <algorithm>
#include <cctype>
#include <optional>

namespace quorvel::xdg {

namespace {

constexpr std::string_view kFileScheme = "file:";

bool equalsIgnoringCase(std::string_view a, std::string_view b)
{
    return std::ranges::equal(a, b, [](unsigned char left, unsigned char right) {
        return std::tolower(left) == std::tolower(right);
    });
}

std::optional<unsigned> hexDigit(char digit)
{
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    if (digit >= 'a' && digit <= 'f')
        return digit - 'a' + 10;
    if (digit >= 'A' && digit <= 'F')
        return digit - 'A' + 10;
    return std::nullopt;
}

/// Absent where a sequence is cut short, or stands for what no name of a file can hold.
std::optional<std::string> percentDecoded(std::string_view text)
{
    std::string decoded;
    decoded.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            decoded += text[i];
            continue;
        }
        if (text.size() - i < 3)
            return std::nullopt;
        auto high = hexDigit(text[i + 1]);
        auto low = hexDigit(text[i + 2]);
        if (!high || !low)
            return std::nullopt;
        auto byte = static_cast<char>(*high * 16 + *low);
        if (byte == '\0' || byte == '/')
            return std::nullopt;
        decoded += byte;
        i += 2;
    }
    return decoded;
}

/// "file:///path", "file://host/path" or "file:/path".
std::optional<std::string> localPath(std::string_view uri, std::string_view hostName)
{
    if (!equalsIgnoringCase(uri.substr(0, kFileScheme.size()), kFileScheme))
        return std::nullopt;
    auto rest = uri.substr(kFileScheme.size());
    if (rest.starts_with("//")) {
        rest.remove_prefix(2);
        auto host = rest.substr(0, rest.find('/'));
        bool isHere = host.empty() || equalsIgnoringCase(host, "localhost")
            || equalsIgnoringCase(host, hostName);
        if (!isHere)
            return std::nullopt;
        rest.remove_prefix(host.size());
    }
    if (!rest.starts_with('/'))
        return std::nullopt;
    return percentDecoded(rest);
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
        auto path = localPath(line, hostName);
        if (!path)
            continue;
        if (paths.size() == uriListLimits::files)
            return {};
        paths.push_back(std::move(*path));
    }
    return paths;
}

}
