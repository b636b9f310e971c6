#include "Hosts/Posix/ControlAddress.h"

#include <algorithm>
#include <cctype>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "Hosts/Posix/FdWatch.h"

namespace quorvel::posix {

namespace {

constexpr mode_t kPrivate = 0700;
constexpr mode_t kOthers = 077;

/// Whether it is a folder, no link to one, of this user and closed to all others.
bool isPrivateFolder(const std::string& path)
{
    UniqueFd folder{open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC)};
    struct stat about{};
    return folder && fstat(folder.get(), &about) == 0 && about.st_uid == geteuid()
        && (about.st_mode & (kPrivate | kOthers)) == kPrivate;
}

ControlAddress addressIn(const std::string& folder, const std::string& name)
{
    return {fmt::format("{}/{}.lock", folder, name), fmt::format("{}/{}.socket", folder, name)};
}

bool canBeBound(const ControlAddress& address)
{
    return address.socketPath.size() < sizeof(sockaddr_un::sun_path);
}

/// Letters and digits as they are, so that no display name leads out of the folder.
std::string fileName(std::string_view text)
{
    std::string name;
    for (unsigned char character : text) {
        if (std::isalnum(character) || character == '.' || character == '-')
            name.push_back(static_cast<char>(std::tolower(character)));
        else
            name += fmt::format("%{:02x}", character);
    }
    return name;
}

}

bool makePrivateFolder(const std::string& path)
{
    mkdir(path.c_str(), kPrivate); // one that is there already must be as good
    return isPrivateFolder(path);
}

std::string displayFileName(std::string_view display)
{
    auto colon = display.rfind(':');
    if (colon == std::string_view::npos)
        return "X" + fileName(display);
    auto host = display.substr(0, colon);
    auto number = display.substr(colon + 1);
    constexpr std::string_view firstScreen = ".0";
    if (number.ends_with(firstScreen))
        number.remove_suffix(firstScreen.size());
    bool isLocal = host.empty() || host == "unix" || host == "unix/";
    return isLocal ? "X" + fileName(number) : fileName(host) + "-X" + fileName(number);
}

std::optional<ControlAddress> ControlAddress::forDisplay(std::string_view display,
    const char* runtimeFolder, std::string_view temporaryFolder, std::string& problem)
{
    const auto name = displayFileName(display);
    if (runtimeFolder && *runtimeFolder == '/') {
        const auto folder = fmt::format("{}/quorvel", runtimeFolder);
        auto address = addressIn(folder, name);
        if (canBeBound(address) && isPrivateFolder(runtimeFolder) && makePrivateFolder(folder))
            return address;
    }
    const auto folder = fmt::format("{}/quorvel-{}", temporaryFolder, geteuid());
    auto address = addressIn(folder, name);
    if (!canBeBound(address))
        problem = fmt::format("the path of the control socket is too long: {}", address.socketPath);
    else if (!makePrivateFolder(folder))
        problem = fmt::format("no private folder in {}", temporaryFolder);
    else
        return address;
    return std::nullopt;
}

}
