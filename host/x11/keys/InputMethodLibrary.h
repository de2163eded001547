#pragma once

#include <xcb-imdkit/encoding.h>
#include <xcb-imdkit/imclient.h>

namespace host {

// The client's half of libxcb-imdkit. It is loaded when it is wanted for the first time: few people
// need it, and it brings half a megabyte with it.
struct InputMethodLibrary {
    // Null if it is not installed. The display thread only.
    static const InputMethodLibrary* Load();

    decltype(&xcb_xim_create) create;
    decltype(&xcb_xim_destroy) destroy;
    decltype(&xcb_xim_open) open;
    decltype(&xcb_xim_set_im_callback) setCallbacks;
    decltype(&xcb_xim_set_use_compound_text) useCompoundText;
    decltype(&xcb_xim_set_use_utf8_string) useUtf8;
    decltype(&xcb_xim_get_encoding) encoding;
    decltype(&xcb_xim_filter_event) filterEvent;
    decltype(&xcb_xim_create_nested_list) createList;
    decltype(&xcb_xim_create_ic) createContext;
    decltype(&xcb_xim_destroy_ic) destroyContext;
    decltype(&xcb_xim_set_ic_values) setValues;
    decltype(&xcb_xim_set_ic_focus) setFocus;
    decltype(&xcb_xim_forward_event) forwardEvent;
    decltype(&xcb_compound_text_init) initCompoundText;
    decltype(&xcb_compound_text_to_utf8) compoundTextToUtf8;
};

} // namespace host
