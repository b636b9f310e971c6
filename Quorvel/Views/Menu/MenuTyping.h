#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Menu.h"

namespace quorvel {

/// Letters typed in a menu select the entry that begins with them; the same letter repeated selects
/// the next such entry. After a pause a new search begins.
class MenuTyping {
public:
    static constexpr Duration kPause = seconds(1);

    explicit MenuTyping(const Dispatch& dispatch) : m_dispatch(dispatch) { }

    /// Whether a search is in progress: a space then belongs to it.
    bool isGoingOn() const;
    /// The row to select, if any; `from` is the highlighted one.
    std::optional<std::size_t> type(
        std::string_view characters, const Menu&, std::optional<std::size_t> from);
    void forget() { m_typed.clear(); }

private:
    const Dispatch& m_dispatch;
    std::u32string m_typed; ///< in lower case
    Instant m_last;
};

}
