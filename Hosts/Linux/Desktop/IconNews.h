#pragma once

#include <map>
#include <set>
#include <string>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel::xdg {

/// Which applications have other pictures than before. To look at them may mean to read megabytes,
/// so an application that changes them all the time is announced once in half a second. Main
/// thread.
class IconNews {
public:
    explicit IconNews(Dispatch& dispatch) : m_dispatch(dispatch) { }

    /// To be announced with the turn's other news.
    void note(const std::string& bundleIdentifier) { m_noted.insert(bundleIdentifier); }
    /// At once for an application that has been quiet, else when its time has come.
    void announce();

    Signal<std::string> didChange; ///< by the application's bundle identifier

private:
    Dispatch& m_dispatch;
    std::set<std::string> m_noted;
    std::map<std::string, Instant> m_nextAt; ///< of those announced a short while ago
    WorkItem m_later;
    Instant m_laterAt;
};

}
