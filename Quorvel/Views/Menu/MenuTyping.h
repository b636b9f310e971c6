#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Menu.h"

namespace quorvel {

/// The letters that are typed at a menu choose the entry that begins with them; the same letter
/// again, the next such entry. After a pause they begin anew.
class MenuTyping {
public:
    static constexpr Duration kPause = seconds(1);

    explicit MenuTyping(const Dispatch& dispatch) : m_dispatch(dispatch) { }

    /// Whether letters that belong together are coming: a space is one of them then.
    bool isGoingOn() const;
    /// The row to go to, if any; `from` is the one that is highlighted.
    std::optional<std::size_t> type(
        std::string_view characters, const Menu&, std::optional<std::size_t> from);
    void forget() { m_typed.clear(); }

private:
    const Dispatch& m_dispatch;
    std::u32string m_typed; ///< in lower case
    Instant m_last;
};

}
