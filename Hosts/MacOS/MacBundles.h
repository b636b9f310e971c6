#pragma once

#include "Quorvel/Platform/Bundles.h"

namespace quorvel {

/// Application bundles on disk. From any thread.
class MacBundles final : public Bundles {
public:
    ApplicationSources applicationSources() const override;
    std::optional<std::vector<FolderEntry>> list(const std::string& folder) const override;
    std::optional<BundleDescription> describe(const ApplicationURL&) const override;
};

}
