#pragma once

#include <optional>
#include <string>

namespace quorvel {

class UserSettings;
class Workspace;
struct ApplicationMatch;

/// Keeps the applications that the user chooses for windows that were matched to a wrong one, in
/// the settings, from where they take effect at once. Main thread.
class MatchMending {
public:
    /// So many are kept.
    static constexpr std::size_t kMost = 200;

    /// Both outlive it.
    MatchMending(const Workspace& workspace, UserSettings& settings)
        : m_workspace(workspace)
        , m_settings(settings)
    {
    }

    static bool canMend(const ApplicationMatch&);
    bool isMended(const ApplicationMatch&) const;
    /// Without an application, the window is matched as it was found. Returns why it is refused, in
    /// English; empty if it is done.
    std::string mend(const ApplicationMatch&, const std::optional<std::string>& application);

private:
    const Workspace& m_workspace;
    UserSettings& m_settings;
};

}
