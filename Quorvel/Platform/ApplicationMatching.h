#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Quorvel/Platform/Identifiers.h"

namespace quorvel {

/// What led from a window to its application.
enum class MatchKind {
    nothing, ///< the application is not installed, as far as is known
    userChoice,
    applicationID,
    windowClass,
    similarName,
    program, ///< that runs, or that the application starts
};

/// What a window says of itself and what is known of it.
enum class MatchFact { applicationID, windowClass, instance, executable, desktopFile };

/// The application that a window was found to belong to, and by what. Texts come from the window
/// and may hold anything.
struct ApplicationMatch {
    std::string bundleIdentifier;
    MatchKind kind = MatchKind::nothing;
    std::string road; ///< the same exactly, in English, for whoever looks into it
    std::vector<std::pair<MatchFact, std::string>> facts; ///< none is empty
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
