#pragma once

#include <map>
#include <string>
#include <vector>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel {

class BarViewModel;
class Workspace;

/// Which applications are being started and have no window yet, however the user started them. Main
/// thread.
class LaunchMarks {
public:
    /// How long an application that was started is shown as starting.
    static constexpr Duration kPatience = seconds(10);

    /// All it is given outlives it.
    LaunchMarks(const BarViewModel&, const Workspace&, Queue& main);

    /// Bundle identifiers, in the order of starting. One that had a window when it was started
    /// again is not among them: nobody could tell when to take it off.
    const Published<std::vector<std::string>>& launching() const { return m_launching; }
    bool contains(const std::string& bundleID) const;

private:
    /// On any space.
    bool hasWindows(const std::string& bundleID) const;
    void mark(const std::string& bundleID);
    void unmark(const std::string& bundleID);
    void unmarkThoseWithWindows();

    const BarViewModel& m_viewModel;
    Queue& m_main;
    Published<std::vector<std::string>> m_launching;
    std::map<std::string, WorkItem> m_ends;
    std::vector<Subscription> m_subscriptions;
};

}
