#include "Hosts/X11/Selection/X11Clipboard.h"

#include <utility>

#include "Hosts/X11/Connection.h"

namespace quorvel::xdg::x11 {

namespace {

/// Somebody holds down the key that pastes, and the owner does not answer.
constexpr std::size_t kMostFetches = 8;

}

X11Clipboard::X11Clipboard(Connection& connection, Dispatch& dispatch)
    : m_connection(connection)
    , m_dispatch(dispatch)
    , m_time(connection)
    , m_clipboard(connection, dispatch, m_time, connection.atoms().clipboard)
    , m_primary(connection, dispatch, m_time, XCB_ATOM_PRIMARY)
{
}

void X11Clipboard::setText(ClipboardKind kind, std::string utf8)
{
    (kind == ClipboardKind::clipboard ? m_clipboard : m_primary).setText(std::move(utf8));
}

/// The time is that of the question, and comes after those of texts that were offered before it.
void X11Clipboard::requestText(ClipboardKind kind, TextHandler handler)
{
    m_time.ask([this, kind, handler = std::move(handler)](
                   xcb_timestamp_t now) { fetch(kind, now, handler); });
}

void X11Clipboard::fetch(ClipboardKind kind, xcb_timestamp_t now, const TextHandler& handler)
{
    if (m_fetches.size() >= kMostFetches)
        return handler(std::nullopt);
    m_fetches.emplace_back(m_connection, m_dispatch, selectionOf(kind), now,
        [this, handler](const SelectionFetch& ended, std::optional<std::string> text) {
            const auto tell = handler; // the fetch takes this along
            auto& fetches = m_fetches;
            fetches.remove_if([&](const auto& fetch) { return &fetch == &ended; });
            tell(std::move(text));
        });
}

xcb_atom_t X11Clipboard::selectionOf(ClipboardKind kind) const
{
    return kind == ClipboardKind::clipboard ? m_connection.atoms().clipboard
                                            : xcb_atom_t{XCB_ATOM_PRIMARY};
}

}
