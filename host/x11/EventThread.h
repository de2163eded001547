#pragma once

#include <atomic>
#include <set>
#include <thread>
#include <utility>

#include "host/x11/Display.h"
#include "host/x11/GrabWatch.h"
#include "host/x11/keys/ClickCounter.h"
#include "host/x11/keys/InputMethod.h"
#include "host/x11/keys/Keyboard.h"
#include "host/x11/keys/RawKeys.h"
#include "host/x11/server/Connection.h"

namespace host {

class XDisplay;
class XWindow;

// The display thread: waits for the server's events and notifies the windows' sinks.
class EventThread {
public:
    // Sends the requests that its parts need; Start begins to wait.
    EventThread(XDisplay& display, DisplaySink* sink);
    // Ends the thread.
    ~EventThread();
    void Start();

    RawKeys& Keys() { return fRawKeys; }
    const RawKeys& Keys() const { return fRawKeys; }
    InputMethod& TextInput() { return fInput; }

private:
    using Event = Reply<xcb_generic_event_t>;

    void Run();
    Event Next();
    Event NewestMotion(Event motion);
    void Handle(const xcb_generic_event_t& event);
    // To the window of the program that the event names.
    template <typename T>
    void Deliver(const xcb_generic_event_t& event, void (XWindow::*handle)(const T&));

    void HandleKey(const xcb_key_press_event_t& event);
    void HandlePress(const xcb_button_press_event_t& event);
    void HandleRelease(const xcb_button_release_event_t& event);
    void HandleMotion(const xcb_motion_notify_event_t& event);
    void HandleCrossing(const xcb_enter_notify_event_t& event, bool entered);
    void HandleFocus(const xcb_focus_in_event_t& event, bool active);
    void HandleProperty(const xcb_property_notify_event_t& event);
    void HandleSelection(const xcb_generic_event_t& event);
    void HandleMessage(const xcb_client_message_event_t& event);
    void CheckSettings(const xcb_generic_event_t& event);
    void SetClickLimits();
    void CheckMonitors(const xcb_generic_event_t& event);
    void Report(const xcb_generic_error_t& error);
    void Notify(xcb_window_t window, const WindowEvent& event);

    XDisplay& fDisplay;
    const Connection& fConnection;
    DisplaySink* const fSink;
    Keyboard fKeyboard;
    RawKeys fRawKeys;
    ClickCounter fClicks;
    InputMethod fInput;
    Event fWaiting;                              // taken from the queue, not handled yet
    std::set<std::pair<uint8, uint8>> fReported; // errors: the request, the code
    GrabWatch fGrabWatch;
    uint32 fKeyGrab = 0; // in which of the program's grabs the last key was; 0 in none
    std::atomic<bool> fIsEnding = false;
    std::thread fThread;
};

} // namespace host
