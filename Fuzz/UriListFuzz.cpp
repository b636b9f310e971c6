#include <string>
#include <string_view>

#include <fmt/format.h>

#include "Hosts/Linux/Drawing/UriList.h"
#include "Tests/Support/Fuzz/Expect.h"

namespace {

using namespace quorvel::xdg;

std::string written(const std::string& path)
{
    std::string uri = "file://";
    for (unsigned char byte : path)
        uri += byte == '/' ? "/" : fmt::format("%{:02x}", byte);
    return uri + "\r\n";
}

}

// Every path is one that a file can have, and written down as an address it is read as the same.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    auto paths = localPaths({reinterpret_cast<const char*>(data), size}, "desk");
    std::string again;
    for (auto& path : paths) {
        expect(path.starts_with('/') && path.find('\0') == std::string::npos);
        again += written(path);
    }
    expect(localPaths(again, "") == paths);
    return 0;
}
