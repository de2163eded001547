#include "host/x11/keys/InputMethodClient.h"

#include <dlfcn.h>

#include <algorithm>
#include <utility>

namespace host {

namespace {

// The server draws what is not finished yet: at the caret, or in a window of its own.
constexpr uint32 kStyle = XCB_IM_PreeditPosition | XCB_IM_StatusNothing;

bool IsControl(char byte) {
    return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7f;
}

int ScreenNumber(const Connection& connection) {
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    int number = 0;
    for (; screens.rem > 1 && screens.data->root != connection.Root(); xcb_screen_next(&screens))
        number++;
    return number;
}

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
    bool isWhole = true;
#define FIND(member, function) isWhole = isWhole && Find(file, #function, library->member);
    INPUT_METHOD_FUNCTIONS(FIND)
#undef FIND
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

InputMethodClient::InputMethodClient(const Connection& connection,
                                     const InputMethodLibrary& library,
                                     const std::string& modifiers, Listener& listener)
    : fLibrary(library)
    , fListener(listener)
    , fServer(library.create(connection, ScreenNumber(connection), modifiers.c_str())) {
    if (!fServer)
        return;
    xcb_xim_im_callback callbacks{};
    callbacks.set_event_mask = [](xcb_xim_t*, xcb_xic_t, uint32 wanted, uint32, void* data) {
        Of(data).fWanted = wanted;
    };
    callbacks.forward_event = [](xcb_xim_t*, xcb_xic_t context, xcb_key_press_event_t* key,
                                 void* data) {
        if (Of(data).IsReady() && context == Of(data).fContext)
            Of(data).fListener.KeyCame(*key);
    };
    callbacks.commit_string = [](xcb_xim_t*, xcb_xic_t context, uint32 flags, char* text,
                                 uint32 length, uint32*, size_t, void* data) {
        bool isText = (flags & XCB_XIM_LOOKUP_CHARS) != 0 && text;
        if (isText && Of(data).IsReady() && context == Of(data).fContext)
            Of(data).HandleText(text, length);
    };
    callbacks.disconnected = [](xcb_xim_t*, void* data) {
        Of(data).fState = State::NotConnected;
        Of(data).fListener.ServerWasLost();
    };
    fLibrary.useCompoundText(fServer, true);
    fLibrary.useUtf8(fServer, true);
    fLibrary.setCallbacks(fServer, &callbacks, this);
    fLibrary.open(
        fServer, [](xcb_xim_t*, void* data) { Of(data).HandleOpen(); }, false, this);
}

InputMethodClient::~InputMethodClient() {
    if (!fServer)
        return;
    const xcb_xim_im_callback none{};
    fLibrary.setCallbacks(fServer, &none, nullptr);
    fState = State::NotConnected;
    fLibrary.destroy(fServer);
}

bool InputMethodClient::Filter(xcb_generic_event_t& event) {
    return fServer && fLibrary.filterEvent(fServer, &event);
}

void InputMethodClient::HandleOpen() {
    fState = State::NoContext;
    MakeContext();
}

void InputMethodClient::SetFocus(xcb_window_t window, xcb_point_t spot) {
    fFocus++;
    fWindow = window;
    fSpot = spot;
    MakeContext();
}

// For the present focus, as soon as the one before has been made and is gone.
void InputMethodClient::MakeContext() {
    if (fState == State::Made && !fIsSetting) {
        fState = State::Ending;
        auto ended = [](xcb_xim_t*, xcb_xic_t, void* data) {
            if (Of(data).fState != State::Ending)
                return;
            Of(data).fState = State::NoContext;
            Of(data).MakeContext();
        };
        fLibrary.destroyContext(fServer, fContext, ended, this);
        return;
    }
    if (fState != State::NoContext || fWindow == XCB_WINDOW_NONE)
        return;
    fState = State::Making;
    fIsSpotNew = false;
    fMadeFor = fFocus;
    auto answer = [](xcb_xim_t*, xcb_xic_t context, void* data) { Of(data).HandleMade(context); };
    Reply<uint8> spot;
    auto list = fLibrary.createList(fServer, XCB_XIM_XNSpotLocation, &fSpot, nullptr);
    spot.reset(list.data);
    bool isSent = fLibrary.createContext(fServer, answer, this, XCB_XIM_XNInputStyle, &kStyle,
                                         XCB_XIM_XNClientWindow, &fWindow, XCB_XIM_XNFocusWindow,
                                         &fWindow, XCB_XIM_XNPreeditAttributes, &list, nullptr);
    if (!isSent) {
        fState = State::NoContext;
        fListener.ContextCame(false);
    }
}

void InputMethodClient::HandleMade(xcb_xic_t context) {
    if (fState != State::Making)
        return;
    fState = context != 0 ? State::Made : State::NoContext;
    fContext = context;
    fIsSetting = false;
    if (context == 0) {
        fListener.ContextCame(false);
        return;
    }
    if (fMadeFor != fFocus) {
        MakeContext();
        return;
    }
    fHasSentKey = false;
    fKey.reset();
    fLibrary.setFocus(fServer, fContext);
    fListener.ContextCame(true);
    SendWaiting();
}

void InputMethodClient::HandleText(const char* text, size_t length) {
    std::string utf8;
    if (fLibrary.encoding(fServer) == XCB_XIM_UTF8_STRING) {
        utf8.assign(text, length);
    } else {
        size_t converted = 0;
        Reply<char> owner(fLibrary.compoundTextToUtf8(text, length, &converted));
        if (owner)
            utf8.assign(owner.get(), converted);
    }
    std::erase_if(utf8, IsControl);
    if (!utf8.empty())
        fListener.TextCame(utf8);
}

void InputMethodClient::SetSpot(xcb_point_t spot) {
    fSpot = spot;
    fIsSpotNew = true;
    SendWaiting();
}

bool InputMethodClient::Wants(const xcb_key_press_event_t& key) const {
    bool isPress = (key.response_type & 0x7f) == XCB_KEY_PRESS;
    return (fWanted & (isPress ? XCB_EVENT_MASK_KEY_PRESS : XCB_EVENT_MASK_KEY_RELEASE)) != 0;
}

void InputMethodClient::Send(const xcb_key_press_event_t& key) {
    fKey = key;
    SendWaiting();
}

// Servers need not answer a key that they take. They handle one request after the other, though:
// when they have set the spot, they have seen the key before it. The library loses keys
// that are sent while it waits for such an answer.
void InputMethodClient::SendWaiting() {
    if (!IsReady() || fIsSetting || !(fKey || fIsSpotNew))
        return;
    fIsSetting = true;
    fIsSpotNew = false;
    fHasSentKey = fKey.has_value();
    if (fKey)
        fLibrary.forwardEvent(fServer, fContext, &*fKey);
    fKey.reset();
    auto list = fLibrary.createList(fServer, XCB_XIM_XNSpotLocation, &fSpot, nullptr);
    Reply<uint8> owner(list.data);
    auto answer = [](xcb_xim_t*, xcb_xic_t context, void* data) {
        if (Of(data).fState == State::Made && context == Of(data).fContext)
            Of(data).HandleSpotSet();
    };
    fLibrary.setValues(fServer, fContext, answer, this, XCB_XIM_XNPreeditAttributes, &list,
                       nullptr);
}

void InputMethodClient::HandleSpotSet() {
    fIsSetting = false;
    if (!IsReady()) {
        MakeContext();
        return;
    }
    if (std::exchange(fHasSentKey, false))
        fListener.KeyWasSeen();
    SendWaiting();
}

} // namespace host
