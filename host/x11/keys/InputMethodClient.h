#pragma once

#include <memory>
#include <optional>
#include <string>

#include <xcb-imdkit/encoding.h>
#include <xcb-imdkit/imclient.h>
#include <xcb/xcb.h>

#include "host/x11/server/Connection.h"

// The functions of the library that are used, and the members that hold them.
#define INPUT_METHOD_FUNCTIONS(FUNCTION)                                                           \
    FUNCTION(create, xcb_xim_create)                                                               \
    FUNCTION(destroy, xcb_xim_destroy)                                                             \
    FUNCTION(open, xcb_xim_open)                                                                   \
    FUNCTION(setCallbacks, xcb_xim_set_im_callback)                                                \
    FUNCTION(useCompoundText, xcb_xim_set_use_compound_text)                                       \
    FUNCTION(useUtf8, xcb_xim_set_use_utf8_string)                                                 \
    FUNCTION(encoding, xcb_xim_get_encoding)                                                       \
    FUNCTION(filterEvent, xcb_xim_filter_event)                                                    \
    FUNCTION(createList, xcb_xim_create_nested_list)                                               \
    FUNCTION(createContext, xcb_xim_create_ic)                                                     \
    FUNCTION(destroyContext, xcb_xim_destroy_ic)                                                   \
    FUNCTION(setValues, xcb_xim_set_ic_values)                                                     \
    FUNCTION(setFocus, xcb_xim_set_ic_focus)                                                       \
    FUNCTION(forwardEvent, xcb_xim_forward_event)                                                  \
    FUNCTION(initCompoundText, xcb_compound_text_init)                                             \
    FUNCTION(compoundTextToUtf8, xcb_compound_text_to_utf8)

namespace host {

// The client's half of libxcb-imdkit. It is loaded when it is wanted for the first time: few people
// need it, and it brings half a megabyte with it.
struct InputMethodLibrary {
    // Null if it is not installed. The display thread only.
    static const InputMethodLibrary* Load();

#define FUNCTION(member, function) decltype(&function) member;
    INPUT_METHOD_FUNCTIONS(FUNCTION)
#undef FUNCTION
};

// A connection to an input-method server, with one input context at most: the text field that has
// the focus. Nothing waits for the server. The display thread only.
class InputMethodClient {
public:
    // Called with the server's answers, from within Filter. The client must not be destroyed in a
    // call.
    class Listener {
    public:
        virtual ~Listener() = default;
        // Keys can be sent now; or the server refused.
        virtual void ContextCame(bool isMade) = 0;
        // The server does not want this key, or has made it up.
        virtual void KeyCame(const xcb_key_press_event_t& key) = 0;
        // UTF-8, without control characters.
        virtual void TextCame(const std::string& text) = 0;
        // The server has seen the key that was sent to it. It may still come later.
        virtual void KeyWasSeen() = 0;
        virtual void ServerWasLost() = 0;
    };

    // `modifiers` is the environment's XMODIFIERS.
    InputMethodClient(const Connection& connection, const InputMethodLibrary& library,
                      const std::string& modifiers, Listener& listener);
    ~InputMethodClient();
    InputMethodClient(const InputMethodClient&) = delete;

    // True for an event that is the server's.
    bool Filter(xcb_generic_event_t& event);

    // A new context for a text in `window`, with its caret at `spot`; without one for None.
    // The listener hears no more of the one before.
    void SetFocus(xcb_window_t window, xcb_point_t spot);
    void SetSpot(xcb_point_t spot);

    bool IsConnected() const { return fState != State::NotConnected; }
    // Whether the context has been made, or may be still.
    bool IsExpected() const { return fServer && fState != State::NoContext; }
    bool IsReady() const { return fState == State::Made && fMadeFor == fFocus; }
    bool Wants(const xcb_key_press_event_t& key) const;
    // The next one after the listener has heard that this one was seen.
    void Send(const xcb_key_press_event_t& key);

private:
    enum class State { NotConnected, NoContext, Making, Made, Ending };

    void HandleOpen();
    void HandleMade(xcb_xic_t context);
    void HandleText(const char* text, size_t length);
    void MakeContext();
    void SendWaiting();
    void HandleSpotSet();
    static InputMethodClient& Of(void* data) { return *static_cast<InputMethodClient*>(data); }

    const InputMethodLibrary& fLibrary;
    Listener& fListener;
    xcb_xim_t* fServer = nullptr;
    State fState = State::NotConnected;
    xcb_xic_t fContext = 0;
    uint32 fFocus = 0;   // counts SetFocus
    uint32 fMadeFor = 0; // the focus that the context was asked for
    xcb_window_t fWindow = XCB_WINDOW_NONE;
    xcb_point_t fSpot{};
    bool fIsSpotNew = false;
    bool fIsSetting = false; // the spot, and the answer has not come
    bool fHasSentKey = false;
    std::optional<xcb_key_press_event_t> fKey; // to be sent
    uint32 fWanted = XCB_EVENT_MASK_KEY_PRESS;
};

} // namespace host
