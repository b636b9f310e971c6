#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "Quorvel/Platform/Dispatch.h"

namespace quorvel {

class BarViewModel;
class Workspace;

/// Which pinned applications were started from a bar and have no window yet. Main thread.
class LaunchMarks {
public:
    /// How long an application that was started is shown as starting.
    static constexpr Duration kPatience = seconds(10);

    /// All it is given outlives it.
    LaunchMarks(const BarViewModel&, const Workspace&, Queue& main);

    std::function<void()> onChanged;

    /// One that runs already only comes to the front, and one that is not there never comes.
    void mark(const std::string& bundleID);
    bool contains(const std::string& bundleID) const { return m_launching.contains(bundleID); }
    /// One of them has its window now.
    bool isStale() const;
    /// Those of these pins that still have no window.
    void keepOnly(const std::vector<std::string>& pins);

private:
    const BarViewModel& m_viewModel;
    const Workspace& m_workspace;
    Queue& m_main;
    std::map<std::string, WorkItem> m_launching; ///< by bundle identifier
};

}
