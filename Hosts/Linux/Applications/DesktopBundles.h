#pragma once

#include "Quorvel/Platform/Bundles.h"

namespace quorvel::xdg {

class DesktopEntries;

/// Presents desktop files as bundles. An application's identity is its desktop file's id, as
/// everywhere in this host. From any thread.
class DesktopBundles final : public Bundles {
public:
    explicit DesktopBundles(const DesktopEntries& entries) : m_entries(entries) { }

    ApplicationSources applicationSources() const override;
    std::optional<std::vector<FolderEntry>> list(const std::string& folder) const override;
    std::optional<BundleDescription> describe(const ApplicationURL&) const override;

private:
    std::optional<std::string> identifier(const std::string& path) const;

    const DesktopEntries& m_entries;
};

}
