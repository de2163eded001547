#pragma once

#include <atomic>
#include <memory>
#include <mutex>

#include "host/loop/ServiceLoop.h"
#include "host/x11/exchange/DragImage.h"
#include "host/x11/exchange/DragOffer.h"
#include "host/x11/server/InputGrab.h"

namespace host {

// A place on the screen that takes drops.
struct DropPlace {
    xcb_window_t window = XCB_WINDOW_NONE;   // None: nothing there takes drops
    xcb_window_t receiver = XCB_WINDOW_NONE; // of the messages about it
    uint32 version = 0;                      // of the protocol to be spoken
};

// A drag out of the program, from its press to the other program's answer that it has the data. One
// at a time. Any thread; the display thread passes the events in.
class DragSource {
public:
    DragSource(const Connection& connection, InputGrab& grab);
    ~DragSource();

    // As HostWindow::Drag; `time` is that of the press.
    status_t Start(xcb_window_t window, xcb_timestamp_t time, const DragSpec& spec,
                   std::shared_ptr<DragSink> sink);
    // The program's window goes away.
    void Forget(xcb_window_t window);

    void HandleMotion(const xcb_motion_notify_event_t& event);
    // After the program's window got it; `buttons` are still down.
    void HandleRelease(const xcb_button_release_event_t& event, uint32 buttons);
    // Whether the key is used up.
    bool HandleKey(const KeyChanged& key);
    // Whether the message is one of a drag.
    bool HandleMessage(const xcb_client_message_event_t& event);
    void HandleRequest(const xcb_selection_request_event_t& request);

private:
    enum class Phase {
        Dragging,
        Released, // and the other program has not said yet whether it may be dropped
        Dropped,  // and the other program is taking it
        Canceled, // and the button is still down
    };
    struct Drag {
        Drag(const Connection& connection, xcb_window_t from, const DragSpec& spec,
             std::shared_ptr<DragSink> sink, xcb_timestamp_t time)
            : window(from)
            , offer(connection, spec, std::move(sink), time)
            , image(std::make_unique<DragImage>(connection, spec.image, spec.hotX, spec.hotY))
            , pointerTime(time) {}

        const xcb_window_t window; // the program's
        DragOffer offer;
        std::unique_ptr<DragImage> image;
        xcb_timestamp_t pointerTime;
        Phase phase = Phase::Dragging;
        DropPlace place{};
        int screenX = 0, screenY = 0;
        bool isAsking = false; // the place has not answered yet
        bool hasMoved = false; // since it was asked
        bool isAccepted = false;
        bigtime_t lastProgress = 0;
        std::unique_ptr<Timer> timer{};
    };
    using Lock = std::unique_lock<std::mutex>;

    // With the lock.
    void Move(int screenX, int screenY, xcb_timestamp_t time);
    void Enter(const DropPlace& place);
    void Leave();
    void AskPlace();
    void Cancel();
    void Send(AtomIndex type, uint32 second = 0, uint32 third = 0, uint32 fourth = 0,
              uint32 fifth = 0) const;
    // Unlock `lock`.
    void Release(Lock& lock);
    void DropOrLeave(Lock& lock);
    void HandleStatus(Lock& lock, bool isAccepted);
    void End(Lock& lock);

    void CheckProgress();

    const Connection& fConnection;
    InputGrab& fGrab;
    std::mutex fLock; // for the next one; not held while a drag ends or the input is waited for
    std::unique_ptr<Drag> fDrag;
};

} // namespace host
