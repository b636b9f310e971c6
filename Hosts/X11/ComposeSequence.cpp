#include "Hosts/X11/ComposeSequence.h"

#include <algorithm>
#include <array>
#include <clocale>
#include <string_view>

#include "Hosts/X11/XkbLibrary.h"

namespace quorvel::xdg::x11 {

namespace {

struct Accent {
    std::uint32_t symbol;
    const char* text;
};
/// Dead keys have no character of their own; these are the accents that stand alone.
constexpr std::array<Accent, 14> kAccents{{{XKB_KEY_dead_grave, "`"}, {XKB_KEY_dead_acute, "´"},
    {XKB_KEY_dead_circumflex, "^"}, {XKB_KEY_dead_tilde, "~"}, {XKB_KEY_dead_macron, "¯"},
    {XKB_KEY_dead_breve, "˘"}, {XKB_KEY_dead_abovedot, "˙"}, {XKB_KEY_dead_diaeresis, "¨"},
    {XKB_KEY_dead_abovering, "˚"}, {XKB_KEY_dead_doubleacute, "˝"}, {XKB_KEY_dead_caron, "ˇ"},
    {XKB_KEY_dead_cedilla, "¸"}, {XKB_KEY_dead_ogonek, "˛"}, {XKB_KEY_dead_stroke, "/"}}};

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
    const auto step = m_state ? advance(symbol) : Step::none;
    if (!m_isOpen)
        m_preview.clear();
    return step;
}

ComposeSequence::Step ComposeSequence::advance(std::uint32_t symbol)
{
    if (m_xkb.feedCompose(m_state, symbol) == XKB_COMPOSE_FEED_IGNORED)
        return m_isOpen ? Step::pending : Step::none;
    const auto status = m_xkb.composeStatus(m_state);
    m_isOpen = status == XKB_COMPOSE_COMPOSING;
    switch (status) {
    case XKB_COMPOSE_COMPOSING:
        m_preview += previewOf(symbol);
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

std::string ComposeSequence::previewOf(std::uint32_t symbol) const
{
    const auto accent = std::ranges::find(kAccents, symbol, &Accent::symbol);
    if (accent != kAccents.end())
        return accent->text;
    std::array<char, 8> text{};
    const bool isPrinted = m_xkb.symbolText(symbol, text.data(), text.size()) > 1
        && static_cast<unsigned char>(text.front()) > ' ';
    return isPrinted ? text.data() : "·";
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
    m_preview.clear();
}

}
