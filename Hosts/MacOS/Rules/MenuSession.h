#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Published.h"
#include "Quorvel/Platform/Surfaces.h"

namespace quorvel {

/// One system menu: whoever builds it gives its entries the numbers that they have here, and passes
/// in the number of the chosen one. Main thread.
class MenuSession {
public:
    /// Shows the system's menu and returns when it has gone; inside, the main queue runs on.
    using Show = std::function<MenuEnding()>;
    /// Ends the showing of it.
    using Cancel = std::function<void()>;

    /// Of `NSEventType`.
    static constexpr std::uint64_t kKeyDown = 10;

    MenuSession(Queue& mainQueue, std::function<void(MenuEnding)> onClosed);

    /// The number of an entry with this action.
    std::size_t add(Work action);
    /// Shows the menu, unless it has been cancelled.
    void run(const Show&, Cancel);
    /// The system may send this before the menu has closed or after it.
    void choose(std::size_t entry);
    /// Closes the menu and drops the choice.
    void cancel();
    bool isShown() const { return m_cancel != nullptr; }
    /// What ended the loop of the system's menu is still the program's current event; 0 if there is
    /// none.
    static MenuEnding endingOf(bool isChosen, std::uint64_t currentEventType);
    /// Called after the menu has left the screen; replaces an earlier callback.
    void setNext(Work next) { m_next = std::move(next); }

private:
    void close(MenuEnding);

    Queue& m_mainQueue;
    std::function<void(MenuEnding)> m_onClosed;
    std::vector<Work> m_actions;
    Work m_chosen;
    Work m_next;
    Cancel m_cancel; ///< set while it is on the screen
    bool m_isCancelled = false;
    bool m_hasClosed = false;
};

/// The menu that is open or about to open: at most one, and none once the program is ending. The
/// system's menu runs a loop of its own, which would hold up the program's end.
class OpenMenu {
public:
    explicit OpenMenu(const Signal<>& willTerminate);
    ~OpenMenu();

    /// Cancels the previous menu and calls `begin` when it has closed: one menu's loop must not run
    /// inside another's.
    void open(std::shared_ptr<MenuSession>, Work begin);
    void close();

private:
    std::shared_ptr<MenuSession> m_session;
    std::shared_ptr<MenuSession> m_leaving; ///< cancelled, but still on the screen for a moment
    bool m_hasEnded = false;
    Subscription m_willTerminate;
};

}
