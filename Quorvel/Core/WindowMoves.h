#pragma once

#include <deque>
#include <optional>
#include <vector>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Skylight/SpaceWindows.h"

namespace quorvel {

class BarViewModel;
class SpaceNavigation;
class WindowStore;
class Workspace;
struct Platform;
struct TrackedWindow;

/// Moves a window to another space. The window server is asked first. Where it moves only a
/// program's own windows, the window is carried: held by its title bar while the display switches
/// to the space, or dragged across to the other display. One move at a time; a new one ends the
/// old, and the button is never left pressed. Main thread.
class WindowMoves {
public:
    /// How long to wait until the raised window is on top.
    static constexpr Duration kRaisePause = seconds(0.1);
    static constexpr Duration kMoveTimeout = seconds(1.5);

    WindowMoves(const Platform&, WindowStore&, BarViewModel&, SpaceNavigation&);
    ~WindowMoves();

    void moveWindowToSpaceByDragging(WindowID, SpaceID from, SpaceID to);
    /// One after the other; if they are carried, the display returns to its space for each.
    void moveWindowsToSpace(const std::vector<WindowID>&, SpaceID from, SpaceID to);
    /// From a space that need not be shown: if they are carried, the display goes there for them.
    void fetchWindows(const std::vector<WindowID>&, SpaceID from, SpaceID to);
    /// The same with one window, which then gets the focus. Where it does not come, nothing else
    /// happens.
    void bringWindow(WindowID, SpaceID from, SpaceID to);
    /// A display shows another space.
    void spaceDidChange(const std::vector<SpaceID>& shown);
    /// Releases whatever is held: the program may end without destructors.
    void end() { abandon(); }

private:
    struct PendingWindowMoveDrag {
        WindowID windowID{};
        SpaceID sourceSpaceID{};
        SpaceID targetSpaceID{};
        Point mouseDownPoint;
        Point dropPoint;
    };
    struct PendingSilicaWindowMove {
        WindowID windowID{};
        SpaceID targetSpaceID{};
        Point mouseDownPoint;
        Point dropPoint;
    };

    /// The windows waiting to be moved.
    struct Waiting {
        std::deque<WindowID> windows;
        SpaceID from{};
        SpaceID to{};
        bool isFromAfar = false; ///< the display may have to go to the space first
        std::optional<WindowID> toFocus; ///< once it is there; what is carried gets it anyway
    };

    void beginMoves(Waiting);

    void moveNext();
    void focusWhatCame();
    bool canCarry(SpaceID from, SpaceID to);
    /// False if it is already done, or cannot be done.
    bool begin(WindowID, SpaceID from, SpaceID to);
    bool moveDirectly(WindowID, SpaceID) const;
    /// Brings the window to the front and continues once it is on top.
    void raise(WindowID, Work next);
    bool beginWindowMoveDrag(WindowID, SpaceID source, SpaceID target);
    void holdAndSwitch();
    void finishPendingWindowMoveDrag(std::optional<ProcessID> previousApp);
    bool beginSilicaWindowMove(WindowID, SpaceID source, SpaceID target);
    void finishSilicaWindowMove(WindowID, std::optional<ProcessID> previousApp);
    void settle(WindowID, std::optional<ProcessID> previousApp);
    void abandon();
    bool isOnTop(WindowID, Point) const;
    void post(PointerPost, Point);
    std::optional<SpaceWindows::Info> info(SpaceID) const;
    std::optional<Rect> displayOf(SpaceID) const;

    Dispatch& m_dispatch;
    WindowServer& m_windowServer;
    Displays& m_displays;
    Workspace& m_workspace;
    SpaceWindows m_spaceWindows;
    WindowStore& m_windowStore;
    BarViewModel& m_viewModel;
    SpaceNavigation& m_navigation;
    Waiting m_waiting;
    std::optional<PendingWindowMoveDrag> m_pendingWindowMoveDrag;
    std::optional<PendingSilicaWindowMove> m_pendingSilicaWindowMove;
    std::optional<ProcessID> m_previousApp;
    std::optional<Point> m_heldAt; ///< where the button is down
    Point m_pointerBefore;
    WorkItem m_raiseWork;
    WorkItem m_pendingWindowMoveDragTimeoutWork;
};

}
