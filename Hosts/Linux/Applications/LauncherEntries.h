#pragma once

#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "Hosts/Linux/Applications/LauncherUpdate.h"
#include "Quorvel/Platform/LaunchServices.h"

namespace quorvel::xdg {

/// What applications want shown at their launchers, by sender on the bus. A sender may speak for
/// several applications and several may speak for one: then the latest to speak wins. Any thread.
class LauncherEntries {
public:
    static constexpr std::size_t kMostEntries = 512;
    static constexpr std::size_t kMostEntriesOfSender = 32;
    /// A larger count is shown as "more than this".
    static constexpr std::int64_t kLargestCount = 9999;

    /// Gives the bundle identifier for a desktop file's id.
    using Matcher = std::function<std::string(const std::string& desktopID)>;

    enum class Outcome { refused, unchanged, changed };

    Outcome update(const std::string& sender, const LauncherUpdate&, const Matcher&);
    /// The sender has left. This call and the next return whether any entry was removed.
    bool forget(const std::string& sender);
    bool forgetAll();
    /// The installed applications may have changed.
    void rematch(const Matcher&);
    /// The application's request for attention has been met. The application has to withdraw it
    /// before it can ask again.
    void withdrawRequest(const std::string& bundleIdentifier);

    /// In the order in which they last spoke.
    std::vector<ApplicationStatus> statuses() const;
    /// The bundle identifiers of the applications that ask for attention.
    std::set<std::string> asking() const;

private:
    struct Entry {
        std::string sender;
        std::string bundleIdentifier;
        LauncherUpdate said;
        bool isRequestMet = false;

        bool apply(const LauncherUpdate&);
        ApplicationStatus status() const;
        bool asks() const { return said.isUrgent.value_or(false) && !isRequestMet; }
    };

    Entry* entryFor(const std::string& sender, const LauncherUpdate&, const Matcher&);

    mutable std::mutex m_mutex;
    std::vector<Entry> m_entries; ///< the latest to speak comes last
};

}
