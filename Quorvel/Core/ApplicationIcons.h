#pragma once

#include <map>
#include <string>

#include "Quorvel/Platform/Image.h"
#include "Quorvel/Platform/Published.h"
#include "Quorvel/Platform/Workspace.h"

namespace quorvel {

struct TrackedWindow;

/// The icons of applications, each looked up once by bundle identifier, or by process where there
/// is none. Main thread.
class ApplicationIcons {
public:
    explicit ApplicationIcons(Workspace&);

    /// The stored application's icon, else the running process's, else the generic one.
    Image icon(const TrackedWindow&);
    /// Null if no such application is stored.
    Image icon(const std::string& bundleIdentifier) const;

    /// An icon that was returned earlier may have changed.
    Signal<> didChange;

private:
    struct Known {
        Image icon; ///< null: no icon of its own
        WindowID lookedUpFor{}; ///< the newest window at that time
    };

    Known& known(const TrackedWindow&);
    Image findIcon(const TrackedWindow&) const;

    Workspace& m_workspace;
    std::map<std::string, Known, std::less<>> m_iconCache;
    std::map<ProcessID, Known> m_iconsByPID; ///< of those without a bundle identifier
    Image m_generic;
    Subscription m_changes;
    Subscription m_ends;
};

}
