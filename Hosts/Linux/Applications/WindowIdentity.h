#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace quorvel::xdg {

/// What a window says about the application it belongs to. Every text comes from the client: it may
/// be empty, wrong or not even UTF-8.
struct WindowIdentity {
    std::optional<std::string> gtkApplicationId;
    std::string wmClass;
    std::string wmInstance;
    std::optional<std::string> executableName; ///< of the owning process, without its folder
    std::uint32_t number = 0; ///< the window's own, never reused

    friend bool operator==(const WindowIdentity&, const WindowIdentity&) = default;
};

}
