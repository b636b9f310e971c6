#include "Hosts/X11/XkbLibrary.h"

#include <optional>

#include "Hosts/Linux/LibrarySymbols.h"

namespace quorvel::xdg::x11 {

namespace {

std::optional<XkbLibrary> loadLibrary()
{
    LibrarySymbols symbols{"libxkbcommon-x11.so.0"}; // and with it those that it needs
    XkbLibrary xkb{};
    symbols.find("xkb_x11_setup_xkb_extension", xkb.setUpExtension);
    symbols.find("xkb_x11_get_core_keyboard_device_id", xkb.coreKeyboard);
    symbols.find("xkb_x11_keymap_new_from_device", xkb.newKeymap);
    symbols.find("xcb_xkb_select_events", xkb.selectEvents);
    symbols.find("xcb_xkb_per_client_flags", xkb.perClientFlags);
    symbols.find("xkb_context_new", xkb.newContext);
    symbols.find("xkb_context_unref", xkb.unrefContext);
    symbols.find("xkb_keymap_unref", xkb.unrefKeymap);
    symbols.find("xkb_state_new", xkb.newState);
    symbols.find("xkb_state_unref", xkb.unrefState);
    symbols.find("xkb_state_update_mask", xkb.updateMask);
    symbols.find("xkb_state_key_get_one_sym", xkb.symbol);
    symbols.find("xkb_state_key_get_utf8", xkb.text);
    symbols.find("xkb_keysym_to_utf8", xkb.symbolText);
    symbols.find("xkb_compose_table_new_from_locale", xkb.newComposeTable);
    symbols.find("xkb_compose_table_unref", xkb.unrefComposeTable);
    symbols.find("xkb_compose_state_new", xkb.newComposeState);
    symbols.find("xkb_compose_state_unref", xkb.unrefComposeState);
    symbols.find("xkb_compose_state_feed", xkb.feedCompose);
    symbols.find("xkb_compose_state_reset", xkb.resetCompose);
    symbols.find("xkb_compose_state_get_status", xkb.composeStatus);
    symbols.find("xkb_compose_state_get_utf8", xkb.composedText);
    return symbols.areComplete() ? std::optional{xkb} : std::nullopt;
}

}

const XkbLibrary* XkbLibrary::load()
{
    static const auto library = loadLibrary();
    return library ? &*library : nullptr;
}

}
