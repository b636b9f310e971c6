#pragma once

#include <map>
#include <set>
#include <string>

#include "Quorvel/Platform/Bundles.h"

namespace quorvel::test {

/// The stored applications: a tree of folders, where a Mac has them. It is empty at first.
class FakeBundles final : public Bundles {
public:
    static constexpr char kHome[] = "/Users/me";

    FakeBundles();

    ApplicationSources applicationSources() const override { return m_sources; }
    std::optional<std::vector<FolderEntry>> list(const std::string& folder) const override;
    std::optional<BundleDescription> describe(const ApplicationURL&) const override;

    /// The folders above come with it.
    void install(const std::string& path, BundleDescription = {});
    void makeFolder(const std::string& path);
    /// With all that is in it.
    void remove(const std::string& path);

    ApplicationSources& sources() { return m_sources; }
    void setHidden(const std::string& path) { m_hidden.insert(path); }
    /// Folders that are there and cannot be listed.
    void setUnreadable(std::set<std::string> folders) { m_unreadable = std::move(folders); }
    /// Called before each answer, on whatever thread it is given.
    std::function<void()> onQuestion;

private:
    ApplicationSources m_sources;
    std::map<std::string, BundleDescription> m_bundles; ///< by path
    std::set<std::string> m_folders;
    std::set<std::string> m_hidden;
    std::set<std::string> m_unreadable;
};

}
