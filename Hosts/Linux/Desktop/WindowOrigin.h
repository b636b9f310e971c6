#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace quorvel::xdg {

/// Where a window comes from, as far as its display server knows. Every text comes from the client.
struct WindowOrigin {
    std::optional<std::uint32_t> process; ///< if it runs on this machine
    std::uint32_t client = 0; ///< distinguishes the server's clients whose process is unknown
    std::optional<std::string> applicationID;
    std::string className;
    std::string instanceName;

    friend bool operator==(const WindowOrigin&, const WindowOrigin&) = default;
};

}
