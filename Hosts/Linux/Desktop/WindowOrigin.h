#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace quorvel::xdg {

/// Where a window comes from, as far as its display server knows. Every text is the client's.
struct WindowOrigin {
    std::optional<std::uint32_t> process; ///< one that runs on this machine
    std::uint32_t client = 0; ///< tells the server's clients apart whose process is unknown
    std::optional<std::string> applicationID;
    std::string className;
    std::string instanceName;

    friend bool operator==(const WindowOrigin&, const WindowOrigin&) = default;
};

}
