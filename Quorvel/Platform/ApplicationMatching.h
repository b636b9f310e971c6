#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Quorvel/Platform/Identifiers.h"

namespace quorvel {

/// The application that a window was found to belong to, and by what. Texts come from the window
/// and may hold anything.
struct ApplicationMatch {
    std::string bundleIdentifier;
    std::string road; ///< in English, for whoever looks into it
    /// What the window says of itself: the name of a fact, and its value.
    std::vector<std::pair<std::string, std::string>> facts;
    /// What its windows have in common, for a match that the user mends; empty: cannot be mended.
    std::string key;
};

/// Where windows only hint at their application, how the hints are read. Main thread.
class ApplicationMatching {
public:
    /// Bundle identifiers by the key of a match.
    using Mended = std::map<std::string, std::string>;

    virtual ~ApplicationMatching() = default;

    /// Absent for a window that is not there.
    virtual std::optional<ApplicationMatch> match(WindowID) const = 0;
    /// These count before everything else, as far as the applications are there. Windows that are
    /// open are matched anew.
    virtual void setMended(const Mended&) = 0;
};

}
