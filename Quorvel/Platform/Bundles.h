#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Quorvel/Platform/Workspace.h"

namespace quorvel {

/// What stored applications say of themselves. Main thread.
class Bundles {
public:
    virtual ~Bundles() = default;

    /// A text of the application's description under the name that bundles use for it, such as
    /// "CFBundleName"; absent if it is missing or no text. Where applications are desktop files,
    /// their name is the "CFBundleDisplayName".
    virtual std::optional<std::string> infoString(
        const ApplicationURL&, std::string_view key) const = 0;
};

}
