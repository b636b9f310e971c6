#include "Hosts/X11/ComposeSequence.h"

#include <array>
#include <clocale>
#include <string_view>

#include "Hosts/X11/XkbLibrary.h"

namespace quorvel::xdg::x11 {

namespace {

/// Its table is shared by most locales, and serves those that have none.
constexpr const char* kCommonLocale = "en_US.UTF-8";

const char* localeOfUser()
{
    const char* locale = std::setlocale(LC_CTYPE, nullptr);
    const bool isNone = !locale || locale == std::string_view{"C"};
    return isNone ? kCommonLocale : locale; // the one of "C" knows western letters only
}

xkb_compose_table* readTable(const XkbLibrary& xkb)
{
    auto* context = xkb.newContext(XKB_CONTEXT_NO_FLAGS);
    if (!context)
        return nullptr;
    auto* table = xkb.newComposeTable(context, localeOfUser(), XKB_COMPOSE_COMPILE_NO_FLAGS);
    if (!table)
        table = xkb.newComposeTable(context, kCommonLocale, XKB_COMPOSE_COMPILE_NO_FLAGS);
    xkb.unrefContext(context); // the table keeps it
    return table;
}

}

ComposeSequence::ComposeSequence(const XkbLibrary& xkb) : m_xkb(xkb)
{
    auto* table = readTable(xkb);
    if (!table)
        return;
    m_state = xkb.newComposeState(table, XKB_COMPOSE_STATE_NO_FLAGS);
    xkb.unrefComposeTable(table); // the state keeps it
}

ComposeSequence::~ComposeSequence()
{
    m_xkb.unrefComposeState(m_state);
}

ComposeSequence::Step ComposeSequence::feed(std::uint32_t symbol)
{
    if (!m_state)
        return Step::none;
    if (m_xkb.feedCompose(m_state, symbol) == XKB_COMPOSE_FEED_IGNORED)
        return m_isOpen ? Step::pending : Step::none;
    const auto status = m_xkb.composeStatus(m_state);
    m_isOpen = status == XKB_COMPOSE_COMPOSING;
    switch (status) {
    case XKB_COMPOSE_COMPOSING:
        return Step::pending;
    case XKB_COMPOSE_COMPOSED:
        return Step::done;
    case XKB_COMPOSE_CANCELLED:
        return Step::broken;
    case XKB_COMPOSE_NOTHING:
        break;
    }
    return Step::none;
}

std::string ComposeSequence::text() const
{
    std::array<char, 256> text{};
    const auto length = m_xkb.composedText(m_state, text.data(), text.size());
    return length > 0 ? std::string{text.data()} : std::string{};
}

void ComposeSequence::reset()
{
    if (m_state)
        m_xkb.resetCompose(m_state);
    m_isOpen = false;
}

}
