#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "Quorvel/Core/SearchTerms.h"
#include "Quorvel/Platform/Workspace.h"

namespace quorvel {

/// One application of the catalogue, at the time of a discovery: a handle that is cheap to copy and
/// never changes. Two are equal if they are the same application, whatever it was called then. From
/// any thread.
class AppInfo {
public:
    struct Facts {
        std::string id;
        std::string name;
        ApplicationURL path;
        SearchTerms terms;
        /// Its place in the order of names; those with equal names share one.
        std::uint32_t nameOrder = 0;
    };

    explicit AppInfo(Facts facts) : m_facts(std::make_shared<const Facts>(std::move(facts))) { }

    /// The bundle identifier; the path if it has none.
    const std::string& id() const { return m_facts->id; }
    /// For users; not empty.
    const std::string& name() const { return m_facts->name; }
    const ApplicationURL& path() const { return m_facts->path; }
    bool hasBundleIdentifier() const { return id() != path().path; }

    const SearchTerms& terms() const { return m_facts->terms; }
    std::uint32_t nameOrder() const { return m_facts->nameOrder; }

    friend bool operator==(const AppInfo& a, const AppInfo& b) { return a.id() == b.id(); }

private:
    std::shared_ptr<const Facts> m_facts;
};

}

template <> struct std::hash<quorvel::AppInfo> {
    std::size_t operator()(const quorvel::AppInfo& app) const
    {
        return std::hash<std::string>{}(app.id());
    }
};
