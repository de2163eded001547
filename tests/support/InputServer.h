#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <xcb-imdkit/encoding.h>
#include <xcb-imdkit/imdkit.h>

#include "tests/support/Desk.h"

namespace test {

// An input-method server by the name of "testim" that takes the key "a" and gives `given` for it;
// all other keys it gives back, "d" only when the next one comes. It dies with the object, as if it
// had crashed.
class InputServer {
public:
    static constexpr const char* kGiven = "日本é";

    explicit InputServer(Desk& desktop)
        : fConnection(xcb_connect(desktop.Name().c_str(), nullptr))
        , fWindow(xcb_generate_id(fConnection)) {
        xcb_create_window(fConnection, XCB_COPY_FROM_PARENT, fWindow, desktop.Root(), 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        uint32_t style = XCB_IM_PreeditPosition | XCB_IM_StatusNothing;
        const xcb_im_styles_t styles{1, &style};
        char encoding[] = "COMPOUND_TEXT";
        xcb_im_encoding_t encodings[] = {encoding};
        const xcb_im_encodings_t encodingList{1, encodings};
        xcb_compound_text_init();
        fServer = xcb_im_create(fConnection, 0, fWindow, "testim", XCB_IM_ALL_LOCALES, &styles,
                                nullptr, nullptr, &encodingList, 0, HandleRequest, this);
        xcb_im_open_im(fServer);
        xcb_flush(fConnection);
        fThread = std::thread([this] { Run(); });
    }
    ~InputServer() {
        shutdown(xcb_get_file_descriptor(fConnection), SHUT_RDWR);
        fPause = {};
        fThread.join();
        xcb_im_destroy(fServer);
        xcb_disconnect(fConnection);
    }
    InputServer(const InputServer&) = delete;

    // Nothing is answered in between.
    void Pause() { fPause = std::unique_lock(fLock); }
    void Resume() { fPause.unlock(); }

    std::string given = kGiven; // not while a key may come
    std::atomic<int> keys = 0;
    std::atomic<int> focuses = 0;   // of contexts, so far
    std::atomic<uint32_t> spot = 0; // x in the upper half, y in the lower one

private:
    static void HandleRequest(xcb_im_t*, xcb_im_client_t*, xcb_im_input_context_t* context,
                              const xcb_im_packet_header_fr_t* header, void*, void* argument,
                              void* data) {
        auto& self = *static_cast<InputServer*>(data);
        switch (header->major_opcode) {
        case XCB_XIM_FORWARD_EVENT:
            self.HandleKey(context, static_cast<xcb_key_press_event_t*>(argument));
            break;
        case XCB_XIM_SET_IC_FOCUS:
            self.focuses++;
            break;
        case XCB_XIM_CREATE_IC:
        case XCB_XIM_SET_IC_VALUES: {
            xcb_point_t place = xcb_im_input_context_get_preedit_attr(context)->spot_location;
            self.spot = static_cast<uint32_t>(place.x << 16 | place.y);
            break;
        }
        default:
            break;
        }
    }
    void HandleKey(xcb_im_input_context_t* context, xcb_key_press_event_t* key) {
        constexpr uint8_t kKeyA = 38;
        constexpr uint8_t kKeyD = 40;
        keys++;
        if (fLate)
            xcb_im_forward_event(fServer, context, &*fLate);
        fLate.reset();
        if (key->detail == kKeyD && (key->response_type & 0x7f) == XCB_KEY_PRESS) {
            fLate = *key;
            return;
        }
        if (key->detail != kKeyA) {
            xcb_im_forward_event(fServer, context, key);
            return;
        }
        size_t length = 0;
        char* text = xcb_utf8_to_compound_text(given.c_str(), given.size(), &length);
        xcb_im_commit_string(fServer, context, XCB_XIM_LOOKUP_CHARS, text,
                             static_cast<uint32_t>(length), 0);
        std::free(text);
    }
    void Run() {
        while (xcb_generic_event_t* event = xcb_wait_for_event(fConnection)) {
            std::lock_guard lock(fLock);
            xcb_im_filter_event(fServer, event);
            std::free(event);
            xcb_flush(fConnection);
        }
    }

    xcb_connection_t* const fConnection;
    const xcb_window_t fWindow;
    xcb_im_t* fServer = nullptr;
    std::mutex fLock; // while a request is handled
    std::unique_lock<std::mutex> fPause;
    std::optional<xcb_key_press_event_t> fLate;
    std::thread fThread;
};

} // namespace test
