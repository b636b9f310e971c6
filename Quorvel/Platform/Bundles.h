#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Quorvel/Platform/Workspace.h"

namespace quorvel {

/// What stored applications say about themselves. Main thread.
class Bundles {
public:
    virtual ~Bundles() = default;

    /// A text in the application's description under its bundle key, such as "CFBundleName"; absent
    /// if it is missing or not a text. Where applications are desktop files, their name is the
    /// "CFBundleDisplayName".
    virtual std::optional<std::string> infoString(
        const ApplicationURL&, std::string_view key) const = 0;
};

}
