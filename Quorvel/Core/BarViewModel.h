#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Quorvel/Core/ApplicationIcons.h"
#include "Quorvel/Core/ChipGroups.h"
#include "Quorvel/Core/ChipOrder.h"
#include "Quorvel/Core/ChipsBySpace.h"
#include "Quorvel/Core/DisplayItem.h"
#include "Quorvel/Core/GroupWalk.h"
#include "Quorvel/Core/OrderMemory.h"
#include "Quorvel/Core/TitleNews.h"
#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Platform/Published.h"
#include "Quorvel/Platform/Trace.h"
#include "Quorvel/Platform/WeakOwner.h"
#include "Quorvel/Skylight/AXCalls.h"
#include "Quorvel/Skylight/LateRequests.h"
#include "Quorvel/Skylight/SpaceWindows.h"

namespace quorvel {

class BadgeService;
class UserSettings;
class WindowStore;
class Workspace;
struct Screen;
struct TrackedWindow;

/// What the bars show, computed from the tracked windows, and what a click does to a window.
///
/// Between a click and the system's confirmation that the window has the focus, the clicked window
/// is already shown as focused (the pending focus). One instance serves every bar. Main thread.
class BarViewModel {
public:
    using ItemsBySpace = std::map<SpaceID, std::vector<DisplayItem>>;

    /// What is needed of a space elsewhere than on its own bars.
    struct SpaceSummary {
        int windowCount = 0;
        bool wantsAttention = false;
        std::set<std::string> bundleIDs;

        friend bool operator==(const SpaceSummary&, const SpaceSummary&) = default;
    };
    using Summaries = std::map<SpaceID, SpaceSummary>;

    enum class FocusBeforeActivation { no, yes };

    /// Starts the badge service.
    BarViewModel(WindowStore&, UserSettings&, BadgeService&, const Platform&);

    /// For each space that has a tracked window, in the store's order.
    Published<ChipsBySpace> chipsBySpace;
    /// The same windows as the bar draws them: grouped, and in the user's order.
    Published<ItemsBySpace> displayItemsBySpace;
    /// Of each space that has a chip. Titles do not matter here.
    Published<Summaries> summaries;
    Published<std::vector<SpaceWindows::Info>> spaces;
    Published<SpaceID> activeSpaceID;
    Published<std::optional<WindowID>> focusedWindowID;

    /// Windows are about to be minimised by the bar: the last chance to capture them.
    Signal<std::vector<WindowID>> willMinimizeWindows;
    /// What the bars of these spaces show may have changed: chips, items, or which screens the
    /// windows are on. Emitted after everything is published.
    Signal<std::set<SpaceID>> barsDidChange;

    /// Recomputes everything; chips and items that come out equal are kept. Asks for the spaces if
    /// they are not given.
    void refresh(std::optional<SpaceWindows::Answer> = {});

    /// The items of a bar on one screen; without an index, or with one screen only, all of the
    /// space. A window that touches no screen is on the bar of the space's own display.
    std::vector<DisplayItem> displayItems(
        SpaceID, std::optional<std::size_t> filteredToScreenIndex) const;
    /// Puts an item in front of another one, or last. An item whose window has since been folded
    /// into a group stands for the group.
    void moveChip(const std::string& id, const std::optional<std::string>& before, SpaceID);
    std::set<std::string> bundleIDsWithWindows(SpaceID) const;
    /// The group's windows, those that are not minimised first, each part in the order of the
    /// chips.
    std::vector<WindowID> walkingOrder(SpaceID, const GroupedChipData&) const;
    /// Where a click on the group leads: to the window that asks for attention, else to the
    /// representative, or to the next window if one of them has the focus.
    WindowID nextWindow(SpaceID, const GroupedChipData&);

    /// Null if no such application is stored.
    Image icon(const std::string& bundleIdentifier) const { return m_icons.icon(bundleIdentifier); }
    /// The stored application's own name, else its file's, else the identifier.
    std::string appName(const std::string& bundleIdentifier) const;
    /// Does nothing if no such application is stored.
    void launchApp(const std::string& bundleID);

    void activateWindow(WindowID, FocusBeforeActivation);
    /// Gives the window the focus without activating its application. The context is for the trace.
    /// True if every essential request was accepted.
    bool focusWindowWithAXOnly(WindowID, std::string_view context);
    void minimizeWindow(WindowID id) { minimizeWindows({id}); }
    void closeWindow(WindowID id) { closeWindows({id}); }
    /// Waits once for an application that does not answer, not once for each window.
    void minimizeWindows(const std::vector<WindowID>&);
    void closeWindows(const std::vector<WindowID>&);
    /// Asks the window's application to quit.
    void quitApplicationOf(WindowID);

