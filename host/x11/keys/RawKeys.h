#pragma once

#include <atomic>
#include <mutex>
#include <optional>
#include <string>

#include "host/x11/keys/Keyboard.h"
#include "host/x11/server/Connection.h"

namespace host {

// Watches all keys of the session: the server's raw events reach every client that asks, whichever
// window has the focus or a grab. Nothing of them is kept but which keys are held.
class RawKeys {
public:
    RawKeys(const Connection& connection, DisplaySink* sink);

    // As Display::WatchSessionKeys; `program` is the name for standard error. Any thread.
    void Watch(bool watch, const std::string& program);

    // The display thread's part.
    void HandleEvent(const xcb_ge_generic_event_t& event);
    // A client that grabs the keyboard gets no raw events while it does, only those of the grab.
    void HandleGrabbedKey(xcb_keycode_t key, bool down);
    // Nothing while keys are not watched.
    std::optional<KeyStates> States();

    // The server's time of the last key that was pressed; 0 before the first. Any thread.
    xcb_timestamp_t LastPressTime() const { return fLastPressTime; }

private:
    bool FindExtension();
    void Select(bool watch) const;
    HeldKeys AskForHeldKeys() const;
    void HandleKey(uint32 key, bool down);
    void HandleOtherKeyboards();
    void Notify(uint32 key, bool down, const HeldKeys& before, const HeldKeys& now);

    const Connection& fConnection;
    DisplaySink* const fSink;
    std::atomic<xcb_timestamp_t> fLastPressTime = 0;

    // Held while the watch begins: no event is handled before it is known what was held then.
    std::mutex fLock;
    bool fIsWatching = false;
    bool fIsRefused = false;
    uint8 fOpcode = 0;
    HeldKeys fHeld;
};

} // namespace host
