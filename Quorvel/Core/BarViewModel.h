#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Quorvel/Core/DisplayItem.h"
#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Published.h"
#include "Quorvel/Platform/Trace.h"
#include "Quorvel/Skylight/AXCalls.h"
#include "Quorvel/Skylight/SpaceWindows.h"

namespace quorvel {

class WindowStore;
class Workspace;
struct TrackedWindow;

/// What the bars show, computed from the tracked windows, and what a click does to a window.
///
/// Between a click and the system's word that the window has the focus, the clicked window is shown
/// as focused already (the pending focus). One instance serves every bar. Main thread.
class BarViewModel {
public:
    using ItemsBySpace = std::map<SpaceID, std::vector<DisplayItem>>;
    using ChipsBySpace = std::map<SpaceID, std::vector<ChipData>>;

    enum class FocusBeforeActivation { no, yes };

    BarViewModel(WindowStore&, Dispatch&, Accessibility&, WindowServer&, Displays&, Workspace&,
        const Trace&);

    Published<ChipsBySpace> chipsBySpace;
    Published<ItemsBySpace> displayItemsBySpace;
    Published<std::vector<SpaceWindows::Info>> spaces;
    Published<SpaceID> activeSpaceID;
    Published<std::optional<WindowID>> focusedWindowID;

    /// After each refresh, published or not: what depends on more than the chips looks again.
    Signal<> didRefresh;

    /// Computes everything anew. What comes out equal is not published.
    void refresh();

    /// The items of a bar on one screen; without an index, or with one screen only, all of the
    /// space.
    std::vector<DisplayItem> displayItems(
        SpaceID, std::optional<std::size_t> filteredToScreenIndex) const;

    void activateWindow(WindowID, FocusBeforeActivation);
    void minimizeWindow(WindowID);
    void closeWindow(WindowID);

private:
    /// How long a window that refuses the focus is shown as if it had it.
    static constexpr Duration kPendingFocusExpiry = seconds(2);
    static constexpr Duration kActivationRetry = seconds(0.15);

    /// The window to show as focused, and why.
    struct FocusDecision {
        std::optional<WindowID> effective;
        std::string_view reason;
        std::string keys; ///< for the trace
    };

    FocusDecision resolveFocus();
    void dropPendingFocus();
    void setPendingFocus(WindowID);
    /// The chips and items of the store's windows, with this one focused.
    void publish(std::optional<WindowID> focused);
    ChipsBySpace makeChips();
    ChipData makeChip(const TrackedWindow&);
    Image icon(const TrackedWindow&);
    /// Null if the application has no icon of its own.
    Image findIcon(const TrackedWindow&);
    bool isOnScreen(const DisplayItem&, const std::vector<Screen>&, std::size_t index) const;

    std::optional<AXElement> findAXWindow(ProcessID, const AXElement& application, WindowID);
    void focusThroughApplication(WindowID, ProcessID, const AXElement& application);
    void applyFocusAndRaise(const AXElement&, WindowID, bool isMinimized);
    void requestApplicationActivation(ProcessID);
    void retryActivation(WindowID, ProcessID, const AXElement& application, bool isMinimized);

    WindowStore& m_windowStore;
    Dispatch& m_dispatch;
    Accessibility& m_accessibility;
    WindowServer& m_windowServer;
    Displays& m_displays;
    Workspace& m_workspace;
    const Trace& m_trace;
    SpaceWindows m_spaceWindows;
    AXCalls m_calls;

    std::map<std::string, Image, std::less<>> m_iconCache;
    std::optional<WindowID> m_pendingFocusedWindowID;
    bool m_hasPendingExpired = false;
    std::uint64_t m_debugEventSequence = 0;

    Subscription m_iconChanges;
    WorkItem m_pendingExpiry;
    WorkItem m_activationRetry;
};

/// The bundle identifier, else the application's name.
std::string groupKey(const TrackedWindow&);

}
