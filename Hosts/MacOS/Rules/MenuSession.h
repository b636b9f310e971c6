#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Published.h"
#include "Quorvel/Platform/Surfaces.h"

namespace quorvel {

/// One menu of the system: whoever makes it gives the entries the numbers that they have here, and
/// hands in the number of the one that was chosen. Main thread.
class MenuSession {
public:
    /// Shows the system's menu and returns when it has gone; inside, the main queue runs on.
    using Show = std::function<MenuEnding()>;
    /// Ends the showing of it.
    using Cancel = std::function<void()>;

    MenuSession(Queue& mainQueue, std::function<void(MenuEnding)> onClosed);

    /// The number of an entry with this action.
    std::size_t add(Work action);
    /// Shows it, unless it was cancelled before.
    void run(const Show&, Cancel);
    /// Nobody says whether this comes before the menu has gone or after it.
    void choose(std::size_t entry);
    /// It goes, and what was chosen is dropped.
    void cancel();
    bool isShown() const { return m_cancel != nullptr; }
    /// After it has left the screen; instead of what was to come before.
    void setNext(Work next) { m_next = std::move(next); }

private:
    void close(MenuEnding);

    Queue& m_mainQueue;
    std::function<void(MenuEnding)> m_onClosed;
    std::vector<Work> m_actions;
    Work m_chosen;
    Work m_next;
    Cancel m_cancel; ///< while it is on the screen
    bool m_isCancelled = false;
    bool m_hasClosed = false;
};

/// The menu that is open or about to open: one at most, and none once the program ends. The
/// system's menu runs a loop of its own, which a program that wants to end would wait for.
class OpenMenu {
public:
    explicit OpenMenu(const Signal<>& willTerminate);
    ~OpenMenu();

    /// Cancels the one before and calls `begin` when it has gone: one menu's loop must not run
    /// inside the other's.
    void open(std::shared_ptr<MenuSession>, Work begin);
    void close();

private:
    std::shared_ptr<MenuSession> m_session;
    std::shared_ptr<MenuSession> m_leaving; ///< cancelled, on the screen for a moment yet
    bool m_hasEnded = false;
    Subscription m_willTerminate;
};

}
