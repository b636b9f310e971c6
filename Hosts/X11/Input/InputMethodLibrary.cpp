#include "Hosts/X11/Input/InputMethodLibrary.h"

#include <optional>

#include "Hosts/Linux/LibrarySymbols.h"

namespace quorvel::xdg::x11 {

namespace {

std::optional<InputMethodLibrary> loadLibrary()
{
    LibrarySymbols symbols{"libxcb-imdkit.so.1"};
    InputMethodLibrary library{};
    symbols.find("xcb_xim_create", library.create);
    symbols.find("xcb_xim_set_im_callback", library.setCallbacks);
    symbols.find("xcb_xim_set_use_utf8_string", library.offerUtf8);
    symbols.find("xcb_xim_open", library.open);
    symbols.find("xcb_xim_close", library.close);
    symbols.find("xcb_xim_destroy", library.destroy);
    symbols.find("xcb_xim_filter_event", library.filter);
    symbols.find("xcb_xim_get_encoding", library.encoding);
    symbols.find("xcb_xim_get_im_values", library.getValues);
    symbols.find("xcb_xim_create_ic", library.createContext);
    symbols.find("xcb_xim_destroy_ic", library.destroyContext);
    symbols.find("xcb_xim_create_nested_list", library.nest);
    symbols.find("xcb_xim_set_ic_values", library.setContextValues);
    symbols.find("xcb_xim_set_ic_focus", library.focus);
    symbols.find("xcb_xim_unset_ic_focus", library.unfocus);
    symbols.find("xcb_xim_forward_event", library.forward);
    symbols.find("xcb_compound_text_init", library.prepareCompoundText);
    symbols.find("xcb_compound_text_to_utf8", library.compoundTextToUtf8);
    if (!symbols.areComplete())
        return std::nullopt;
    library.prepareCompoundText();
    return library;
}

}

const InputMethodLibrary* InputMethodLibrary::load()
{
    static const auto library = loadLibrary();
    return library ? &*library : nullptr;
}

}
