#pragma once

#include "Quorvel/Platform/Bundles.h"

namespace quorvel::xdg {

class DesktopEntries;

/// Presents desktop files as bundles. Main thread.
class DesktopBundles final : public Bundles {
public:
    explicit DesktopBundles(const DesktopEntries& entries) : m_entries(entries) { }

    std::optional<std::string> infoString(
        const ApplicationURL&, std::string_view key) const override;

private:
    const DesktopEntries& m_entries;
};

}
