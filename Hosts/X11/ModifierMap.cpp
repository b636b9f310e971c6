#include "Hosts/X11/ModifierMap.h"

#include <array>
#include <span>

#include <xcb/xcb.h>
#include <xkbcommon/xkbcommon-keysyms.h>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Reply.h"
#include "Quorvel/Platform/Hotkeys.h"
#include "Quorvel/Platform/KeyEvent.h"

namespace quorvel::xdg::x11 {

namespace {

constexpr int kFirstMovable = XCB_MAP_INDEX_1;
constexpr int kModifierBits = 8;

/// The symbols of each key.
class KeySymbols {
public:
    KeySymbols(const xcb_get_keyboard_mapping_reply_t& reply, xcb_keycode_t first)
        : m_symbols(xcb_get_keyboard_mapping_keysyms(&reply),
              static_cast<std::size_t>(xcb_get_keyboard_mapping_keysyms_length(&reply)))
        , m_perKey(reply.keysyms_per_keycode)
        , m_first(first)
    {
    }
    std::span<const xcb_keysym_t> of(xcb_keycode_t key) const
    {
        const auto start = static_cast<std::size_t>(key - m_first) * m_perKey;
        if (key < m_first || start + m_perKey > m_symbols.size())
            return {};
        return m_symbols.subspan(start, m_perKey);
    }

private:
    std::span<const xcb_keysym_t> m_symbols;
    std::size_t m_perKey;
    xcb_keycode_t m_first;
};

/// The lowest bit wins where several keys say the same.
void note(std::uint16_t& bits, std::uint16_t bit)
{
    if (bits == 0)
        bits = bit;
}

void note(ModifierMap& map, std::uint16_t& meta, xcb_keysym_t symbol, std::uint16_t bit)
{
    switch (symbol) {
    case XKB_KEY_Alt_L:
    case XKB_KEY_Alt_R:
        return note(map.option, bit);
    case XKB_KEY_Meta_L:
    case XKB_KEY_Meta_R:
        return note(meta, bit);
    case XKB_KEY_Super_L:
    case XKB_KEY_Super_R:
        return note(map.command, bit);
    case XKB_KEY_Num_Lock:
        return note(map.numLock, bit);
    case XKB_KEY_Scroll_Lock:
        return note(map.scrollLock, bit);
    default:
        return;
    }
}

}

ModifierMap ModifierMap::read(const Connection& connection)
{
    auto* raw = connection.raw();
    const auto& setup = *xcb_get_setup(raw);
    const auto modifiers = xcb_get_modifier_mapping(raw);
    const auto keyboard = xcb_get_keyboard_mapping(raw, setup.min_keycode,
        static_cast<std::uint8_t>(setup.max_keycode - setup.min_keycode + 1));
    const auto keys = owned(xcb_get_modifier_mapping_reply(raw, modifiers, nullptr));
    const auto mapping = owned(xcb_get_keyboard_mapping_reply(raw, keyboard, nullptr));
    ModifierMap map;
    if (!keys || !mapping)
        return map;
    const KeySymbols symbols{*mapping, setup.min_keycode};
    std::uint16_t meta = 0;
    const auto* key = xcb_get_modifier_mapping_keycodes(keys.get());
    for (int modifier = 0; modifier < kModifierBits; ++modifier) {
        for (int i = 0; i < keys->keycodes_per_modifier; ++i, ++key) {
            if (modifier < kFirstMovable || *key == 0)
                continue;
            for (auto symbol : symbols.of(*key))
                note(map, meta, symbol, static_cast<std::uint16_t>(1U << modifier));
        }
    }
    note(map.option, meta);
    return map;
}

std::optional<std::uint16_t> ModifierMap::bitsOf(std::uint32_t modifiers) const
{
    const std::array<std::pair<std::uint32_t, std::uint16_t>, 4> known{
        {{HotkeyModifier::shift, XCB_MOD_MASK_SHIFT},
            {HotkeyModifier::control, XCB_MOD_MASK_CONTROL}, {HotkeyModifier::option, option},
            {HotkeyModifier::command, command}}};
    std::uint16_t bits = 0;
    for (auto& [mask, bit] : known) {
        if (!(modifiers & mask))
            continue;
        if (bit == 0)
            return {};
        bits = static_cast<std::uint16_t>(bits | bit);
        modifiers &= ~mask;
    }
    return modifiers == 0 ? std::optional{bits} : std::nullopt;
}

std::uint64_t ModifierMap::modifiersIn(std::uint16_t state) const
{
    return (state & XCB_MOD_MASK_SHIFT ? KeyModifier::shift : 0)
        | (state & XCB_MOD_MASK_CONTROL ? KeyModifier::control : 0)
        | (state & option ? KeyModifier::option : 0) | (state & command ? KeyModifier::command : 0);
}

std::vector<std::uint16_t> ModifierMap::lockStates(std::uint16_t without) const
{
    std::vector<std::uint16_t> states{0};
    for (std::uint16_t lock : {std::uint16_t{XCB_MOD_MASK_LOCK}, numLock, scrollLock}) {
        const bool isKnown = lock == 0 || (lock & without) || (states.back() & lock);
        const auto count = isKnown ? 0 : states.size();
        for (std::size_t i = 0; i < count; ++i)
            states.push_back(static_cast<std::uint16_t>(states[i] | lock));
    }
    return states;
}

}
