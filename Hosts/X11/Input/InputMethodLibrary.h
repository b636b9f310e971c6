#pragma once

#include <xcb-imdkit/encoding.h>
#include <xcb-imdkit/imclient.h>

namespace quorvel::xdg::x11 {

/// The calls of xcb-imdkit, which speaks the X input method protocol. It is loaded when somebody
/// with an input method first types: with its tables of old encodings it is half the bar's size.
struct InputMethodLibrary {
    /// Null where it is not installed.
    static const InputMethodLibrary* load();

    decltype(&::xcb_xim_create) create;
    decltype(&::xcb_xim_set_im_callback) setCallbacks;
    decltype(&::xcb_xim_set_use_utf8_string) offerUtf8;
    decltype(&::xcb_xim_open) open;
    decltype(&::xcb_xim_close) close;
    decltype(&::xcb_xim_destroy) destroy;
    decltype(&::xcb_xim_filter_event) filter;
    decltype(&::xcb_xim_get_encoding) encoding;
    decltype(&::xcb_xim_get_im_values) getValues;
    decltype(&::xcb_xim_create_ic) createContext;
    decltype(&::xcb_xim_destroy_ic) destroyContext;
    decltype(&::xcb_xim_create_nested_list) nest;
    decltype(&::xcb_xim_set_ic_values) setContextValues;
    decltype(&::xcb_xim_set_ic_focus) focus;
    decltype(&::xcb_xim_unset_ic_focus) unfocus;
    decltype(&::xcb_xim_forward_event) forward;
    decltype(&::xcb_compound_text_init) prepareCompoundText;
    decltype(&::xcb_compound_text_to_utf8) compoundTextToUtf8;
};

}
