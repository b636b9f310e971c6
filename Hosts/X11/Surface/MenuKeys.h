#pragma once

#include <cstdint>
#include <vector>

#include <xcb/xcb.h>

namespace quorvel::xdg::x11 {

class Connection;

/// The symbols on the first level of the keyboard, read once: enough to walk a menu.
class MenuKeys {
public:
    explicit MenuKeys(Connection&);

    /// 0 for a key without a symbol.
    std::uint32_t symbol(xcb_keycode_t) const;

private:
    xcb_keycode_t m_first = 0;
    std::vector<std::uint32_t> m_symbols;
};

}
