#include "host/x11/keys/InputMethodLibrary.h"

#include <dlfcn.h>

#include <memory>

namespace host {

namespace {

template <typename Function>
bool Find(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(dlsym(library, name));
    return function != nullptr;
}

std::unique_ptr<InputMethodLibrary> Open() {
    void* file = dlopen("libxcb-imdkit.so.1", RTLD_NOW | RTLD_LOCAL);
    if (!file)
        return nullptr;
    auto library = std::make_unique<InputMethodLibrary>();
    bool isWhole = Find(file, "xcb_xim_create", library->create) &&
                   Find(file, "xcb_xim_destroy", library->destroy) &&
                   Find(file, "xcb_xim_open", library->open) &&
                   Find(file, "xcb_xim_set_im_callback", library->setCallbacks) &&
                   Find(file, "xcb_xim_set_use_compound_text", library->useCompoundText) &&
                   Find(file, "xcb_xim_set_use_utf8_string", library->useUtf8) &&
                   Find(file, "xcb_xim_get_encoding", library->encoding) &&
                   Find(file, "xcb_xim_filter_event", library->filterEvent) &&
                   Find(file, "xcb_xim_create_nested_list", library->createList) &&
                   Find(file, "xcb_xim_create_ic", library->createContext) &&
                   Find(file, "xcb_xim_destroy_ic", library->destroyContext) &&
                   Find(file, "xcb_xim_set_ic_values", library->setValues) &&
                   Find(file, "xcb_xim_set_ic_focus", library->setFocus) &&
                   Find(file, "xcb_xim_forward_event", library->forwardEvent) &&
                   Find(file, "xcb_compound_text_init", library->initCompoundText) &&
                   Find(file, "xcb_compound_text_to_utf8", library->compoundTextToUtf8);
    if (!isWhole)
        return nullptr;
    library->initCompoundText();
    return library;
}

} // namespace

const InputMethodLibrary* InputMethodLibrary::Load() {
    static const InputMethodLibrary* const library = Open().release();
    return library;
}

} // namespace host