    /// For deferred work, when the model may be gone.
    WeakReference<BarViewModel> weakReference() const { return m_weak.reference(); }

private:
    /// How long a window that refuses the focus is shown as if it had it.
    static constexpr Duration kPendingFocusExpiry = seconds(2);
    static constexpr Duration kActivationRetry = seconds(0.15);

    /// The window to show as focused, and the reason.
    struct FocusDecision {
        std::optional<WindowID> effective;
        std::string_view reason;
        std::string keys; ///< for the trace
    };

    void subscribe();
    /// In the next turn, once for all changes of this one.
    void refreshSoon();
    FocusDecision resolveFocus();
    void dropPendingFocus();
    void setPendingFocus(WindowID);
    /// The chips and items for the store's windows, with this one focused.
    void publish(std::optional<WindowID> focused);

    using WindowsBySpace = std::map<SpaceID, std::vector<const TrackedWindow*>>;

    /// Adds the spaces whose chips have changed to `changed`; so do the next ones.
    void updateChips(const WindowsBySpace&, std::set<SpaceID>& changed);
    bool updateChip(ChipData&, const TrackedWindow&);
    void updateSummaries(const std::set<SpaceID>& changed);
    void updateItems(std::set<SpaceID>& changed);
    void updateFrames(const WindowsBySpace&, std::set<SpaceID>& changed);
    std::vector<DisplayItem> makeItems(SpaceID, const std::vector<ChipData>&);
    void findBundlesWithAttentionWindows();
    bool wantsAttention(const TrackedWindow&) const;
    void forgetOldTitles();
    bool hasNews(const TrackedWindow&);

    /// One of several screens, and whether it takes the windows that touch none.
    struct ScreenFilter {
        const std::vector<Screen>& screens;
        std::size_t index = 0;
        bool isHome = false;
    };

    bool isOnDisplayOf(SpaceID, const Screen&, const std::vector<Screen>&) const;
    std::optional<DisplayItem> onScreen(SpaceID, const DisplayItem&, const ScreenFilter&) const;
    /// Those that have chips, in the order in which these stand.
    std::vector<const ChipData*> inOrder(SpaceID, const std::vector<WindowID>&) const;
    bool isOnScreen(WindowID, const ScreenFilter&) const;

    /// From now on the window represents its group on every space it is on.
    void preferInItsGroups(const TrackedWindow&);
    /// A click on a window. The store may drop the window meanwhile.
    struct Activation {
        AXElement application;
        WindowID id{};
        ProcessID pid{};
        bool isMinimized = false;
        std::uint64_t sequence = 0; ///< for the trace
    };
    void focusThroughApplication(const Activation&);
    void applyFocusAndRaise(const Activation&, const AXElement&);
    void requestApplicationActivation(const Activation&);
    void retryActivation(const Activation&);
    using ElementOfProcess = std::pair<ProcessID, AXElement>;
    std::optional<ElementOfProcess> prepareToMinimize(WindowID);
    std::optional<ElementOfProcess> closeButtonOf(WindowID);

    WindowStore& m_windowStore;
    UserSettings& m_settings;
    BadgeService& m_badgeService;
    Dispatch& m_dispatch;
    WindowServer& m_windowServer;
    Displays& m_displays;
    Workspace& m_workspace;
    const Bundles& m_bundles;
    const Trace& m_trace;
    SpaceWindows m_spaceWindows;
    LateRequests m_lateRequests;
    AXCalls m_calls;

    ApplicationIcons m_icons;
    ChipOrder m_order;
    ChipGroups m_groups;
    OrderMemory m_memory;
    GroupWalk m_walk;
    TitleNews m_titleNews; ///< of no window while that is not wanted
    bool m_isGrouped = false; ///< as of the last items
    bool m_areItemsStale = false;
    std::map<SpaceID, std::vector<Rect>>
        m_frames; ///< of the windows, while there are screens to choose
    std::set<SpaceID> m_changedBars; ///< not told yet
    std::set<std::string> m_bundlesWithAttentionWindows;
    std::optional<WindowID> m_pendingFocusedWindowID;
    /// What may have the focus until the system has answered: the window that had it, and those of
    /// earlier clicks whose answer may still come.
    std::set<WindowID> m_focusBeforePending;
    bool m_hasPendingExpired = false;
    std::uint64_t m_debugEventSequence = 0; ///< of refreshes and activations

    std::vector<Subscription> m_subscriptions;
    WorkItem m_refresh;
    WorkItem m_pendingExpiry;
    WorkItem m_activationRetry;
    WeakOwner<BarViewModel> m_weak{*this};
};

/// The bundle identifier, else the application's name.
const std::string& groupKey(const TrackedWindow&);

}
