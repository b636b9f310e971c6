#pragma once

#include <xcb/xcb.h>
#define explicit explicit_ // a field of the extension's header
#include <xcb/xkb.h>
#undef explicit
#include <xkbcommon/xkbcommon-compose.h>
#include <xkbcommon/xkbcommon-x11.h>

namespace quorvel::xdg::x11 {

/// The calls of libxkbcommon, which is loaded when the bar first gets the keyboard: most sessions
/// never need it, and the bar starts faster without it.
struct XkbLibrary {
    /// Null where it is not installed.
    static const XkbLibrary* load();

    decltype(&::xkb_x11_setup_xkb_extension) setUpExtension;
    decltype(&::xkb_x11_get_core_keyboard_device_id) coreKeyboard;
    decltype(&::xkb_x11_keymap_new_from_device) newKeymap;
    decltype(&::xcb_xkb_select_events) selectEvents;
    decltype(&::xcb_xkb_per_client_flags) perClientFlags;
    decltype(&::xkb_context_new) newContext;
    decltype(&::xkb_context_unref) unrefContext;
    decltype(&::xkb_keymap_unref) unrefKeymap;
    decltype(&::xkb_state_new) newState;
    decltype(&::xkb_state_unref) unrefState;
    decltype(&::xkb_state_update_mask) updateMask;
    decltype(&::xkb_state_key_get_one_sym) symbol;
    decltype(&::xkb_state_key_get_utf8) text;
    decltype(&::xkb_keysym_to_utf8) symbolText;
    decltype(&::xkb_compose_table_new_from_locale) newComposeTable;
    decltype(&::xkb_compose_table_unref) unrefComposeTable;
    decltype(&::xkb_compose_state_new) newComposeState;
    decltype(&::xkb_compose_state_unref) unrefComposeState;
    decltype(&::xkb_compose_state_feed) feedCompose;
    decltype(&::xkb_compose_state_reset) resetCompose;
    decltype(&::xkb_compose_state_get_status) composeStatus;
    decltype(&::xkb_compose_state_get_utf8) composedText;
};

}
