#pragma once

#include <optional>
#include <variant>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Identifiers.h"

namespace quorvel::xdg {

/// Which window has the focus. Managers report no active window for a moment at each minimise,
/// restore and switch; that is accepted only when it lasts. Windows of this program are ignored:
/// while one of them is active, the last other window keeps the focus. Between a request to
/// activate a window and its answer, reports of a third window answer an older request.
class FocusTracker {
public:
    static constexpr auto kNoneSettles = std::chrono::milliseconds{50};
    /// How long an active window that is not listed yet may take to be announced.
    static constexpr auto kUnknownSettles = std::chrono::milliseconds{300};

    /// How long an answer is waited for.
    static constexpr auto kAnswerSettles = std::chrono::milliseconds{100};

    struct None { };
    struct Unknown { };
    struct Own { };
    using Active = std::variant<None, Unknown, Own, WindowID>;

    void update(const Active&, Instant now);
    /// The manager is being asked to activate the window; absent: to take the focus from one.
    void expect(std::optional<WindowID>, Instant now);
    /// When `update` must be called again although nothing changed.
    std::optional<Instant> deadline() const { return m_settlesAt; }

    /// Absent while the desktop itself is focused.
    std::optional<WindowID> window() const { return m_window; }
    bool isOwnWindowActive() const { return m_isOwnWindowActive; }

private:
    bool isOldNews(WindowID, Instant now);

    std::optional<WindowID> m_window;
    std::optional<Instant> m_settlesAt;
    std::optional<WindowID> m_expected;
    Instant m_expectedUntil;
    bool m_isOwnWindowActive = false;
};

}
