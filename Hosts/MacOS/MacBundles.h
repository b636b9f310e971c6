#pragma once

#include "Quorvel/Platform/Bundles.h"

namespace quorvel {

/// Application bundles on disk. Main thread.
class MacBundles final : public Bundles {
public:
    std::optional<std::string> infoString(
        const ApplicationURL&, std::string_view key) const override;
};

}
