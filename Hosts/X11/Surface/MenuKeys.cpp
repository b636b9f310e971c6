#include "Hosts/X11/Surface/MenuKeys.h"

#include <cstdlib>

#include "Hosts/X11/Connection.h"

namespace quorvel::xdg::x11 {

MenuKeys::MenuKeys(Connection& connection)
{
    auto* setup = xcb_get_setup(connection.raw());
    m_first = setup->min_keycode;
    auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    auto* reply = xcb_get_keyboard_mapping_reply(
        connection.raw(), xcb_get_keyboard_mapping(connection.raw(), m_first, count), nullptr);
    if (!reply)
        return;
    auto* symbols = xcb_get_keyboard_mapping_keysyms(reply);
    auto length = xcb_get_keyboard_mapping_keysyms_length(reply);
    for (int i = 0; reply->keysyms_per_keycode > 0 && i < length; i += reply->keysyms_per_keycode)
        m_symbols.push_back(symbols[i]);
    std::free(reply);
}

std::uint32_t MenuKeys::symbol(xcb_keycode_t code) const
{
    std::size_t index = static_cast<std::size_t>(code) - m_first;
    return code >= m_first && index < m_symbols.size() ? m_symbols[index] : 0;
}

}
