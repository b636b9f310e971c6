#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <vector>

#include "Quorvel/Platform/Accessibility.h"
#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/WeakOwner.h"
#include "Quorvel/Skylight/SpaceWindows.h"

namespace quorvel {

class WindowStore;
struct TrackedWindow;

/// Keeps windows from reaching under a bar: it shortens those that do, never moves one and never
/// makes one taller. A window that would become too short is left alone, and one that did not
/// comply is not asked again until its frame changes. Main thread; the applications are asked on a
/// queue of its own, where they may take their time.
class WindowAvoidanceManager {
public:
    /// What the owner of the bars provides.
    struct Bars {
        std::function<std::set<SpaceID>()> getPanels; ///< the spaces that have a bar
        /// The screens that show a bar in addition to those of their spaces.
        std::function<std::vector<std::size_t>()> getMirrorScreenIndices;
        std::function<SpaceWindows::Answer()> getSpaces;
        /// Points below the bar that the Dock has to itself.
        std::function<double(const Screen&)> getDockRoom = [](auto&) { return 0.0; };
    };

    static constexpr double kLowestHeight = 100;
    /// Call after a change of the windows.
    static constexpr Duration kPause = seconds(0.1);
    /// The gap between window and bar, so that the window's edge can still be grabbed.
    static constexpr double resizeCursorClearance = 1;

    WindowAvoidanceManager(
        const WindowStore&, Dispatch&, Accessibility&, WindowServer&, Displays&, Bars);
    /// Waits for the application that is currently being asked.
    ~WindowAvoidanceManager();

    void setBarHeight(double height) { m_barHeight = height; }

    /// Schedules an adjustment if windows came or went, or if the frame, the spaces or the
    /// minimised state of one changed; titles do not matter here.
    void windowsDidChange();

    /// Replaces a pending adjustment.
    void scheduleAdjustment(Duration debounce);
    /// The same, in the next turn, by what has just been said of the spaces.
    void scheduleAdjustment(SpaceWindows::Answer);
    void adjustNow() { adjust(m_bars.getSpaces()); }

private:
    struct Resize {
        WindowID windowID{};
        ProcessID pid{};
        Rect frame; ///< before the request
        double newHeight = 0;

        friend bool operator==(const Resize&, const Resize&) = default;
    };
    /// What an adjustment depends on.
    struct Placement {
        explicit Placement(const TrackedWindow&);
        bool isOf(const TrackedWindow&) const;

        WindowID windowID{};
        Rect frame;
        bool isMinimized = false;
        std::set<SpaceID> spaceIDs;
    };
    class Resizer;

    void adjust(const SpaceWindows::Answer&);
    void noteAsked(const std::vector<Resize>&);
    bool isAsFound(const Resize&) const;
    void forgetMovedWindows();
    std::vector<Resize> findOverlaps(const SpaceWindows::Answer&) const;
    Screen screenOf(const SpaceWindows::Info&, const std::vector<Screen>&) const;
    void shortenOn(const Screen&, double primaryScreenMaxY,
        const std::vector<const TrackedWindow*>& candidates, std::vector<Resize>&) const;

    const WindowStore& m_windowStore;
    Dispatch& m_dispatch;
    Accessibility& m_accessibility;
    WindowServer& m_windowServer;
    Displays& m_displays;
    SpaceWindows m_spaceWindows;
    Bars m_bars;
    double m_barHeight = 0;
    std::vector<Placement> m_placements; ///< when last looked at, in the store's order
    std::map<WindowID, Resize> m_asked; ///< and still in that place
    WeakOwner<WindowAvoidanceManager> m_weak{*this};
    WorkItem m_pendingWork;
    WorkItem m_pendingResizes; ///< the newest list; replaces one that has not begun
    std::unique_ptr<Queue> m_resizeQueue; ///< last: it is drained before what its work uses goes
};

}
