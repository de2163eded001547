#pragma once

#include <bitset>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "host/loop/ServiceLoop.h"
#include "host/x11/keys/InputMethodClient.h"

namespace host {

// Gives the keys of the text field that has the focus to the input-method server that the
// environment names, if it names one: it may take them and give text for them later. A server that
// is missing, slow or dying costs the keys nothing but a moment.
class InputMethod : private InputMethodClient::Listener {
public:
    using KeyHandler = std::function<void(const xcb_key_press_event_t& key)>;
    using TextHandler = std::function<void(xcb_window_t window, const std::string& text)>;

    // Attend is called for each message that comes to `wakeable`, a window of the program. The
    // handlers get what the keys become, on the display thread.
    InputMethod(const Connection& connection, xcb_window_t wakeable, KeyHandler onKey,
                TextHandler onText);
    ~InputMethod() override;

    // Where the caret of the text field in `window` is that has the focus; nothing if none has it
    // there. Any thread.
    void SetCaret(xcb_window_t window, std::optional<xcb_point_t> spot);

    // The rest is the display thread's.
    void Attend();
    // True for an event that is the input-method server's.
    bool Filter(xcb_generic_event_t& event);
    // True if it takes the key, which then comes to the handler now or later, or not at all.
    bool TakeKey(const xcb_key_press_event_t& key);
    void HandleServersChanged();
    void HandleFocusLoss(xcb_window_t window);

private:
    struct Caret {
        xcb_window_t window = XCB_WINDOW_NONE;
        xcb_point_t spot{};
        uint32 focus = 0; // counts the fields that got the focus
    };

    void ContextCame(bool isMade) override;
    void KeyCame(const xcb_key_press_event_t& key) override;
    void TextCame(const std::string& text) override;
    void KeyWasSeen() override;
    void ServerWasLost() override { fIsLost = true; }

    bool IsConnected() const { return fClient && fClient->IsConnected(); }
    void ChangeFocus(const Caret& wanted);
    void Connect();
    xcb_window_t FindServer();
    void GiveUpWaiting();
    void SendNext();
    void Wait();
    void LetAllThrough();
    void Deliver(const xcb_key_press_event_t& key);
    void DeliverLate(xcb_key_press_event_t key);
    void Wake() const;

    const Connection& fConnection;
    const xcb_window_t fWakeable;
    const std::string fModifiers; // empty if they name no server
    const KeyHandler fOnKey;
    const TextHandler fOnText;

    std::mutex fLock;
    Caret fWanted; // guarded by the lock

    Caret fCaret;
    xcb_atom_t fServerName = XCB_ATOM_NONE;
    xcb_window_t fServer = XCB_WINDOW_NONE;
    int fFailures = 0; // of this server, one after the other
    std::unique_ptr<InputMethodClient> fClient;
    bool fIsLost = false;

    // The first one is at the server, if there is a context already.
    std::deque<xcb_key_press_event_t> fKeys;
    bool fHasComeBack = false; // the first one
    bigtime_t fWaitsSince = 0;
    std::unique_ptr<Timer> fTimer;
    std::bitset<256> fTaken; // keys whose release belongs to nobody
};

} // namespace host
